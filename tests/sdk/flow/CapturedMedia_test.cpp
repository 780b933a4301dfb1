#include <cstdlib>
#include <limits>
#include <locale>

#include "sdk/flow/DocumentPicture.h"
#include "sdk/flow/LivenessScore.h"
#include "tests/platform/graphics/Pictures.h"
#include "tests/support/StandardOutput.h"

namespace kestrova::test {
namespace {

class CommaPoint : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
};

TEST(LivenessScore, IsTheShortestDecimalTextInAnyLocale) {
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the locale takes it over.
  const auto before = std::locale::global(std::locale(std::locale(), new CommaPoint));
  EXPECT_EQ(livenessScoreText(0), "0.0");
  EXPECT_EQ(livenessScoreText(1), "0.99");
  EXPECT_EQ(livenessScoreText(2), "2.0");
  EXPECT_EQ(livenessScoreText(-1), "-1.0");
  EXPECT_EQ(livenessScoreText(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(livenessScoreText(std::numeric_limits<double>::max()).size(), 311U);
  std::locale::global(before);
}

class DocumentPictureTest : public PictureTest {
 protected:
  // NOLINTBEGIN(concurrency-mt-unsafe): the tests are on one thread.
  DocumentPictureTest() { ::setenv("XDG_DATA_HOME", folder.path().c_str(), 1); }
  ~DocumentPictureTest() override { ::unsetenv("XDG_DATA_HOME"); }
  // NOLINTEND(concurrency-mt-unsafe)

  UIImage photograph(const std::string& size) const {
    run("convert -size " + size + " xc:blue a.jpg");
    return UIImage::make(data("a.jpg")).value();
  }
  static std::pair<std::size_t, std::size_t> sizeOf(const std::filesystem::path& file) {
    const auto image = UIImage::make(FileManager::contents(file).value()).value().cgImage();
    return {image.value()->width(), image.value()->height()};
  }

  StandardOutput output;
};

TEST_F(DocumentPictureTest, IsAThirdAsLargeAndReplacesTheLastOne) {
  const auto first = storeDocumentPicture(photograph("3000x4000"), "picture.png");
  ASSERT_TRUE(first);
  EXPECT_EQ(sizeOf(*first), (std::pair<std::size_t, std::size_t>{990, 1320}));
  EXPECT_EQ(output.lines(),
            std::vector<std::string>{"Picture is here: Optional(file://" + first->string() + ")"});
  const auto second = storeDocumentPicture(photograph("1500x2000"), "picture.png");
  ASSERT_EQ(second, first);
  EXPECT_EQ(sizeOf(*second), (std::pair<std::size_t, std::size_t>{495, 660}));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(first->parent_path()),
                          std::filesystem::directory_iterator()),
            1);
}

TEST_F(DocumentPictureTest, SaysWhyItIsNotKeptAndLeavesTheLastOne) {
  const auto kept = storeDocumentPicture(photograph("300x400"), "picture.png");
  ASSERT_TRUE(kept);
  run("convert -size 1x1 xc:red tiny.png");
  EXPECT_FALSE(storeDocumentPicture(UIImage::make(data("tiny.png")).value(), "picture.png"));
  EXPECT_EQ(output.lines().back(), "Kestrova: the picture is not kept: it cannot be scaled");
  EXPECT_EQ(sizeOf(*kept).first, 99U);

  // A file where the directory is to be.
  std::filesystem::remove_all(kept->parent_path());
  run("touch '" + kept->parent_path().string() + "'");
  EXPECT_FALSE(storeDocumentPicture(photograph("300x400"), "picture.png"));
  EXPECT_TRUE(output.lines().back().starts_with("Kestrova: the picture is not kept: "));
}

}  // namespace
}  // namespace kestrova::test
