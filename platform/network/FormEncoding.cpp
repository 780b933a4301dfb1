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
  const auto start = out.size();
  out.resize(start + 3 * text.size());
  char* write = out.data() + start;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (kUnescaped[byte]) {
      *write++ = c;
    } else {
      *write++ = '%';
      *write++ = digits[byte >> 4U];
      *write++ = digits[byte & 0xfU];
    }
  }
  out.resize(static_cast<std::size_t>(write - out.data()));
}

// `key` is escaped already: brackets of nested keys escape like any other character.
void appendPairs(std::string& out, const std::string& key, const JSONValue& value) {
  constexpr std::string_view open = "%5B";
  constexpr std::string_view close = "%5D";
  if (const auto* array = value.array()) {
    std::string inner = key;
    inner.append(open).append(close);
    for (const auto& element : *array) appendPairs(out, inner, element);
  } else if (const auto* dictionary = value.dictionary()) {
    for (const auto& [name, element] : *dictionary) {
      std::string inner = key;
      inner += open;
      appendEscaped(inner, name);
      inner += close;
      appendPairs(out, inner, element);
    }
  } else {
    if (!out.empty()) out += '&';
    out.append(key).push_back('=');
    if (const auto* text = value.text()) {
      appendEscaped(out, *text);
    } else if (const auto* boolean = value.boolean()) {
      out += *boolean ? '1' : '0';
    } else {
      appendEscaped(out, description(value));
    }
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
  std::string key;
  for (const auto& [name, value] : parameters) {
    key.clear();
    appendEscaped(key, name);
    appendPairs(out, key, value);
  }
  return out;
}

}  // namespace kestrova::platform
