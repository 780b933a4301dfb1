#include "platform/video/CVPixelBuffer.h"

#include "platform/graphics/CGImage.h"

namespace kestrova::platform {

std::shared_ptr<CVPixelBuffer> CVPixelBuffer::create(std::size_t width, std::size_t height,
                                                     int pixelFormatType,
                                                     const std::map<std::string, bool>&) {
  if (pixelFormatType != kCVPixelFormatType_32ARGB || !CGImage::isAllowed(width, height)) {
    return nullptr;
  }
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the constructor is private.
  return std::shared_ptr<CVPixelBuffer>(new CVPixelBuffer(width, height));
}

CVPixelBuffer::CVPixelBuffer(std::size_t width, std::size_t height)
    : width_(width), height_(height), bytes_(width * height * 4) {}

std::span<std::uint8_t> CVPixelBuffer::baseAddress() {
  return isLocked_ ? std::span<std::uint8_t>(bytes_) : std::span<std::uint8_t>();
}

}  // namespace kestrova::platform
