#include "platform/video/EmptyMovie.h"

#include <cstdint>
#include <string_view>

namespace kestrova::platform {

namespace {

std::string number(std::uint32_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xffU);
  return bytes;
}

std::string box(std::string_view type, const std::string& content) {
  constexpr std::uint32_t kHead = 8;
  return number(kHead + static_cast<std::uint32_t>(content.size())) + std::string(type) + content;
}

// Version and flags, no dates, five units a second, no duration; ordinary speed and loudness, no
// turn; no previews; the first track to come has number 1.
std::string movieHeader() {
  std::string content = number(0) + number(0) + number(0) + number(5) + number(0);
  content += number(0x00010000) + std::string("\x01\x00", 2) + std::string(10, '\0');
  for (const std::uint32_t part : {0x00010000U, 0U, 0U, 0U, 0x00010000U, 0U, 0U, 0U, 0x40000000U}) {
    content += number(part);
  }
  return content + std::string(24, '\0') + number(1);
}

}  // namespace

std::string emptyMovie() {
  return box("ftyp", "qt  " + number(0x200) + "qt  ") + box("mdat", "") +
         box("moov", box("mvhd", movieHeader()));
}

}  // namespace kestrova::platform
