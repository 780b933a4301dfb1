#include "sdk/flow/EmailAddress.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

#include "platform/foundation/NSPredicate.h"
#include "sdk/Platform.h"

namespace kestrova {
namespace {

// The grammar in its plain form, which takes exponential time on some texts.
constexpr std::string_view kPlain =
    R"re((?:[a-zA-Z0-9!#$%\&'*+/=?\^_`{|}~-]+(?:\.[a-zA-Z0-9!#$%\&'*+/=?\^_`{|}~-]+)*|"(?:[\x01-\x08\x0b\x0c\x0e-\x1f\x21\x23-\x5b\x5d-\x7f]|\\[\x01-\x09\x0b\x0c\x0e-\x7f])*")@(?:(?:[a-z0-9](?:[a-z0-9-]*[a-z0-9])?\.)+[a-z0-9](?:[a-z0-9-]*[a-z0-9])?|\[(?:(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\.){3}(?:25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?|[a-z0-9-]*[a-z0-9]:(?:[\x01-\x08\x0b\x0c\x0e-\x1f\x21-\x5a\x53-\x7f]|\\[\x01-\x09\x0b\x0c\x0e-\x7f])+)\]))re";

TEST(EmailAddress, AcceptsWhatTheGrammarAccepts) {
  for (const auto* text :
       {"a@b.cc", "ada@example.com", "ADA@EXAMPLE.COM", "'o'neil'@x.org", "a.b.c@d-e.f", "\"\"@a.b",
        "\"a.b\"@a.b", "\"\\\"\"@a.b", "a@[1.2.3.4]", "a@[255.255.255.255]", "a@[1.2.3.x:y]",
        "a@[1.2.3.IPv6:::1]", "a@1.2", "{|}~@a.b"}) {
    EXPECT_TRUE(isEmailAddress(text)) << text;
  }
  for (const auto* text : {"",
                           " ",
                           "a",
                           "@b.cc",
                           "a@",
                           "a@b",
                           "a@b.",
                           "a@.b",
                           "a@-b.cc",
                           "a@b-.cc",
                           ".a@b.cc",
                           "a.@b.cc",
                           "a..b@c.dd",
                           "a b@c.dd",
                           "\"a b\"@c.dd",
                           "a@[1.2.3]",
                           "a@[1.2.3.256]",
                           "a@[256.2.3.4]",
                           "a@[1.2.3.x:]",
                           "a@b.cc\n",
                           " a@b.cc",
                           "a@b.c\xC3\xA4",
                           "a@b_c.dd"}) {
    EXPECT_FALSE(isEmailAddress(text)) << text;
  }
}

TEST(EmailAddress, AnswersHostileTextsThatThePlainFormNeverFinishes) {
  std::string labels = "a@aa";
  for (int label = 1; label < 40; ++label) labels += ".aa";
  EXPECT_TRUE(isEmailAddress(labels));
  EXPECT_FALSE(isEmailAddress(labels + "."));
  const std::string backslashes(60, '\\');
  EXPECT_TRUE(isEmailAddress("a@[1.1.1.a:" + backslashes + "]"));
  EXPECT_FALSE(isEmailAddress("a@[1.1.1.a:" + backslashes));
  for (const char each : {'a', '.', '-', '@', '"', '\\', '[', ' ', '1'}) {
    const std::string many(10'000, each);
    EXPECT_FALSE(isEmailAddress(many));
    EXPECT_EQ(isEmailAddress("a@" + many + ".bb"), each == 'a' || each == '1');
    EXPECT_EQ(isEmailAddress(many + "@a.bb"), each == 'a' || each == '1' || each == '-');
    EXPECT_EQ(isEmailAddress("a@[1.1.1.a:" + many + "]"), each != ' ');
  }
}

TEST(EmailAddress, AgreesWithThePlainForm) {
  const auto plain = NSPredicate::make("SELF MATCHES[c] %@", kPlain);
  ASSERT_TRUE(plain);
  std::mt19937 random(7);  // NOLINT(cert-msc51-cpp): the same texts each time.
  constexpr std::string_view kLetters = "aZ09.@-\"\\[]:' \x01\x7f";
  const std::string seeds[] = {"a@b.cc", "\"a\\b\"@c.d", "a.b@[1.2.3.4]", "a@[1.2.3.x-9:\\a]"};
  int accepted = 0;
  for (int round = 0; round < 20'000; ++round) {
    std::string text = seeds[random() % 4];
    for (auto edits = random() % 4; edits > 0; --edits) {
      const auto at = random() % (text.size() + 1);
      const char letter = kLetters[random() % kLetters.size()];
      switch (random() % 3) {
        case 0:
          text.insert(at, 1, letter);
          break;
        case 1:
          text.erase(std::min<std::size_t>(at, text.size() - 1), 1);
          break;
        default:
          text[std::min<std::size_t>(at, text.size() - 1)] = letter;
      }
      if (text.empty()) text = "a";
    }
    const bool expected = plain.value().evaluate(text);
    accepted += expected ? 1 : 0;
    ASSERT_EQ(isEmailAddress(text), expected) << text;
  }
  EXPECT_GT(accepted, 1000);
}

}  // namespace
}  // namespace kestrova
