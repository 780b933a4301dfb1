#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/graphics/AxisWeights.h"
#include "platform/graphics/PixelRows.h"

namespace kestrova::platform {

// Makes the rows of a picture in another size, reading the source once and holding a few rows of
// it. What it makes is in sRGB.
class Scaler {
 public:
  // `columns` and `rows` are the weights of the two axes; all three must outlive the scaler.
  Scaler(PixelRows& source, const AxisWeights& columns, const AxisWeights& rows);

  // `columns.count()` pixels of the next drawn row, valid until the next call. Null where the
  // source is damaged; not to be called after the last row.
  const std::uint32_t* next();

 private:
  bool readTo(std::size_t y);
  bool sum(std::size_t y, float weight, bool isFirst);
  void resolve();

  PixelRows& source_;
  const AxisWeights& columns_;
  const AxisWeights& rows_;
  std::shared_ptr<const ColorProfile> profile_;
  const std::uint32_t* current_ = nullptr;
  std::size_t sourceY_ = 0;
  std::size_t row_ = 0;
  // The source row before the current one; kept only where rows are blended.
  std::vector<std::uint32_t> previous_;
  // The columns of the source that are needed.
  std::size_t begin_ = 0;
  std::size_t width_ = 0;
  // Four channels a pixel: the sum over the source rows.
  std::vector<float> sums_;
  std::vector<std::uint32_t> output_;
};

}  // namespace kestrova::platform
