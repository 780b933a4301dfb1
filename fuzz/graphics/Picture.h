#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/graphics/UIGraphicsImageContext.h"
#include "platform/graphics/UIImage.h"

namespace kestrova::fuzz {

// Any bytes as a picture's file: it is refused or has pixels as its head says, and drawing it while
// decoding gives the same as drawing it decoded. A colour profile is applied before scaling or
// after it, which may differ.
inline void readPicture(const std::uint8_t* data, std::size_t size) {
  using namespace platform;
  // Larger pictures only take longer.
  constexpr double kMaximumPixels = 4e6;
  Data file(size);
  if (size > 0) std::memcpy(file.bytes(), data, size);
  const bool hasProfile = file.view().find("ICC_PROFILE") != std::string_view::npos;
  const auto image = UIImage::make(std::move(file));
  if (!image) return;
  const auto length = image.value().size();
  if (length.width * length.height > kMaximumPixels) return;
  const auto draw = [&image] {
    auto context = UIGraphicsImageContext::begin({17, 13}, false, 1);
    (void)image.value().draw({{}, {17, 13}}, *context);
    return context->takeImage();
  };
  const auto streamed = draw();
  const auto bitmap = image.value().cgImage();
  const auto drawn = draw();
  if (streamed.has_value() != static_cast<bool>(bitmap) ||
      streamed.has_value() != drawn.has_value()) {
    std::abort();
  }
  if (!streamed) return;
  const auto first = streamed->cgImage().value()->pixels();
  const auto second = drawn->cgImage().value()->pixels();
  if (!hasProfile && std::memcmp(first.data(), second.data(), first.size_bytes()) != 0)
    std::abort();
  if (bitmap.value()->pixels().size() != static_cast<std::size_t>(length.width * length.height)) {
    std::abort();
  }
  if (!UIImagePNGRepresentation(image.value())) std::abort();
}

}  // namespace kestrova::fuzz
