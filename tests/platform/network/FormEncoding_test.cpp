#include "platform/network/FormEncoding.h"

#include <gtest/gtest.h>

namespace kestrova::platform {
namespace {

TEST(FormEncoding, EscapesEverythingButTheSixtyEightCharacters) {
  const std::string unescaped =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/?";
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    const auto escaped = percentEscaped({&character, 1});
    if (byte != 0 && unescaped.find(character) != std::string::npos) {
      EXPECT_EQ(escaped, std::string(1, character));
    } else {
      char expected[4];
      std::snprintf(expected, sizeof expected, "%%%02X", static_cast<unsigned>(byte));
      EXPECT_EQ(escaped, expected);
    }
  }
}

TEST(FormEncoding, WritesPairsInTheOrderOfTheirKeys) {
  EXPECT_EQ(formEncoded({{"step", "initialize"}, {"api_key", "a b&c"}}),
            "api_key=a%20b%26c&step=initialize");
  EXPECT_EQ(formEncoded({{"b", ""}, {"a", "é😀+%"}, {"c&=", "x"}}),
            "a=%C3%A9%F0%9F%98%80%2B%25&b=&c%26%3D=x");
  EXPECT_EQ(formEncoded({}), "");
}

TEST(FormEncoding, WritesEveryTypeOfValue) {
  EXPECT_EQ(
      formEncoded({{"b", true}, {"c", false}, {"d", 1e-4}, {"e", -5}, {"f", nullptr}, {"g", 1e5}}),
      "b=1&c=0&d=0.0001&e=-5&f=%3Cnull%3E&g=100000");
}

TEST(FormEncoding, NestsArraysAndDictionariesInBrackets) {
  const JSONArray assessments{JSONDictionary{{"value", "0.99"}, {"token", "LIVENESS_FACTOR"}},
                              JSONDictionary{{"token", "B"}}};
  EXPECT_EQ(
      formEncoded({{"a", assessments}, {"z", JSONArray{JSONArray{1, 2}}}, {"e", JSONArray{}}}),
      "a%5B%5D%5Btoken%5D=LIVENESS_FACTOR&a%5B%5D%5Bvalue%5D=0.99&a%5B%5D%5Btoken%5D=B"
      "&z%5B%5D%5B%5D=1&z%5B%5D%5B%5D=2");
  EXPECT_EQ(formEncoded({{"d", JSONDictionary{{"k[", JSONDictionary{{"i", "v"}}}}}}),
            "d%5Bk%5B%5D%5Bi%5D=v");
}

}  // namespace
}  // namespace kestrova::platform
