#include "platform/graphics/Scaler.h"

#include <algorithm>
#include <array>

namespace kestrova::platform {

namespace {

constexpr std::size_t kChannels = 4;

// From a sum of weighted channels, in the order of a word's bytes.
std::uint32_t word(const std::array<float, kChannels>& channels) {
  const auto rounded = [&](std::size_t channel) {
    return static_cast<std::uint32_t>(std::min(channels[channel] + 0.5F, 255.0F));
  };
  const auto alpha = rounded(3);
  // Rounding may not lift a premultiplied colour above alpha.
  return alpha << 24U | std::min(rounded(2), alpha) << 16U | std::min(rounded(1), alpha) << 8U |
         std::min(rounded(0), alpha);
}

}  // namespace

Scaler::Scaler(PixelRows& source, const AxisWeights& columns, const AxisWeights& rows)
    : source_(source), columns_(columns), rows_(rows), profile_(source.colorProfile()) {
  if (columns.count() == 0) return;
  const auto last = columns.count() - 1;
  begin_ = columns.source(0);
  width_ = columns.source(last) + columns.weights(last).size() - begin_;
  if (!rows.isCopy() || !columns.isCopy() || profile_) {
    sums_.resize(width_ * kChannels);
    output_.resize(columns.count());
  }
}

// Makes `y` the current row; the rows only go forward.
bool Scaler::readTo(std::size_t y) {
  while (!current_ || sourceY_ < y) {
    if (current_) {
      ++sourceY_;
      if (!previous_.empty()) std::copy_n(current_, previous_.size(), previous_.begin());
    }
    current_ = source_.next();
    if (!current_) return false;
  }
  return true;
}

bool Scaler::sum(std::size_t y, float weight, bool isFirst) {
  const bool isPrevious = current_ && y < sourceY_;
  if (!isPrevious && !readTo(y)) return false;
  const auto* const pixels = isPrevious ? previous_.data() : current_;
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(pixels + begin_);
  auto* const sums = sums_.data();
  const auto size = sums_.size();
  if (isFirst) {
    for (std::size_t i = 0; i < size; ++i) sums[i] = weight * static_cast<float>(bytes[i]);
  } else {
    for (std::size_t i = 0; i < size; ++i) sums[i] += weight * static_cast<float>(bytes[i]);
  }
  return true;
}

void Scaler::resolve() {
  for (std::size_t x = 0; x < output_.size(); ++x) {
    std::array<float, kChannels> channels{};
    const auto* sums = &sums_[(columns_.source(x) - begin_) * kChannels];
    for (const float weight : columns_.weights(x)) {
      for (std::size_t channel = 0; channel < kChannels; ++channel) {
        channels[channel] += weight * sums[channel];
      }
      sums += kChannels;
    }
    output_[x] = word(channels);
  }
}

const std::uint32_t* Scaler::next() {
  const auto y = rows_.source(row_);
  const auto weights = rows_.weights(row_);
  if (output_.empty()) {
    ++row_;
    return readTo(y) ? current_ + begin_ : nullptr;
  }
  // The next row may begin one before the last of this one.
  const bool isBlend = row_ + 1 < rows_.count() && rows_.source(row_ + 1) + 1 < y + weights.size();
  if (isBlend && previous_.empty()) previous_.resize(source_.width());
  for (std::size_t i = 0; i < weights.size(); ++i) {
    if (!sum(y + i, weights[i], i == 0)) return nullptr;
  }
  ++row_;
  resolve();
  if (profile_) profile_->convert(output_);
  return output_.data();
}

}  // namespace kestrova::platform
