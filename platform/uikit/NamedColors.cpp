#include "platform/uikit/NamedColors.h"

#include <charconv>
#include <cstdint>

#include "platform/foundation/FileManager.h"
#include "platform/foundation/JSONSerialization.h"

namespace kestrova::platform {

namespace {

constexpr auto kFile = "Colors.json";

std::optional<UIColor> fromHexadecimal(std::string_view text) {
  if ((text.size() != 7 && text.size() != 9) || text.front() != '#') return std::nullopt;
  const std::string digits = std::string(text.substr(1)) + (text.size() == 7 ? "ff" : "");
  std::uint32_t value = 0;
  const char* const end = digits.data() + digits.size();
  if (std::from_chars(digits.data(), end, value, 16).ptr != end) return std::nullopt;
  const auto part = [value](unsigned shift) { return double((value >> shift) & 0xFFU) / 255; };
  return UIColor(part(24), part(16), part(8), part(0));
}

}  // namespace

NamedColors NamedColors::of(const Bundle& bundle, NibFaults& faults) {
  NamedColors named;
  const auto path = bundle.path("Colors", "json");
  if (!path) return named;
  const auto file = FileManager::contents(*path);
  const auto json = file ? JSONSerialization::jsonObject(file.value().view()) : file.error();
  const auto* const colors = json ? json.value().dictionary() : nullptr;
  if (!colors) {
    faults.add(std::string(kFile) + ": " +
               (json ? "it is no dictionary" : json.error().localizedDescription));
    return named;
  }
  for (const auto& [name, value] : *colors) {
    const auto* const text = value.text();
    const auto color = text ? fromHexadecimal(*text) : std::nullopt;
    if (color) {
      named.colors_.insert_or_assign(name, *color);
    } else {
      faults.add(std::string(kFile) + ": " + platform::quoted(name) + " is no colour");
    }
  }
  return named;
}

std::optional<UIColor> NamedColors::color(std::string_view text) const {
  const auto found = colors_.find(text);
  return found == colors_.end() ? fromHexadecimal(text) : found->second;
}

}  // namespace kestrova::platform
