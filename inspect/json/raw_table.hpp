// A table of an unknown message: its structure, and the messages that fit it.
#pragma once

#include <span>

#include "inspect/json/record_json.hpp"

namespace inspect {

// Length, root, vtable, and every present slot's position. Fails if there is no table.
Json rawTable(std::span<const uint8_t> bytes);

// The same, with the messages that fit best in "couldBe".
Json identification(std::span<const uint8_t> bytes);

}  // namespace inspect
