#include "platform/foundation/JSONValue.h"

#include <array>
#include <charconv>

namespace kestrova::platform {

namespace {

template <typename Real>
std::string realText(Real value) {
  // At most a sign, "0.", 324 zeros and 17 digits.
  std::array<char, 350> buffer;
  char* const end = buffer.data() + buffer.size();
  return {buffer.data(), std::to_chars(buffer.data(), end, value, std::chars_format::fixed).ptr};
}

void appendEscaped(std::string& out, unsigned codePoint) {
  std::array<char, 8> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), codePoint, 16).ptr;
  out += "\\u{";
  out.append(digits.data(), end);
  out += '}';
}

void appendQuoted(std::string& out, std::string_view text) {
  out += '"';
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0U;
    const auto third = i + 2 < text.size() ? static_cast<unsigned char>(text[i + 2]) : 0U;
    if (byte == '"' || byte == '\\') {
      out += '\\';
      out += text[i];
    } else if (byte == '\n') {
      out += "\\n";
    } else if (byte == '\r') {
      out += "\\r";
    } else if (byte == '\t') {
      out += "\\t";
    } else if (byte < 0x20 || byte == 0x7f) {
      appendEscaped(out, byte);
    } else if (byte == 0xc2 && next >= 0x80 && next < 0xa0) {  // U+0080 to U+009F
      appendEscaped(out, next);
      i += 1;
    } else if (byte == 0xe2 && next == 0x80 &&
               (third == 0xa8 || third == 0xa9)) {  // U+2028, U+2029
      appendEscaped(out, 0x2000U + (third & 0x3fU));
      i += 2;
    } else {
      out += text[i];
    }
  }
  out += '"';
}

void append(std::string& out, const JSONValue& value);

void append(std::string& out, const JSONDictionary& dictionary) {
  if (dictionary.empty()) {
    out += "[:]";
    return;
  }
  const char* separator = "[";
  for (const auto& [key, value] : dictionary) {
    out += separator;
    appendQuoted(out, key);
    out += ": ";
    append(out, value);
    separator = ", ";
  }
  out += ']';
}

void append(std::string& out, const JSONArray& array) {
  out += '[';
  const char* separator = "";
  for (const auto& value : array) {
    out += separator;
    append(out, value);
    separator = ", ";
  }
  out += ']';
}

void append(std::string& out, const JSONValue& value) {
  if (const auto* dictionary = value.dictionary()) {
    append(out, *dictionary);
  } else if (const auto* array = value.array()) {
    append(out, *array);
  } else if (const auto* text = value.text()) {
    appendQuoted(out, *text);
  } else if (const auto* boolean = value.boolean()) {
    out += *boolean ? "true" : "false";
  } else if (const auto* integer = value.integer()) {
    out += decimalText(*integer);
  } else if (const auto* real = value.real()) {
    out += decimalText(*real);
  } else {
    out += "<null>";
  }
}

}  // namespace

const std::string* textForKey(const JSONDictionary& dictionary, std::string_view key) {
  const auto found = dictionary.find(key);
  return found == dictionary.end() ? nullptr : found->second.text();
}

std::string description(const JSONValue& value) {
  std::string out;
  append(out, value);
  return out;
}

std::string description(const JSONDictionary& dictionary) {
  std::string out;
  append(out, dictionary);
  return out;
}

std::string quoted(std::string_view text) {
  std::string out;
  appendQuoted(out, text);
  return out;
}

std::string decimalText(double value) {
  return realText(value);
}

std::string decimalText(float value) {
  return realText(value);
}

std::string decimalText(std::int64_t value) {
  return std::to_string(value);
}

}  // namespace kestrova::platform
