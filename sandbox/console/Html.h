#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrova::sandbox {

// Markup of our own; only a literal makes one, so that nothing received becomes markup.
class Markup {
 public:
  consteval Markup(const char* literal) : text_(literal) {}
  std::string_view text() const { return text_; }

 private:
  std::string_view text_;
};

// A piece of a page, written from left to right.
class Html {
 public:
  Html& operator<<(Markup markup);
  Html& operator<<(const Html& piece);
  Html& operator<<(std::int64_t number);

  // Bytes as text, also in an attribute's quotes. Markup's characters are escaped; control
  // characters, those that hide or turn text, and bytes that are no UTF-8 show as \x1b. Cut after
  // `limit` bytes with "…".
  Html& text(std::string_view bytes, std::size_t limit = 400);
  // As text(), the characters that cannot be shown set apart from the same letters sent as such.
  Html& value(std::string_view bytes, std::size_t limit = 1024);

  const std::string& string() const { return out_; }

 private:
  Html& write(std::string_view bytes, std::size_t limit, Markup before, Markup after);

  std::string out_;
};

// 1234567 as "1,234,567".
std::string grouped(std::uint64_t number);
// 1234567 as "1.2 MB".
std::string inUnits(std::uint64_t bytes);
// As a part of an address.
std::string percentEncoded(std::string_view bytes);

}  // namespace kestrova::sandbox
