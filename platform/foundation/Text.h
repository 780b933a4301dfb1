#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrova::platform {

// A range of UTF-16 code units of a text.
struct NSRange {
  std::size_t location = 0;
  std::size_t length = 0;

  friend bool operator==(const NSRange&, const NSRange&) = default;
};

// The location of a range that was not found.
inline constexpr std::size_t NSNotFound = static_cast<std::size_t>(-1);

// Texts are UTF-8 throughout; bytes that are not count as U+FFFD, one for each maximal ill-formed
// part. None of these depends on the process's locale.

std::size_t utf16Length(std::string_view text);
// The byte offset of a UTF-16 offset; of the character's first byte where the offset falls between
// the surrogates of one character; the text's size where it lies beyond the end.
std::size_t byteOffset(std::string_view text, std::size_t utf16Offset);
std::size_t utf16Offset(std::string_view text, std::size_t byteOffset);
// Replaces the code units in `range`, which is clamped to the text.
std::string replacingCharacters(std::string_view text, NSRange range, std::string_view replacement);
// The first literal, case-sensitive occurrence; {NSNotFound, 0} where there is none or `part` is
// empty.
NSRange rangeOf(std::string_view text, std::string_view part);

// Without the white space and line breaks at both ends, as Unicode counts them.
std::string trimmingWhitespacesAndNewlines(std::string_view text);
std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);
// For lenient searches: removes accents and other combining marks, and makes every apostrophe
// straight. Keeps the case.
std::string foldingAccentsAndApostrophes(std::string_view text);
// Each word's first letter in upper case, the rest in lower case.
std::string capitalized(std::string_view text);
// The bytes of the first character as people see it (a letter with its combining marks, a whole
// emoji sequence).
std::string_view firstCharacter(std::string_view text);

}  // namespace kestrova::platform
