#include "platform/foundation/NSPredicate.h"

#include <string>

#include <gtest/gtest.h>

namespace kestrova::platform {
namespace {

NSPredicate matches(std::string_view pattern, std::string_view format = "SELF MATCHES[c] %@") {
  return NSPredicate::make(format, pattern).value();
}

TEST(NSPredicate, MatchesTheWholeText) {
  const auto predicate = matches("[a-z]+");
  EXPECT_TRUE(predicate.evaluate("AbC"));
  EXPECT_FALSE(predicate.evaluate("abc1"));
  EXPECT_FALSE(predicate.evaluate("abc\n"));
  EXPECT_FALSE(predicate.evaluate(""));
  EXPECT_FALSE(matches("[a-z]+", "SELF MATCHES %@").evaluate("AbC"));
}

TEST(NSPredicate, RefusesOtherFormatsAndBrokenPatterns) {
  EXPECT_FALSE(NSPredicate::make("SELF LIKE %@", "a"));
  const auto broken = NSPredicate::make("SELF MATCHES %@", "a(");
  ASSERT_FALSE(broken);
  EXPECT_NE(broken.error().localizedDescription.find("does not compile"), std::string::npos);
}

TEST(NSPredicate, DoesNotMatchTextThatIsNotUTF8) {
  EXPECT_FALSE(matches(".*").evaluate("a\xff"));
  EXPECT_TRUE(matches(".*").evaluate("é😀"));
}

TEST(NSPredicate, GivesUpOnAnExplosivePatternInsteadOfHanging) {
  EXPECT_FALSE(matches("(a*)*b").evaluate(std::string(5000, 'a')));
}

}  // namespace
}  // namespace kestrova::platform
