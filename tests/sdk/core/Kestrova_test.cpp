#include "sdk/core/Kestrova.h"

#include "tests/support/BackendTest.h"

namespace kestrova {
namespace {

class KestrovaTest : public test::BackendTest {
 protected:
  KestrovaTest() {
    Kestrova::apiKey.reset();
    Kestrova::authentication_key.reset();
    Kestrova::next_step.reset();
    Kestrova::email.reset();
  }

  static void start() { Kestrova::startVerification(nullptr); }
};

TEST_F(KestrovaTest, StartingWithoutAKeyThrowsAndSendsNothing) {
  try {
    start();
    FAIL() << "nothing was thrown";
  } catch (const KestrovaError& error) {
    EXPECT_EQ(error.error(), KestrovaErrors::notInitializedApiKey);
    EXPECT_EQ(error.domain(), "Kestrova.KestrovaErrors");
    EXPECT_EQ(error.code(), 0);
    EXPECT_TRUE(error.userInfo().empty());
    EXPECT_STREQ(error.what(), "notInitializedApiKey");
  }
  EXPECT_EQ(output.lines(), std::vector<std::string>{"Kestrova API key is: nil"});
  EXPECT_TRUE(server->requests().empty());
  EXPECT_EQ(KestrovaError(KestrovaErrors::authenticationKeyNotInitialized).code(), 1);
}

TEST_F(KestrovaTest, StartingOpensAnAuthenticationAndStoresItsKeys) {
  Kestrova::initialize("first");
  Kestrova::initialize("k\"1");
  start();
  EXPECT_EQ(Kestrova::authentication_key, std::nullopt);
  ASSERT_TRUE(waitUntil([] { return Kestrova::authentication_key.has_value(); }));
  EXPECT_EQ(lastRequest().body, "api_key=k%221&step=initialize");
  EXPECT_EQ(Kestrova::authentication_key, lastRequest().authentication);
  EXPECT_EQ(Kestrova::next_step, "set_nationality");
  const auto lines = output.lines();
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0], R"(Kestrova API key is: Optional("k\"1"))");
  EXPECT_TRUE(lines[2].starts_with("JSON: [\"key\": \""));
  EXPECT_EQ(lines[3], "createAuthentication response: " + lines[2].substr(6));
}

TEST_F(KestrovaTest, AnEmptyKeyIsSentAsItIs) {
  Kestrova::initialize("");
  start();
  ASSERT_TRUE(waitUntil([&] { return !server->requests().empty(); }));
  EXPECT_EQ(lastRequest().body, "api_key=&step=initialize");
}

TEST_F(KestrovaTest, AnAnswerWithoutBothTextsStoresNothing) {
  Kestrova::initialize("K");
  Kestrova::authentication_key = "old";
  Kestrova::next_step = "before";
  play("no-next-step:once");
  start();
  EXPECT_TRUE(waitForLine("next_step not found"));
  play("status-500-object:once");
  start();
  EXPECT_TRUE(waitForLine("Could not initialize authentication"));
  play("top-level-array:once");
  start();
  EXPECT_TRUE(waitForLine("Could not parse"));
  EXPECT_EQ(Kestrova::authentication_key, "old");
  EXPECT_EQ(Kestrova::next_step, "before");
}

TEST_F(KestrovaTest, ASecondRunReplacesTheKeysAndKeepsTheAddress) {
  Kestrova::initialize("K");
  Kestrova::email = "a@example.com";
  start();
  ASSERT_TRUE(waitUntil([] { return Kestrova::authentication_key.has_value(); }));
  const auto first = Kestrova::authentication_key;
  start();
  ASSERT_TRUE(waitUntil([&] { return Kestrova::authentication_key != first; }));
  EXPECT_EQ(Kestrova::email, "a@example.com");
}

TEST_F(KestrovaTest, TheBundleHoldsTheTypefaces) {
  const auto bundle = Kestrova::bundle();
  ASSERT_TRUE(bundle);
  for (const char* const face :
       {"Black", "Bold", "ExtraBold", "Light", "Medium", "Regular", "SemiBold"}) {
    EXPECT_TRUE(bundle->path(std::string("Exo-") + face, "ttf")) << face;
  }
}

}  // namespace
}  // namespace kestrova
