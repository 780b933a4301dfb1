#include <clocale>
#include <cstdlib>
#include <limits>

#include <gtest/gtest.h>

#include "platform/foundation/JSONSerialization.h"
#include "tests/support/TemporaryDirectory.h"

namespace kestrova::platform {
namespace {

using namespace std::string_literals;

Result<JSONValue> parse(std::string_view text) {
  return JSONSerialization::jsonObject(text, {.fragmentsAllowed = true});
}

// The parsed value as log lines show it, or "error".
std::string shown(std::string_view text) {
  const auto value = parse(text);
  return value ? description(value.value()) : "error";
}

TEST(JSON, DecodesEveryTypeAndShowsItAsLogLinesDo) {
  EXPECT_EQ(shown(R"({"b": [1, -2, 0.5, true, false, null, "t"], "a": {"x": {}, "y": []}})"),
            R"(["a": ["x": [:], "y": []], "b": [1, -2, 0.5, true, false, <null>, "t"]])");
  EXPECT_EQ(shown("\"fragment\""), "\"fragment\"");
  EXPECT_EQ(shown(" 12 "), "12");
  EXPECT_EQ(shown("1e3"), "1000");
  EXPECT_EQ(shown(R"({"k":1,"k":2})"), R"(["k": 2])");
}

TEST(JSON, RefusesFragmentsUnlessAllowed) {
  EXPECT_FALSE(JSONSerialization::jsonObject("\"text\""));
  EXPECT_TRUE(JSONSerialization::jsonObject("[]"));
  EXPECT_TRUE(JSONSerialization::jsonObject("{}"));
}

TEST(JSON, ShowsTextsInOneUnambiguousLine) {
  EXPECT_EQ(platform::quoted("a\"b\\c\nd\re\tf"s + '\0' + "\x1b\x7f"),
            R"("a\"b\\c\nd\re\tf\u{0}\u{1b}\u{7f}")");
  // Line separators and the C1 controls that terminals act on.
  EXPECT_EQ(platform::quoted("\u2028\u2029\u0085\u009b|\u00a0\u2027é😀"),
            "\"\\u{2028}\\u{2029}\\u{85}\\u{9b}|\u00a0\u2027é😀\"");
}

TEST(JSON, KeepsIntegersExactWhileTheyFit) {
  EXPECT_EQ(shown("9223372036854775807"), "9223372036854775807");
  EXPECT_EQ(shown("-9223372036854775808"), "-9223372036854775808");
  EXPECT_EQ(shown("9223372036854775808"), "9223372036854775808");
  EXPECT_TRUE(parse("9223372036854775808").value().real());
  EXPECT_EQ(shown("1234567890123456789012345"), "1234567890123456824475648");
}

TEST(JSON, ShowsNumbersAsDecimalTextAndNeverInScientificNotation) {
  EXPECT_EQ(shown("[0.1, 1e-4, -1e5, 1e+22, 2.0]"),
            "[0.1, 0.0001, -100000, 10000000000000000000000, 2]");
  EXPECT_EQ(decimalText(std::numeric_limits<double>::denorm_min()).size(), 326U);
  EXPECT_EQ(decimalText(0.00001F), "0.00001");
}

TEST(JSON, RejectsWhatIsNotStrictJSON) {
  for (const auto& text : {""s,
                           " "s,
                           "{"s,
                           "[1,]"s,
                           "{} {}"s,
                           "[] x"s,
                           "{\"a\":}"s,
                           "nul"s,
                           "NaN"s,
                           "01"s,
                           "1e400"s,
                           "// c\n1"s,
                           "\xef\xbb\xbf{}"s,
                           "{}\0"s,
                           "\"\xff\""s,
                           "\"\xc0\xaf\""s,
                           "\"\xed\xa0\x80\""s,
                           R"("\ud800")"s,
                           R"("\udc00")"s,
                           "\"a\nb\""s,
                           "\"tab\there\""s,
                           "'a'"s}) {
    EXPECT_EQ(shown(text), "error") << testing::PrintToString(text);
  }
}

TEST(JSON, LimitsNestingWithoutACrash) {
  const auto nested = [](std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
  };
  EXPECT_TRUE(parse(nested(JSONSerialization::kMaximumDepth)));
  EXPECT_FALSE(parse(nested(JSONSerialization::kMaximumDepth + 1)));
  EXPECT_FALSE(parse(nested(1'000'000)));
  EXPECT_FALSE(parse(std::string(1'000'000, '[')));
}

TEST(JSON, NumbersReadAndWriteTheSameUnderACommaLocale) {
  const test::TemporaryDirectory locales;
  const std::string path = locales.path();
  const std::string make = "localedef -i de_DE -f UTF-8 " + path + "/de_DE.UTF-8";
  ASSERT_EQ(std::system(make.c_str()), 0);                    // NOLINT
  ::setenv("LOCPATH", path.c_str(), 1);                       // NOLINT
  ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);  // NOLINT
  EXPECT_STREQ(std::localeconv()->decimal_point, ",");        // NOLINT
  EXPECT_EQ(shown("[0.99, 1.5e22]"), "[0.99, 15" + std::string(21, '0') + "]");
  EXPECT_EQ(decimalText(0.99F), "0.99");
  std::setlocale(LC_ALL, "C");  // NOLINT
  ::unsetenv("LOCPATH");        // NOLINT
}

TEST(JSON, TextForKeyIsTheTextOrNothing) {
  const JSONDictionary answer{{"key", 5}, {"next_step", "x"}};
  EXPECT_EQ(textForKey(answer, "key"), nullptr);
  EXPECT_EQ(textForKey(answer, "absent"), nullptr);
  ASSERT_NE(textForKey(answer, "next_step"), nullptr);
  EXPECT_EQ(*textForKey(answer, "next_step"), "x");
}

}  // namespace
}  // namespace kestrova::platform
