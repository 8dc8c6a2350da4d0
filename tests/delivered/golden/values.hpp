// The records that the golden files hold, by one rule for every message.
#ifndef GOLDEN_VALUES_HPP
#define GOLDEN_VALUES_HPP

#include <cstdint>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/values/value.hpp"

namespace golden {

// Every field tells its slot n and, in a nested record, where that is held. With b = 0x40 at the
// root and b = 0x60 + 8 times the holder's slot + 8 times the item in a nested record:
//
//   u8, u16, u32, u64   most significant byte b + n, then 01, 02, 03 ... downwards
//   bytes[N]            N bytes that count up from b + 0x80 + n; above 128 bytes, f1, then
//                       b + 0x80 + n throughout, then f2
//   bytes               n + 1 bytes that count up from b + 0x80 + n
//   vector of tables    two items
oracle::Value fullValue(const oracle::Description& message);

// The same with every field of an even slot zero or null, in nested records too; a vector has one
// item.
oracle::Value sparseValue(const oracle::Description& message);

}  // namespace golden

#endif
