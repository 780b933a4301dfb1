#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace kestrova::platform {

// Converts pixels to sRGB from the colour space of an embedded ICC profile. Immutable; any thread.
class ColorProfile {
 public:
  // Null if the pixels are to be taken as sRGB: for sRGB's own profile, none at all, a damaged one,
  // and profiles of grey or inks.
  static std::shared_ptr<const ColorProfile> make(std::string_view icc);
  ColorProfile(const ColorProfile&) = delete;
  ColorProfile& operator=(const ColorProfile&) = delete;
  ~ColorProfile();

  // In place; pixels as in a CGImage.
  void convert(std::span<std::uint32_t> pixels) const;

 private:
  explicit ColorProfile(void* transform) : transform_(transform) {}

  void* transform_;
};

}  // namespace kestrova::platform
