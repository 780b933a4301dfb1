#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "platform/uikit/IndexPath.h"

namespace kestrova::platform {

// Where the rows of a table lie. Rows are counted through all sections; heights are points.
class TableRows {
 public:
  void beginSection() { sections_.push_back(count()); }
  // At the end of the last section; a height below 0 counts as 0.
  void append(double height);

  std::size_t count() const { return ends_.size(); }
  double height() const { return ends_.empty() ? 0 : ends_.back(); }
  // `row` is below count().
  IndexPath indexPath(std::size_t row) const;
  double top(std::size_t row) const { return row == 0 ? 0 : ends_[row - 1]; }
  double height(std::size_t row) const { return ends_[row] - top(row); }
  // None where there is no such row.
  std::optional<std::size_t> row(const IndexPath& at) const;
  std::optional<std::size_t> rowAt(double y) const;
  // The first row that shows between the two heights, and the one after the last.
  std::pair<std::size_t, std::size_t> between(double top, double bottom) const;

 private:
  // The lower edge of each row, and each section's first row.
  std::vector<double> ends_;
  std::vector<std::size_t> sections_;
};

}  // namespace kestrova::platform
