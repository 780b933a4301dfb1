#include "platform/graphics/UIColor.h"

#include <algorithm>
#include <cmath>

namespace kestrova::platform {

namespace {

// The transfer function is the same in both colour spaces.
double linear(double encoded) {
  return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
}

double encoded(double linear) {
  return linear <= 0.0031308 ? linear * 12.92 : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

double clamped(double value) {
  return std::clamp(value, 0.0, 1.0);
}

}  // namespace

UIColor UIColor::displayP3(double red, double green, double blue, double alpha) {
  UIColor color(red, green, blue, alpha);
  color.colorSpace_ = ColorSpace::displayP3;
  return color;
}

UIColor UIColor::withAlphaComponent(double alpha) const {
  auto color = *this;
  color.alpha_ = alpha;
  return color;
}

UIColor UIColor::sRGB() const {
  if (colorSpace_ == ColorSpace::sRGB) {
    return {clamped(red_), clamped(green_), clamped(blue_), clamped(alpha_)};
  }
  const double red = linear(clamped(red_));
  const double green = linear(clamped(green_));
  const double blue = linear(clamped(blue_));
  return {clamped(encoded(1.2249401763 * red - 0.2249401763 * green)),
          clamped(encoded(-0.0420569547 * red + 1.0420569547 * green)),
          clamped(encoded(-0.0196375546 * red - 0.0786360456 * green + 1.0982736001 * blue)),
          clamped(alpha_)};
}

}  // namespace kestrova::platform
