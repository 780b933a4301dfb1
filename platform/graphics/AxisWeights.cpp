#include "platform/graphics/AxisWeights.h"

#include <algorithm>
#include <cmath>

namespace kestrova::platform {

AxisWeights::AxisWeights(std::size_t sourceLength, double begin, double end, std::size_t limit) {
  if (!std::isfinite(begin) || !std::isfinite(end)) return;
  const double from = std::max(begin, 0.0);
  const double to = std::min(end, static_cast<double>(limit));
  if (!(from < to)) return;
  first_ = static_cast<std::size_t>(from);
  const auto last = std::min(static_cast<std::size_t>(std::ceil(to)), limit);
  const double step = static_cast<double>(sourceLength) / (end - begin);
  taps_.reserve(last - first_);
  for (auto i = first_; i < last; ++i) {
    const double left = std::max(static_cast<double>(i), from);
    const double right = std::min(static_cast<double>(i + 1), to);
    const double coverage = right - left;
    if (step >= 1) {
      addAverage((left - begin) * step, (right - begin) * step, coverage, sourceLength);
    } else {
      addBlend(((left + right) / 2 - begin) * step, coverage, sourceLength);
    }
    const auto& tap = taps_.back();
    isCopy_ = isCopy_ && tap.count == 1 && weights_.back() == 1 &&
              tap.source == taps_.front().source + taps_.size() - 1;
  }
}

void AxisWeights::addAverage(double begin, double end, double coverage, std::size_t sourceLength) {
  // Rounding must not add a sliver of a pixel that is not covered.
  constexpr double kSliver = 1e-6;
  const auto last = sourceLength - 1;
  const auto first = std::min(static_cast<std::size_t>(begin + kSliver), last);
  const double length = end - begin;
  const auto weight = weights_.size();
  for (auto j = first; j <= last && (j == first || static_cast<double>(j) < end - kSliver); ++j) {
    const double overlap =
        std::min(end, static_cast<double>(j + 1)) - std::max(begin, static_cast<double>(j));
    weights_.push_back(static_cast<float>(overlap / length * coverage));
  }
  taps_.push_back({first, weight, weights_.size() - weight});
  // A lone pixel is the whole of it, whatever the slivers.
  if (weights_.size() == weight + 1) weights_.back() = static_cast<float>(coverage);
}

void AxisWeights::addBlend(double centre, double coverage, std::size_t sourceLength) {
  const double position = std::clamp(centre - 0.5, 0.0, static_cast<double>(sourceLength - 1));
  const auto source =
      std::min(static_cast<std::size_t>(position), sourceLength > 1 ? sourceLength - 2 : 0);
  const double part = position - static_cast<double>(source);
  taps_.push_back({source, weights_.size(), std::min<std::size_t>(sourceLength, 2)});
  weights_.push_back(static_cast<float>((1 - part) * coverage));
  if (sourceLength > 1) weights_.push_back(static_cast<float>(part * coverage));
}

}  // namespace kestrova::platform
