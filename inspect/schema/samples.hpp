// Records of any schema, to be written as messages. The same number gives the same record.
#pragma once

#include "inspect/messages/owned_record.hpp"

namespace inspect {

// The first is all zeros, the second has every bit set, later ones are random.
OwnedRecord sampleOf(const KnownMessage& message, size_t number);

}  // namespace inspect
