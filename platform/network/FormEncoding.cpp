#include "platform/network/FormEncoding.h"

#include <array>
#include <cstdint>

namespace kestrova::platform {

namespace {

constexpr auto kUnescaped = [] {
  std::array<bool, 256> table{};
  for (const char c : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                       "0123456789-._~/?")) {
    table[static_cast<unsigned char>(c)] = true;
  }
  return table;
}();

void appendEscaped(std::string& out, std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  auto kept = text.begin();
  for (auto next = text.begin(); next != text.end(); ++next) {
    const auto byte = static_cast<unsigned char>(*next);
    if (kUnescaped[byte]) continue;
    const char escaped[] = {'%', digits[byte >> 4U], digits[byte & 0xfU]};
    out.append(kept, next).append(escaped, sizeof escaped);
    kept = next + 1;
  }
  out.append(kept, text.end());
}

void appendScalar(std::string& out, const JSONValue& value) {
  if (const auto* text = value.text()) {
    appendEscaped(out, *text);
  } else if (const auto* boolean = value.boolean()) {
    out += *boolean ? '1' : '0';
  } else {
    appendEscaped(out, description(value));
  }
}

// `key` is escaped already: brackets of nested keys escape like any other character.
void appendPairs(std::string& out, std::string_view key, const JSONValue& value) {
  if (const auto* array = value.array()) {
    const std::string inner = std::string(key).append("%5B%5D");
    for (const auto& element : *array) appendPairs(out, inner, element);
  } else if (const auto* dictionary = value.dictionary()) {
    for (const auto& [name, element] : *dictionary) {
      std::string inner = std::string(key).append("%5B");
      appendEscaped(inner, name);
      appendPairs(out, inner.append("%5D"), element);
    }
  } else {
    if (!out.empty()) out += '&';
    out.append(key).push_back('=');
    appendScalar(out, value);
  }
}

}  // namespace

std::string percentEscaped(std::string_view text) {
  std::string out;
  appendEscaped(out, text);
  return out;
}

std::string formEncoded(const JSONDictionary& parameters) {
  std::string out;
  out.reserve(512);
  std::string key;
  for (const auto& [name, value] : parameters) {
    key.clear();
    appendEscaped(key, name);
    appendPairs(out, key, value);
  }
  return out;
}

}  // namespace kestrova::platform
