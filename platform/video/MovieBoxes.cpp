#include "platform/video/MovieBoxes.h"

#include <optional>
#include <string_view>

#include "platform/foundation/FileManager.h"

namespace kestrova::platform {

namespace {

constexpr std::size_t kHead = 8;

std::string bytes(std::uint64_t value, std::size_t width = 4) {
  std::string text(width, '\0');
  for (auto byte = text.rbegin(); byte != text.rend(); ++byte, value >>= 8U) {
    *byte = static_cast<char>(value & 0xffU);
  }
  return text;
}

std::uint64_t number(std::string_view bytes) {
  std::uint64_t value = 0;
  for (const char byte : bytes) value = value << 8U | static_cast<unsigned char>(byte);
  return value;
}

std::string box(std::string_view type, const std::string& content) {
  return bytes(kHead + content.size()).append(type).append(content);
}

// Version and flags, no dates, five units a second, no duration; normal speed and volume, identity
// matrix; no preview; the next track has number 1.
std::string movieHeader() {
  std::string content = bytes(0) + bytes(0) + bytes(0) + bytes(5) + bytes(0);
  content += bytes(0x00010000) + std::string("\x01\x00", 2) + std::string(10, '\0');
  for (const std::uint32_t part : {0x00010000U, 0U, 0U, 0U, 0x00010000U, 0U, 0U, 0U, 0x40000000U}) {
    content += bytes(part);
  }
  return content + std::string(24, '\0') + bytes(1);
}

// Bytes of each date and duration in a box with this content: version 1 uses 64 bits.
std::size_t width(std::string_view content) {
  return content.starts_with('\0') ? 4 : 8;
}

// The header of the movie, the track or the media without its dates and with a duration longer by
// `delay`. Version and flags come first, then two dates, `between` bytes, and the duration.
std::string completedHeader(std::string content, std::size_t between, std::uint32_t delay) {
  const auto size = width(content);
  const auto at = 4 + 2 * size + between;
  if (content.size() < at + size) return content;
  content.replace(4, 2 * size, 2 * size, '\0');
  const auto duration = number(std::string_view(content).substr(at, size));
  return content.replace(at, size, bytes(duration + delay, size));
}

// The edit list, preceded by an empty edit of `delay`.
std::string delayedEdits(std::string_view content, std::uint32_t delay) {
  constexpr std::size_t kEntries = 8;
  const auto size = width(content);
  if (delay == 0 || content.size() < kEntries) return std::string(content);
  const std::string nothing = bytes(delay, size) + std::string(size, '\xff') + bytes(0x00010000);
  const auto count = bytes(number(content.substr(4, 4)) + 1);
  return std::string(content.substr(0, 4))
      .append(count)
      .append(nothing)
      .append(content.substr(kEntries));
}

std::string completed(std::string_view boxes, std::uint32_t delay);

// None if the box needs no change.
std::optional<std::string> completedContent(std::string_view type, std::string_view content,
                                            std::uint32_t delay) {
  if (type == "mvhd") return completedHeader(std::string(content), 4, delay);
  if (type == "tkhd") return completedHeader(std::string(content), 8, delay);
  if (type == "mdhd") return completedHeader(std::string(content), 4, 0);
  if (type == "elst") return delayedEdits(content, delay);
  for (const std::string_view group : {"moov", "trak", "mdia", "edts"}) {
    if (type == group) return completed(content, delay);
  }
  return std::nullopt;
}

std::string completed(std::string_view boxes, std::uint32_t delay) {
  std::string out;
  while (boxes.size() >= kHead) {
    const auto shortSize = number(boxes.substr(0, 4));
    const auto size = shortSize == 1 ? number(boxes.substr(kHead, 8)) : shortSize;
    // A size of 0 means that the box extends to the end.
    if (size < kHead || size > boxes.size()) break;
    const auto whole = boxes.substr(0, static_cast<std::size_t>(size));
    const auto type = whole.substr(4, 4);
    const auto changed =
        shortSize == 1 ? std::nullopt : completedContent(type, whole.substr(kHead), delay);
    out += changed ? box(type, *changed) : whole;
    boxes.remove_prefix(whole.size());
  }
  return out.append(boxes);
}

}  // namespace

std::string emptyMovie() {
  return box("ftyp", "qt  " + bytes(0x200) + "qt  ") + box("mdat", "") +
         box("moov", box("mvhd", movieHeader()));
}

Result<Done> completeMovie(const std::filesystem::path& path, std::uint32_t delay) {
  const auto file = FileManager::contents(path);
  if (!file) return file.error();
  return FileManager::write(completed(file.value().view(), delay), path);
}

}  // namespace kestrova::platform
