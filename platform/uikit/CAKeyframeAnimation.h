#pragma once

#include <limits>
#include <string>
#include <vector>

namespace kestrova::platform {

enum class CAAnimationCalculationMode { linear };
inline constexpr auto kCAAnimationLinear = CAAnimationCalculationMode::linear;

// How a layer's property moves over time, by values at given moments. A value; main thread.
struct CAKeyframeAnimation {
  explicit CAKeyframeAnimation(std::string path) : keyPath(std::move(path)) {}

  // "strokeEnd" (fraction) or "transform.rotation" (radians, clockwise).
  std::string keyPath;
  // Fractions of `duration`, never decreasing, one for each value.
  std::vector<double> keyTimes;
  std::vector<double> values;
  CAAnimationCalculationMode calculationMode = kCAAnimationLinear;
  // Seconds.
  double duration = 0;
  // How often it plays; infinity for ever.
  double repeatCount = 1;

  // At `elapsed` seconds after the start; the value of the last moment once it is over. 0 where
  // there are no values.
  double value(double elapsed) const;
  bool isOver(double elapsed) const { return elapsed >= duration * repeatCount; }
};

}  // namespace kestrova::platform
