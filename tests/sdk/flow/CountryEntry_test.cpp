#include "sdk/flow/CountryEntry.h"

#include <fstream>

#include <gtest/gtest.h>

#include "tests/support/StandardOutput.h"
#include "tests/support/TemporaryDirectory.h"

namespace kestrova {
namespace {

class Countries : public ::testing::Test {
 protected:
  std::vector<CountryEntry> from(std::string_view json) {
    const auto file = directory_.path() / "countries.json";
    std::ofstream(file) << json;
    return countriesIn(file);
  }
  static std::string codes(const std::vector<CountryEntry>& countries) {
    std::string text;
    for (const auto& country : countries) text += codeOf(country) + " ";
    return text;
  }

 private:
  const test::TemporaryDirectory directory_;
};

constexpr auto kWorld = R"([{"code":"af","name":"afghanistan"},{"code":"fr","name":"france"},
  {"code":"de","name":"germany"},{"code":"ge","name":"georgia"},{"code":"es","name":"spain"},
  {"code":"gb","name":"united kingdom"},{"code":"us","name":"united states"},
  {"code":"gr","name":"Greece"}])";

TEST_F(Countries, StandInTheOrderOfTheFileBelowThePinnedOnes) {
  EXPECT_EQ(codes(from(kWorld)), "us gb es de fr none af ge gr ");
  test::StandardOutput output;
  EXPECT_EQ(codes(from(R"([5, {"code":"us"}, {"name":"x"}, {"code":7,"name":"x"},
                           {"code":"at","name":"austria"}])")),
            "at ");
  EXPECT_EQ(output.lines().size(), 3U);
  EXPECT_TRUE(from("{}").empty());
  EXPECT_TRUE(from("[{").empty());
  EXPECT_TRUE(countriesIn("/nowhere/countries.json").empty());
  EXPECT_EQ(output.lines().size(), 6U);
}

TEST_F(Countries, AreFoundByTheBeginningOfTheirStoredName) {
  const auto all = from(kWorld);
  EXPECT_EQ(codes(matching(all, "ge")), "de ge ");
  EXPECT_EQ(codes(matching(all, "GE")), "de ge ");
  EXPECT_EQ(codes(matching(all, "gre")), "");
  EXPECT_EQ(codes(matching(all, " ge")), "");
  EXPECT_EQ(codes(matching(all, "")), codes(all));
  EXPECT_EQ(codes(matching(all, "united")), "us gb ");
  // Accents and kinds of apostrophes count only while they tell countries apart.
  const auto accented = from(R"([{"code":"ax","name":"åland"},{"code":"at","name":"austria"},
                                 {"code":"ci","name":"côte d’ivoire"}])");
  EXPECT_EQ(codes(matching(accented, "a")), "at ");
  EXPECT_EQ(codes(matching(accented, "al")), "ax ");
  for (const char* const text : {"cote d'", "CÔTE D‘", "cote dʼ", "côte d’"}) {
    EXPECT_EQ(codes(matching(accented, text)), "ci ") << text;
  }
}

}  // namespace
}  // namespace kestrova
