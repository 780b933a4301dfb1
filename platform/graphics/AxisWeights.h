#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace kestrova::platform {

// How the positions of one axis of a drawn picture are made from positions of its source. Made
// smaller, a pixel is the exact average of the area it covers; made larger, it lies on the straight
// line between its neighbours. Weights of a pixel that the picture covers in part sum up to the
// covered part.
class AxisWeights {
 public:
  // Where a source of `sourceLength` pixels is drawn from `begin` to `end`, for the pixels within
  // both that and 0 to `limit`.
  AxisWeights(std::size_t sourceLength, double begin, double end, std::size_t limit);

  // The first drawn pixel and their count.
  std::size_t first() const { return first_; }
  std::size_t count() const { return taps_.size(); }

  // The source positions of the i-th drawn pixel, and their weights. Sources never step back by
  // more than one from a pixel to the next.
  std::size_t source(std::size_t i) const { return taps_[i].source; }
  std::span<const float> weights(std::size_t i) const {
    return {&weights_[taps_[i].weight], taps_[i].count};
  }

  // Whether each drawn pixel is one source pixel, in order.
  bool isCopy() const { return isCopy_; }

 private:
  struct Tap {
    std::size_t source;
    std::size_t weight;
    std::size_t count;
  };

  void addAverage(double begin, double end, double coverage, std::size_t sourceLength);
  void addBlend(double centre, double coverage, std::size_t sourceLength);

  std::size_t first_ = 0;
  std::vector<Tap> taps_;
  std::vector<float> weights_;
  bool isCopy_ = true;
};

}  // namespace kestrova::platform
