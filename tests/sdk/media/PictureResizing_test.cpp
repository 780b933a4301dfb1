#include "sdk/media/PictureResizing.h"

#include <limits>

#include "tests/platform/graphics/Pictures.h"

namespace kestrova::test {
namespace {

class ResizingTest : public PictureTest {
 protected:
  UIImage made(const std::string& size, const std::string& name) const {
    run("convert -size " + size + " gradient:red-blue " + name);
    return UIImage::make(data(name)).value();
  }
  static void expectSize(const std::optional<UIImage>& image, CGSize points, std::size_t width,
                         std::size_t height) {
    ASSERT_TRUE(image);
    EXPECT_DOUBLE_EQ(image->size().width, points.width);
    EXPECT_DOUBLE_EQ(image->size().height, points.height);
    EXPECT_EQ(image->cgImage().value()->width(), width);
    EXPECT_EQ(image->cgImage().value()->height(), height);
    EXPECT_TRUE(image->cgImage().value()->isOpaque());
  }
};

TEST_F(ResizingTest, scalesByAFactor) {
  expectSize(resizedWithPercentage(made("3024x4032", "a.jpg"), 0.33), {997.92, 1330.56}, 998, 1331);
  expectSize(resizedWithPercentage(made("300x400", "b.png"), 0.33), {99, 132}, 99, 132);
}

TEST_F(ResizingTest, scalesToAWidthWithTheHeightRoundedUp) {
  const auto image = made("1000x750", "a.png");
  expectSize(resizedToWidth(image, 333), {333, 250}, 333, 250);
  expectSize(resizedToWidth(image, 500), {500, 375}, 500, 375);
}

TEST_F(ResizingTest, redrawsTheSamePixelsAtFactorOneAndKeepsTheScale) {
  const auto image = picture(2, {0xff102030, 0x80402010, 0, 0xffffffff}, 2);
  const auto same = resizedWithPercentage(image, 1);
  ASSERT_TRUE(same);
  EXPECT_EQ(pixelsOf(*same), pixelsOf(image));
  EXPECT_EQ(same->scale(), 2);
  EXPECT_EQ(same->size(), (CGSize{1, 1}));
}

TEST_F(ResizingTest, yieldsNoneWithoutPixelsOrFromADamagedFile) {
  const auto image = made("30x20", "a.jpg");
  for (const double factor : {0.0, -1.0, 0.01, 1e6, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(resizedWithPercentage(image, factor));
    EXPECT_FALSE(resizedToWidth(image, factor * 20));
  }
  const auto cut = UIImage::make(asData(bytes("a.jpg").substr(0, bytes("a.jpg").size() - 20)));
  ASSERT_TRUE(cut);
  EXPECT_FALSE(resizedWithPercentage(cut.value(), 0.5));
}

}  // namespace
}  // namespace kestrova::test
