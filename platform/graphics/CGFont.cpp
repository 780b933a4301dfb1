#include "platform/graphics/CGFont.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/graphics/GraphicsError.h"

namespace kestrova::platform {

namespace {

using namespace std::string_view_literals;

// A part of a file; empty where it lies beyond the whole.
std::string_view part(std::string_view bytes, std::size_t offset, std::size_t size) {
  if (offset > bytes.size() || size > bytes.size() - offset) return {};
  return bytes.substr(offset, size);
}

// A big-endian number; 0 beyond the end.
std::size_t number(std::string_view bytes, std::size_t offset, std::size_t size) {
  std::size_t value = 0;
  for (const char byte : part(bytes, offset, size)) {
    value = value << 8U | static_cast<unsigned char>(byte);
  }
  return value;
}

std::string_view table(std::string_view file, std::string_view tag) {
  const auto count = number(file, 4, 2);
  for (std::size_t i = 0; i < count; ++i) {
    const auto entry = part(file, 12 + 16 * i, 16);
    if (entry.starts_with(tag)) return part(file, number(entry, 8, 4), number(entry, 12, 4));
  }
  return {};
}

// PostScript names are printable ASCII without spaces and brackets.
bool isPostScriptName(std::string_view name) {
  constexpr std::size_t kMaximumLength = 63;
  return !name.empty() && name.size() <= kMaximumLength && std::ranges::all_of(name, [](char c) {
    return c > ' ' && c < 0x7f && "[](){}<>/%"sv.find(c) == std::string_view::npos;
  });
}

std::optional<std::string> readName(std::string_view names) {
  constexpr std::size_t kPostScript = 6;
  constexpr std::size_t kWindows = 3;
  const auto strings = number(names, 4, 2);
  for (std::size_t i = 0; i < number(names, 2, 2); ++i) {
    const auto record = part(names, 6 + 12 * i, 12);
    if (record.empty()) break;
    if (number(record, 6, 2) != kPostScript) continue;
    const auto text = part(names, strings + number(record, 10, 2), number(record, 8, 2));
    std::string name;
    // Windows stores two bytes a character, of which the first is 0 in any such name.
    const std::size_t step = number(record, 0, 2) == kWindows ? 2 : 1;
    for (std::size_t at = step - 1; at < text.size(); at += step) name += text[at];
    if (isPostScriptName(name)) return name;
  }
  return std::nullopt;
}

}  // namespace

Result<CGFont> CGFont::make(const CGDataProvider& provider) {
  const auto file = provider.view();
  const std::array kinds{"\0\1\0\0"sv, "OTTO"sv, "true"sv};
  const bool isKnown =
      std::ranges::any_of(kinds, [file](auto kind) { return file.starts_with(kind); });
  if (!isKnown || table(file, "head").empty() || table(file, "cmap").empty()) {
    return graphicsError(GraphicsErrorCode::unknownFormat, "not a TrueType or OpenType font");
  }
  auto name = readName(table(file, "name"));
  if (!name) {
    return graphicsError(GraphicsErrorCode::unknownFormat, "a font without a PostScript name");
  }
  return CGFont(provider, *std::move(name));
}

}  // namespace kestrova::platform
