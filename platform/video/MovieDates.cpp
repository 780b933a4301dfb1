#include "platform/video/MovieDates.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/foundation/FileManager.h"

namespace kestrova::platform {

namespace {

std::uint64_t number(std::span<const char> bytes) {
  std::uint64_t value = 0;
  for (const char byte : bytes) value = value << 8U | static_cast<unsigned char>(byte);
  return value;
}

bool isOneOf(std::string_view type, std::initializer_list<std::string_view> types) {
  return std::ranges::find(types, type) != types.end();
}

void clearDates(std::span<char> boxes) {
  constexpr std::size_t kShortHead = 8;
  constexpr std::size_t kLongHead = 16;
  while (boxes.size() >= kShortHead) {
    std::uint64_t size = number(boxes.first(4));
    std::size_t head = kShortHead;
    if (size == 1 && boxes.size() >= kLongHead) {
      size = number(boxes.subspan(kShortHead, 8));
      head = kLongHead;
    }
    // 0: to the end.
    if (size == 0 || size > boxes.size()) size = boxes.size();
    if (size < head) return;
    const std::string_view type(boxes.data() + 4, 4);
    const auto content = boxes.subspan(head, static_cast<std::size_t>(size) - head);
    if (isOneOf(type, {"moov", "trak", "mdia"})) clearDates(content);
    if (isOneOf(type, {"mvhd", "tkhd", "mdhd"}) && content.size() >= 20) {
      // Version and flags, then two dates of four bytes, of eight from version 1 on.
      std::ranges::fill(content.subspan(4, content[0] == 0 ? 8 : 16), '\0');
    }
    boxes = boxes.subspan(static_cast<std::size_t>(size));
  }
}

}  // namespace

Result<Done> clearMovieDates(const std::filesystem::path& path) {
  const auto file = FileManager::contents(path);
  if (!file) return file.error();
  std::string bytes(file.value().view());
  clearDates(bytes);
  return FileManager::write(bytes, path);
}

}  // namespace kestrova::platform
