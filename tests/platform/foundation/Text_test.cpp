#include "platform/foundation/Text.h"

#include <gtest/gtest.h>

namespace kestrova::platform {
namespace {

TEST(Text, CountsInUTF16CodeUnits) {
  EXPECT_EQ(utf16Length("aé€😀"), 5U);
  EXPECT_EQ(byteOffset("aé€😀b", 3), 6U);
  EXPECT_EQ(byteOffset("aé€😀b", 5), 10U);
  // Between the halves of one character, and beyond the end.
  EXPECT_EQ(byteOffset("aé€😀b", 4), 6U);
  EXPECT_EQ(byteOffset("aé", 99), 3U);
  EXPECT_EQ(utf16Offset("aé€😀b", 10), 5U);
  EXPECT_EQ(utf16Length("\xff\xfe"), 2U);
}

TEST(Text, ReplacesARangeOfCodeUnits) {
  EXPECT_EQ(replacingCharacters("a😀b", {1, 2}, "x"), "axb");
  EXPECT_EQ(replacingCharacters("ab", {2, 0}, "😀"), "ab😀");
  EXPECT_EQ(replacingCharacters("ab", {1, 99}, ""), "a");
  EXPECT_EQ(replacingCharacters("ab", {99, 1}, "c"), "abc");
}

TEST(Text, FindsTheFirstLiteralOccurrence) {
  EXPECT_EQ(rangeOf("😀 terms and terms", "terms"), (NSRange{3, 5}));
  EXPECT_EQ(rangeOf("Terms", "terms"), (NSRange{NSNotFound, 0}));
  EXPECT_EQ(rangeOf("terms", ""), (NSRange{NSNotFound, 0}));
}

TEST(Text, TrimsUnicodeWhiteSpaceAtBothEnds) {
  EXPECT_EQ(trimmingWhitespacesAndNewlines(" \t\r\n\u00a0\u2003a b\u2028\u3000"), "a b");
  EXPECT_EQ(trimmingWhitespacesAndNewlines(" \n "), "");
  EXPECT_EQ(trimmingWhitespacesAndNewlines("é"), "é");
}

TEST(Text, MapsCaseAsUnicodeDoesInAnyLocale) {
  EXPECT_EQ(lowercased("ÀÉÎ I"), "àéî i");
  EXPECT_EQ(uppercased("straße"), "STRASSE");
  EXPECT_EQ(capitalized("bosnia and HERZEGOVINA"), "Bosnia And Herzegovina");
  EXPECT_EQ(capitalized("åland islands"), "Åland Islands");
  EXPECT_EQ(capitalized("guinea-bissau"), "Guinea-Bissau");
}

TEST(Text, TheFirstCharacterIsWhatPeopleSeeAsOne) {
  EXPECT_EQ(firstCharacter("e\u0301cole"), "e\u0301");
  EXPECT_EQ(firstCharacter("👩‍👩‍👧 family"), "👩‍👩‍👧");
  EXPECT_EQ(firstCharacter(""), "");
}

}  // namespace
}  // namespace kestrova::platform
