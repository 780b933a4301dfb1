#include "sandbox/Text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <iomanip>
#include <locale>
#include <sstream>
#include <system_error>

#include <sys/random.h>

namespace kestrova::sandbox {

namespace {

constexpr std::string_view digits = "0123456789abcdef";

unsigned char byteAt(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

// Length of the well-formed UTF-8 sequence at the start; 0 when there is none.
std::size_t utf8Length(std::string_view bytes) {
  const auto first = byteAt(bytes, 0);
  if (first < 0x80) return 1;
  // The second byte's range keeps out overlong forms, surrogates and what is above U+10FFFF.
  unsigned low = 0x80;
  unsigned high = 0xbf;
  std::size_t length = 0;
  if (first >= 0xc2 && first <= 0xdf) {
    length = 2;
  } else if (first >= 0xe0 && first <= 0xef) {
    length = 3;
    if (first == 0xe0) low = 0xa0;
    if (first == 0xed) high = 0x9f;
  } else if (first >= 0xf0 && first <= 0xf4) {
    length = 4;
    if (first == 0xf0) low = 0x90;
    if (first == 0xf4) high = 0x8f;
  }
  if (length == 0 || bytes.size() < length) return 0;
  if (byteAt(bytes, 1) < low || byteAt(bytes, 1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if ((byteAt(bytes, i) & 0xc0U) != 0x80) return 0;
  }
  return length;
}

void appendHex(std::string& out, unsigned char byte) {
  out += digits[byte >> 4U];
  out += digits[byte & 0xfU];
}

}  // namespace

std::size_t visibleLength(std::string_view bytes) {
  const auto length = utf8Length(bytes);
  const auto first = byteAt(bytes, 0);
  // U+0080 to U+009F are control characters too; U+2000 to U+207F break, hide and turn text.
  const bool hidden =
      first < 0x20 || first == 0x7f || (length == 2 && first == 0xc2 && byteAt(bytes, 1) < 0xa0) ||
      (length == 3 && (bytes.starts_with("\xe2\x80") || bytes.starts_with("\xe2\x81")));
  return hidden ? 0 : length;
}

std::string printable(std::string_view bytes, std::size_t limit) {
  std::string out = "\"";
  const auto shown = bytes.substr(0, limit);
  for (std::size_t i = 0; i < shown.size();) {
    const char c = shown[i];
    const auto length = visibleLength(shown.substr(i));
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
      ++i;
    } else if (c == '\n' || c == '\r' || c == '\t') {
      out += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
      ++i;
    } else if (length == 0) {
      out += "\\x";
      appendHex(out, byteAt(shown, i));
      ++i;
      // The rest of a hidden character is no sequence of its own and is escaped byte by byte.
    } else {
      out += shown.substr(i, length);
      i += length;
    }
  }
  out += '"';
  if (shown.size() < bytes.size()) out += "...";
  return out;
}

std::string jsonString(std::string_view bytes) {
  std::string out = "\"";
  for (std::size_t i = 0; i < bytes.size();) {
    const auto length = utf8Length(bytes.substr(i));
    const char c = bytes[i];
    if (length == 0) {
      out += "\xef\xbf\xbd";
    } else if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (byteAt(bytes, i) < 0x20) {
      out += "\\u00";
      appendHex(out, byteAt(bytes, i));
    } else {
      out += bytes.substr(i, length);
    }
    i += std::max<std::size_t>(length, 1);
  }
  return out += '"';
}

bool isUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const auto length = utf8Length(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  constexpr auto lower = [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [&](char x, char y) { return lower(x) == lower(y); });
}

std::string lowerHex(std::string_view bytes) {
  std::string out;
  for (const char c : bytes) appendHex(out, static_cast<unsigned char>(c));
  return out;
}

std::string randomHex(std::size_t bytes) {
  std::string random(bytes, '\0');
  // Up to 256 bytes come whole or not at all.
  if (getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) {
    throw std::system_error(errno, std::generic_category(), "getrandom");
  }
  return lowerHex(random);
}

std::string timestamp(std::chrono::system_clock::time_point time) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(time - seconds).count();
  const auto calendar = std::chrono::system_clock::to_time_t(seconds);
  std::tm utc{};
  gmtime_r(&calendar, &utc);
  std::array<char, 96> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900,
                utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec,
                static_cast<int>(milliseconds));
  return text.data();
}

std::string httpDate(std::chrono::system_clock::time_point time) {
  const auto calendar = std::chrono::system_clock::to_time_t(time);
  std::tm utc{};
  gmtime_r(&calendar, &utc);
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << std::put_time(&utc, "%a, %d %b %Y %H:%M:%S GMT");
  return text.str();
}

}  // namespace kestrova::sandbox
