#include "zarnimesh/peers/sources.hpp"

#include <algorithm>
#include <new>

namespace zarnimesh {
namespace {

// Of each source. Late calls of forgotten gaps count as repeated.
constexpr size_t mostGaps = 32;

// Whether a gap has the call. Takes it out of the gap.
bool fill(std::vector<Source::Gap>& gaps, uint64_t sequence) {
  const auto gap = std::find_if(gaps.begin(), gaps.end(), [&](const Source::Gap& each) {
    return each.from <= sequence && sequence <= each.to;
  });
  if (gap == gaps.end()) {
    return false;
  }
  const bool hasRest = sequence < gap->to;
  const Source::Gap rest{.from = sequence + 1, .to = gap->to};
  gap->to = sequence - 1;
  const bool empty = gap->from > gap->to;
  if (hasRest) {
    if (empty) {
      *gap = rest;
    } else if (gaps.size() < mostGaps) {
      gaps.insert(gap + 1, rest);
    }
  } else if (empty) {
    gaps.erase(gap);
  }
  return true;
}

}  // namespace

bool Sources::hasOpen(uint32_t address) const {
  return std::any_of(sources_.begin(), sources_.end(), [&](const auto& entry) {
    return entry.second.address == address && !entry.second.closed;
  });
}

Source& Sources::add(uint32_t address, uint64_t incarnation, uint64_t route) {
  Source& source = sources_[{address, incarnation}];
  source.address = address;
  source.incarnation = incarnation;
  source.route = route;
  try {
    connect(source, route);
  } catch (const std::bad_alloc&) {
    sources_.erase({address, incarnation});
    throw;
  }
  return source;
}

void Sources::connect(Source& source, uint64_t route) {
  if (const auto [found, isNew] = byRoute_.emplace(route, &source);
      isNew && source.route != route) {
    byRoute_.erase(source.route);
  }
  source.route = route;
}

uint64_t Sources::noteFirst(Source& source, const FrameHeader& header) {
  const uint64_t before = header.kind == Kind::Call ? header.sequence - 1 : header.sequence;
  source.first = before + 1;
  source.highest = header.sequence;
  source.settled = before;
  source.told = before;
  source.missedBeforeFirst = before - header.confirmed;
  return source.missedBeforeFirst;
}

Sources::Finding Sources::note(Source& source, const FrameHeader& header) {
  const bool isCall = header.kind == Kind::Call;
  // The latest call that should be here already.
  const uint64_t before = isCall ? header.sequence - 1 : header.sequence;
  Finding finding;
  if (isCall && header.sequence <= source.highest) {
    finding.late = fill(source.gaps, header.sequence);
    finding.duplicate = !finding.late;
    source.missing -= finding.late ? 1 : 0;
    source.late += finding.late ? 1 : 0;
    return finding;
  }
  if (before > source.highest) {
    source.gaps.reserve(mostGaps);  // first: it may find no memory
    finding.lost = before - source.highest;
    source.missing += finding.lost;
    source.gapPending = true;
    if (source.gaps.size() == mostGaps) {
      source.gaps.erase(source.gaps.begin());
    }
    source.gaps.push_back({.from = source.highest + 1, .to = before});
  }
  source.highest = std::max(source.highest, header.sequence);
  if (source.undelivered == 0 && !isCall) {
    source.settled = source.highest;
  }
  return finding;
}

}  // namespace zarnimesh
