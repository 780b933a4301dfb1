#include "platform/uikit/CAKeyframeAnimation.h"

#include <algorithm>
#include <cmath>

namespace kestrova::platform {

double CAKeyframeAnimation::value(double elapsed) const {
  const std::size_t count = std::min(keyTimes.size(), values.size());
  if (count == 0) return 0;
  if (duration <= 0 || isOver(elapsed)) return values[count - 1];
  const double moment = std::fmod(std::max(elapsed, 0.0), duration) / duration;
  const auto after =
      std::upper_bound(keyTimes.begin(), keyTimes.begin() + std::ptrdiff_t(count), moment);
  const std::size_t next = std::size_t(after - keyTimes.begin());
  if (next == 0) return values.front();
  if (next == count) return values[count - 1];
  const double span = keyTimes[next] - keyTimes[next - 1];
  const double share = span > 0 ? (moment - keyTimes[next - 1]) / span : 1;
  return values[next - 1] + (values[next] - values[next - 1]) * share;
}

}  // namespace kestrova::platform
