#include "platform/uikit/TableRows.h"

#include <algorithm>

namespace kestrova::platform {

void TableRows::append(double height) {
  ends_.push_back(this->height() + std::max(0.0, height));
}

IndexPath TableRows::indexPath(std::size_t row) const {
  const auto after = std::upper_bound(sections_.begin(), sections_.end(), row);
  return {row - *(after - 1), std::size_t(after - sections_.begin()) - 1};
}

std::optional<std::size_t> TableRows::row(const IndexPath& at) const {
  if (at.section >= sections_.size()) return std::nullopt;
  const std::size_t end =
      at.section + 1 < sections_.size() ? sections_[at.section + 1] : ends_.size();
  if (at.row >= end - sections_[at.section]) return std::nullopt;
  return sections_[at.section] + at.row;
}

std::optional<std::size_t> TableRows::rowAt(double y) const {
  if (y < 0 || y >= height()) return std::nullopt;
  return std::size_t(std::upper_bound(ends_.begin(), ends_.end(), y) - ends_.begin());
}

std::pair<std::size_t, std::size_t> TableRows::between(double top, double bottom) const {
  const auto first = std::upper_bound(ends_.begin(), ends_.end(), top);
  auto last = first;
  while (last != ends_.end() && this->top(std::size_t(last - ends_.begin())) < bottom) ++last;
  return {std::size_t(first - ends_.begin()), std::size_t(last - ends_.begin())};
}

}  // namespace kestrova::platform
