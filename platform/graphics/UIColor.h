#pragma once

#include "platform/foundation/Export.h"

namespace kestrova::platform {

// A colour, fractions from 0 to 1 with alpha not premultiplied. Any thread.
class KESTROVA_EXPORT UIColor {
 public:
  enum class ColorSpace { sRGB, displayP3 };

  UIColor(double red, double green, double blue, double alpha)
      : red_(red), green_(green), blue_(blue), alpha_(alpha) {}
  // A grey of sRGB.
  static UIColor white(double white, double alpha) { return {white, white, white, alpha}; }
  static UIColor displayP3(double red, double green, double blue, double alpha);

  static UIColor black() { return white(0, 1); }
  static UIColor white() { return white(1, 1); }
  static UIColor clear() { return white(0, 0); }
  static UIColor lightGray() { return white(2.0 / 3, 1); }
  static UIColor blue() { return {0, 0, 1, 1}; }

  // The components as given, in `colorSpace()`.
  double redComponent() const { return red_; }
  double greenComponent() const { return green_; }
  double blueComponent() const { return blue_; }
  double alphaComponent() const { return alpha_; }
  ColorSpace colorSpace() const { return colorSpace_; }

  UIColor withAlphaComponent(double alpha) const;
  // The nearest colour that sRGB can show, every component within 0 and 1.
  UIColor sRGB() const;

  friend bool operator==(const UIColor&, const UIColor&) = default;

 private:
  double red_;
  double green_;
  double blue_;
  double alpha_;
  ColorSpace colorSpace_ = ColorSpace::sRGB;
};

}  // namespace kestrova::platform
