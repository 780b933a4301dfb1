#include "sandbox/Text.h"

#include <chrono>

#include <gtest/gtest.h>

namespace kestrova::sandbox {
namespace {

TEST(Text, PrintableTextCarriesNothingThatATerminalWouldObey) {
  EXPECT_EQ(printable("a\"b\\c\n\r\t\x1b[31m"), R"("a\"b\\c\n\r\t\x1b[31m")");
  EXPECT_EQ(printable("gr\xc3\xbc\xc3\x9f \xf0\x9f\x99\x82"),
            "\"gr\xc3\xbc\xc3\x9f \xf0\x9f\x99\x82\"");
  EXPECT_EQ(printable("\xc2\x9b\xe2\x80\xae\xff"), R"("\xc2\x9b\xe2\x80\xae\xff")");
  EXPECT_EQ(printable("abcdef", 3), "\"abc\"...");
  EXPECT_EQ(printable("ab\xc3\xbc", 3), "\"ab\\xc3\"...");
}

TEST(Text, JsonStringsAreWellFormedWhateverTheyHold) {
  EXPECT_EQ(jsonString("a\"\\\n\x01\xc3\xbc"), "\"a\\\"\\\\\\u000a\\u0001\xc3\xbc\"");
  EXPECT_EQ(jsonString("\xc3(\xed\xa0\x80"),
            "\"\xef\xbf\xbd(\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\"");
}

TEST(Text, Utf8IsJudgedStrictly) {
  for (const char* const good :
       {"", "a", "\xc2\x80", "\xe0\xa0\x80", "\xef\xbf\xbf", "\xf4\x8f\xbf\xbf"}) {
    EXPECT_TRUE(isUtf8(good)) << printable(good);
  }
  for (const char* const bad :
       {"\x80", "\xc1\x80", "\xc3", "\xe0\x9f\xbf", "\xed\xa0\x80", "\xf0\x8f\xbf\xbf",
        "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xe2\x82"}) {
    EXPECT_FALSE(isUtf8(bad)) << printable(bad);
  }
}

TEST(Text, TimesAreUtcWithMilliseconds) {
  EXPECT_EQ(
      httpDate(std::chrono::system_clock::time_point(std::chrono::milliseconds(1709164800007))),
      "Thu, 29 Feb 2024 00:00:00 GMT");
  EXPECT_EQ(
      timestamp(std::chrono::system_clock::time_point(std::chrono::milliseconds(1709164800007))),
      "2024-02-29T00:00:00.007Z");
}

}  // namespace
}  // namespace kestrova::sandbox
