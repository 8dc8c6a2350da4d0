#include "inspect/texts/fault_texts.hpp"

namespace inspect {

std::vector<std::string> faultTexts(const Verdict& verdict, bool isWhole) {
  constexpr size_t mostShown = 20;
  const size_t count = verdict.faults.size();
  const size_t shown = isWhole || count <= mostShown ? count : mostShown / 2;
  std::vector<std::string> texts;
  for (const Fault& fault : std::span(verdict.faults).first(shown)) {
    texts.push_back(faultText(fault));
  }
  if (shown < count) {
    texts.push_back((verdict.hasMoreFaults ? "more than " : "") + std::to_string(count - shown) +
                    " more faults");
  }
  return texts;
}

}  // namespace inspect
