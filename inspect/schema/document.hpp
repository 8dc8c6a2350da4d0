// Schema documents: everything about messages as JSON, for programs that do without our headers.
//
//   {"format": 1,
//    "messages": [{"name", "identifier", "service", "sent", ..., "record"}],
//    "records":  [{"name", "size", "inlineOrder", "nestedFailure", ..., "slots": [...]}],
//    "jsonSchema": {...}}
//
// A record stands behind those that it holds. "jsonSchema" (draft 2020-12) has one definition for
// each record: what its JSON may be.
#pragma once

#include <span>

#include "inspect/json/record_json.hpp"
#include "inspect/messages/messages.hpp"

namespace inspect {

inline constexpr uint32_t documentFormat = 1;

Json schemaDocument(std::span<const KnownMessage> messages);

}  // namespace inspect
