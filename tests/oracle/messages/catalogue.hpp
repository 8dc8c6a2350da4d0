// The records of the library, written out: one text per record, one word per slot.
#pragma once

#include <cstdint>
#include <vector>

namespace oracle {

// A slot is one word of `fields`: u8, u16, u32, u64, bytes[N] (inline), bytes (a length and a
// pointer), table:<message> or vector:<message>.
struct CatalogueEntry {
  const char* name;
  const char* fields;
  bool sentFixed;
  bool ownRoot;
  bool slotOrder;
  uint64_t largestSize;
};

const std::vector<CatalogueEntry>& configurationCatalogue();
const std::vector<CatalogueEntry>& statisticsCatalogue();
const std::vector<CatalogueEntry>& synchronisationCatalogue();  // the 24 base records

}  // namespace oracle
