#include "platform/graphics/NSAttributedString.h"

#include <algorithm>
#include <utility>

namespace kestrova::platform {

namespace {

using Run = NSAttributedString::Run;

std::size_t end(const NSRange& range) {
  return range.location + range.length;
}

void append(std::vector<Run>& runs, std::size_t from, std::size_t to,
            const NSAttributes& attributes) {
  if (from >= to) return;
  if (!runs.empty() && runs.back().attributes == attributes) {
    runs.back().range.length += to - from;
  } else {
    runs.push_back({{from, to - from}, attributes});
  }
}

NSAttributes merged(NSAttributes base, const NSAttributes& over) {
  if (over.font) base.font = over.font;
  if (over.foregroundColor) base.foregroundColor = over.foregroundColor;
  if (over.alignment) base.alignment = over.alignment;
  return base;
}

}  // namespace

NSAttributedString::NSAttributedString(std::string text, NSAttributes attributes)
    : string_(std::move(text)), length_(utf16Length(string_)) {
  if (length_ > 0) runs_.push_back({{0, length_}, std::move(attributes)});
}

NSAttributes NSAttributedString::attributes(std::size_t at) const {
  const auto run =
      std::ranges::find_if(runs_, [at](const Run& candidate) { return at < end(candidate.range); });
  return run == runs_.end() ? NSAttributes{} : run->attributes;
}

void NSMutableAttributedString::addAttributes(const NSAttributes& attributes, NSRange range) {
  const auto from = std::min(range.location, length_);
  const auto to = from + std::min(range.length, length_ - from);
  std::vector<Run> runs;
  for (const auto& run : runs_) {
    const auto begin = run.range.location;
    append(runs, begin, std::min(end(run.range), from), run.attributes);
    append(runs, std::max(begin, from), std::min(end(run.range), to),
           merged(run.attributes, attributes));
    append(runs, std::max(begin, to), end(run.range), run.attributes);
  }
  runs_ = std::move(runs);
}

}  // namespace kestrova::platform
