#include "platform/graphics/EXIFOrientation.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestrova::platform {

namespace {

using namespace std::string_view_literals;

// Numbers in the byte order that the block states; 0 beyond its end.
class Reader {
 public:
  Reader(std::string_view bytes, bool bigEndian) : bytes_(bytes), bigEndian_(bigEndian) {}

  std::uint32_t number(std::size_t offset, std::size_t size) const {
    if (offset > bytes_.size() || size > bytes_.size() - offset) return 0;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      value = value << 8U |
              static_cast<unsigned char>(bytes_[offset + (bigEndian_ ? i : size - 1 - i)]);
    }
    return value;
  }

 private:
  std::string_view bytes_;
  bool bigEndian_;
};

}  // namespace

UIImageOrientation exifOrientation(std::string_view segment) {
  constexpr auto kSignature = "Exif\0\0"sv;
  constexpr std::uint32_t kOrientationTag = 0x0112;
  constexpr std::uint32_t kLong = 4;
  constexpr std::size_t kEntrySize = 12;
  // Index: the value in the file less 1.
  constexpr std::array kOrientations{UIImageOrientation::up,
                                     UIImageOrientation::upMirrored,
                                     UIImageOrientation::down,
                                     UIImageOrientation::downMirrored,
                                     UIImageOrientation::leftMirrored,
                                     UIImageOrientation::right,
                                     UIImageOrientation::rightMirrored,
                                     UIImageOrientation::left};
  if (!segment.starts_with(kSignature)) return UIImageOrientation::up;
  const auto block = segment.substr(kSignature.size());
  const Reader reader(block, block.starts_with("MM"));
  const std::size_t directory = reader.number(4, 4);
  const std::size_t count = reader.number(directory, 2);
  for (std::size_t i = 0; i < count; ++i) {
    const auto entry = directory + 2 + i * kEntrySize;
    if (reader.number(entry, 2) != kOrientationTag) continue;
    const bool isLong = reader.number(entry + 2, 2) == kLong;
    const std::size_t value = reader.number(entry + 8, isLong ? 4 : 2);
    return value >= 1 && value <= kOrientations.size() ? kOrientations[value - 1]
                                                       : UIImageOrientation::up;
  }
  return UIImageOrientation::up;
}

}  // namespace kestrova::platform
