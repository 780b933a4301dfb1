#include "platform/foundation/Text.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

namespace kestrova::platform {

namespace {

icu::UnicodeString decode(std::string_view text) {
  return icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

std::string encode(const icu::UnicodeString& text) {
  std::string out;
  return text.toUTF8String(out);
}

// Reads the character at `offset` and steps behind it.
UChar32 next(std::string_view text, std::size_t& offset) {
  UChar32 character = 0;
  auto position = static_cast<std::int64_t>(offset);
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  U8_NEXT_OR_FFFD(bytes, position, static_cast<std::int64_t>(text.size()), character);
  offset = static_cast<std::size_t>(position);
  return character;
}

bool isTrimmed(UChar32 character) {
  const auto type = u_charType(character);
  return type == U_SPACE_SEPARATOR || character == '\t' ||
         (character >= 0x0a && character <= 0x0d) || character == 0x85 || character == 0x2028 ||
         character == 0x2029;
}

}  // namespace

std::size_t utf16Length(std::string_view text) {
  return utf16Offset(text, text.size());
}

std::size_t byteOffset(std::string_view text, std::size_t utf16Offset) {
  std::size_t units = 0;
  std::size_t offset = 0;
  while (offset < text.size() && units < utf16Offset) {
    const auto start = offset;
    units += static_cast<std::size_t>(U16_LENGTH(next(text, offset)));
    if (units > utf16Offset) return start;
  }
  return offset;
}

std::size_t utf16Offset(std::string_view text, std::size_t byteOffset) {
  std::size_t units = 0;
  for (std::size_t offset = 0; offset < std::min(byteOffset, text.size());) {
    units += static_cast<std::size_t>(U16_LENGTH(next(text, offset)));
  }
  return units;
}

std::string replacingCharacters(std::string_view text, NSRange range,
                                std::string_view replacement) {
  const auto begin = byteOffset(text, range.location);
  const auto end = begin + byteOffset(text.substr(begin), range.length);
  std::string out(text.substr(0, begin));
  out += replacement;
  out += text.substr(end);
  return out;
}

NSRange rangeOf(std::string_view text, std::string_view part) {
  const auto found = part.empty() ? std::string_view::npos : text.find(part);
  if (found == std::string_view::npos) return {NSNotFound, 0};
  return {utf16Offset(text, found), utf16Length(part)};
}

std::string trimmingWhitespacesAndNewlines(std::string_view text) {
  std::size_t begin = 0;
  std::size_t end = 0;
  bool inside = false;
  for (std::size_t offset = 0; offset < text.size();) {
    const auto start = offset;
    if (isTrimmed(next(text, offset))) continue;
    if (!inside) begin = start;
    inside = true;
    end = offset;
  }
  return std::string(text.substr(begin, end - begin));
}

std::string lowercased(std::string_view text) {
  return encode(decode(text).toLower(icu::Locale::getRoot()));
}

std::string uppercased(std::string_view text) {
  return encode(decode(text).toUpper(icu::Locale::getRoot()));
}

std::string foldingAccentsAndApostrophes(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const auto* const decomposition = icu::Normalizer2::getNFDInstance(status);
  const auto characters =
      U_FAILURE(status) ? decode(text) : decomposition->normalize(decode(text), status);
  icu::UnicodeString folded;
  for (std::int32_t at = 0; at < characters.length();) {
    const UChar32 character = characters.char32At(at);
    at += U16_LENGTH(character);
    if (u_charType(character) == U_NON_SPACING_MARK) continue;
    const bool isApostrophe = character == 0x2018 || character == 0x2019 || character == 0x02bc;
    folded.append(isApostrophe ? UChar32{'\''} : character);
  }
  return encode(folded);
}

std::string capitalized(std::string_view text) {
  return encode(decode(text).toTitle(nullptr, icu::Locale::getRoot()));
}

std::string_view firstCharacter(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::BreakIterator> characters(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  // No character is longer than this in practice; a whole text need not be decoded for its first.
  const auto head = decode(text.substr(0, std::min<std::size_t>(text.size(), 256)));
  if (U_FAILURE(status) || head.isEmpty()) return text.substr(0, 0);
  characters->setText(head);
  characters->first();
  return text.substr(0, byteOffset(text, static_cast<std::size_t>(characters->next())));
}

}  // namespace kestrova::platform
