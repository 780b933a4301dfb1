#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace kestrova::platform {

// Four bytes a pixel: alpha (which movies ignore), red, green, blue.
inline constexpr int kCVPixelFormatType_32ARGB = 32;

inline constexpr const char* kCVPixelBufferPixelFormatTypeKey = "PixelFormatType";
inline constexpr const char* kCVPixelBufferCGImageCompatibilityKey = "CGImageCompatibility";
inline constexpr const char* kCVPixelBufferCGBitmapContextCompatibilityKey =
    "CGBitmapContextCompatibility";

// The memory of one frame, rows from the top, all zero at first. One thread at a time.
class CVPixelBuffer {
 public:
  // Null for an empty size, one of more pixels than pictures may have, or another format. The
  // attributes ask for what every buffer of ours has.
  static std::shared_ptr<CVPixelBuffer> create(std::size_t width, std::size_t height,
                                               int pixelFormatType,
                                               const std::map<std::string, bool>& attributes = {});

  std::size_t width() const { return width_; }
  std::size_t height() const { return height_; }
  std::size_t bytesPerRow() const { return width_ * 4; }
  // The memory may be used between the two calls.
  void lockBaseAddress() { isLocked_ = true; }
  void unlockBaseAddress() { isLocked_ = false; }
  // Empty where it is not locked.
  std::span<std::uint8_t> baseAddress();
  std::span<const std::uint8_t> bytes() const { return bytes_; }

 private:
  CVPixelBuffer(std::size_t width, std::size_t height);

  std::size_t width_;
  std::size_t height_;
  bool isLocked_ = false;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace kestrova::platform
