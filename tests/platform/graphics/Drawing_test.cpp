#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/graphics/CGContext.h"
#include "platform/graphics/UIGraphicsImageContext.h"
#include "tests/platform/graphics/Pictures.h"

namespace kestrova::test {
namespace {

using namespace platform;

constexpr std::uint32_t kRed = 0xffff0000;
constexpr std::uint32_t kGreen = 0xff00ff00;
constexpr std::uint32_t kBlue = 0xff0000ff;
constexpr std::uint32_t kWhite = 0xffffffff;

// The exact average of the area that pixel (x, y) of the smaller picture covers, channel by
// channel.
std::array<double, 4> areaAverage(const CGImage& source, std::size_t width, std::size_t height,
                                  std::size_t x, std::size_t y) {
  const double stepX = static_cast<double>(source.width()) / static_cast<double>(width);
  const double stepY = static_cast<double>(source.height()) / static_cast<double>(height);
  const auto overlap = [](std::size_t pixel, double begin, double end) {
    return std::min(end, static_cast<double>(pixel + 1)) -
           std::max(begin, static_cast<double>(pixel));
  };
  std::array<double, 4> sums{};
  for (std::size_t v = 0; v < source.height(); ++v) {
    const double lines =
        overlap(v, static_cast<double>(y) * stepY, static_cast<double>(y + 1) * stepY);
    for (std::size_t u = 0; lines > 0 && u < source.width(); ++u) {
      const double columns =
          overlap(u, static_cast<double>(x) * stepX, static_cast<double>(x + 1) * stepX);
      if (columns <= 0) continue;
      for (unsigned i = 0; i < 4; ++i) {
        sums[i] += lines * columns * (source.row(v)[u] >> 8 * i & 0xffU) / (stepX * stepY);
      }
    }
  }
  return sums;
}

class ScalingTest : public PictureTest {};

TEST_F(ScalingTest, makesAPictureSmallerByTheExactAverageOfAreas) {
  run("convert -size 97x61 plasma:red-blue \\( -size 97x61 radial-gradient:white-black \\) "
      "-alpha off -compose CopyOpacity -composite a.png");
  run("convert -size 97x61 plasma:red-blue b.jpg");
  for (const auto* const name : {"a.png", "b.jpg"}) {
    // Drawn before anything else has decoded it.
    for (const auto& [width, height] : {std::pair{32, 20}, {97, 7}, {1, 1}, {96, 61}, {40, 61}}) {
      const auto image = UIImage::make(data(name)).value();
      const CGSize size{static_cast<double>(width), static_cast<double>(height)};
      auto context = UIGraphicsImageContext::begin(size, false, 1);
      ASSERT_TRUE(image.draw({{}, size}, *context));
      const auto result = context->takeImage()->cgImage().value();
      const auto source = image.cgImage().value();
      double worst = 0;
      for (std::size_t y = 0; y < result->height(); ++y) {
        for (std::size_t x = 0; x < result->width(); ++x) {
          const auto exact = areaAverage(*source, result->width(), result->height(), x, y);
          for (unsigned i = 0; i < 4; ++i) {
            worst = std::max(worst, std::abs(exact[i] - (result->row(y)[x] >> 8 * i & 0xffU)));
          }
        }
      }
      EXPECT_LE(worst, 0.51) << name << " as " << width << " x " << height;
    }
  }
}

TEST(ImageContext, blendsBetweenPixelsWhenAPictureGrows) {
  auto context = UIGraphicsImageContext::begin({4, 1}, false, 1);
  ASSERT_TRUE(picture(2, {0xff000000, 0xff0000f0}).draw({{}, {4, 1}}, *context));
  EXPECT_EQ(pixelsOf(*context->takeImage()),
            (std::vector<std::uint32_t>{0xff000000, 0xff00003c, 0xff0000b4, 0xff0000f0}));
  context = UIGraphicsImageContext::begin({2, 3}, false, 3);
  ASSERT_TRUE(picture(1, {kRed}).draw({{}, {2, 3}}, *context));
  EXPECT_EQ(pixelsOf(*context->takeImage()), std::vector<std::uint32_t>(54, kRed));
}

TEST(ImageContext, roundsItsPixelsAndKeepsItsSize) {
  for (const auto& [points, pixels] : {std::pair{997.92, 998}, {990.0, 990}, {0.5, 1}, {1.49, 1}}) {
    auto context = UIGraphicsImageContext::begin({points, 2}, false, 1);
    ASSERT_TRUE(context);
    ASSERT_TRUE(picture(1, {kRed}).draw({{}, {points, 2}}, *context));
    const auto image = context->takeImage();
    EXPECT_EQ(image->size(), (CGSize{points, 2}));
    EXPECT_EQ(image->cgImage().value()->width(), static_cast<std::size_t>(pixels));
    // The picture reaches the edge of the last pixel: nothing shines through.
    EXPECT_TRUE(image->cgImage().value()->isOpaque());
    EXPECT_FALSE(context->takeImage());
    EXPECT_FALSE(picture(1, {kRed}).draw({{}, {1, 1}}, *context));
  }
}

TEST(ImageContext, existsForNoSizeWithoutPixelsOrBeyondTheLimit) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const auto size : {CGSize{0, 1}, CGSize{1, 0.4}, CGSize{-5, 5}, CGSize{kNaN, 1},
                          CGSize{kInfinity, 1}, CGSize{1e5, 1e5}, CGSize{1e300, 1}}) {
    EXPECT_FALSE(UIGraphicsImageContext::begin(size, false, 1));
  }
  for (const double scale : {0.0, -1.0, kNaN}) {
    EXPECT_FALSE(UIGraphicsImageContext::begin({1, 1}, false, scale));
  }
}

TEST(ImageContext, laysPicturesOverEachOther) {
  auto context = UIGraphicsImageContext::begin({2, 2}, true, 1);
  // Half a green pixel: premultiplied, of full strength.
  ASSERT_TRUE(picture(1, {0x80008000}).draw({{}, {1, 2}}, *context));
  ASSERT_TRUE(picture(1, {kRed}).draw({{1, 0}, {1, 1}}, *context));
  ASSERT_TRUE(picture(1, {kWhite}).draw({{0.5, 1}, {1, 1}}, *context));
  EXPECT_EQ(pixelsOf(*context->takeImage()),
            (std::vector<std::uint32_t>{0xff008000, kRed, 0xff80c080, 0xff808080}));
  // Beyond the edges, and at no sensible place at all.
  context = UIGraphicsImageContext::begin({1, 1}, false, 1);
  ASSERT_TRUE(picture(2, {kRed, kGreen, kBlue, kWhite}).draw({{-1, -1}, {2, 2}}, *context));
  for (const double place : {-1e300, 1e300, std::nan(""), 5.0}) {
    ASSERT_TRUE(picture(1, {kRed}).draw({{place, 0}, {place, 1}}, *context));
  }
  EXPECT_EQ(pixelsOf(*context->takeImage()), std::vector<std::uint32_t>{kWhite});
}

TEST(ImageContext, turnsPicturesByTheirOrientation) {
  const auto drawn = [](UIImageOrientation orientation) {
    const auto image = picture(2, {kRed, kGreen, kBlue, kWhite, kWhite, kWhite}, 2, orientation);
    auto context = UIGraphicsImageContext::begin(image.size(), false, 2);
    EXPECT_TRUE(image.draw({{}, image.size()}, *context));
    return pixelsOf(*context->takeImage());
  };
  using Pixels = std::vector<std::uint32_t>;
  const auto w = kWhite;
  EXPECT_EQ(drawn(UIImageOrientation::up), (Pixels{kRed, kGreen, kBlue, w, w, w}));
  EXPECT_EQ(drawn(UIImageOrientation::down), (Pixels{w, w, w, kBlue, kGreen, kRed}));
  EXPECT_EQ(drawn(UIImageOrientation::right), (Pixels{w, kBlue, kRed, w, w, kGreen}));
  EXPECT_EQ(drawn(UIImageOrientation::left), (Pixels{kGreen, w, w, kRed, kBlue, w}));
  EXPECT_EQ(drawn(UIImageOrientation::upMirrored), (Pixels{kGreen, kRed, w, kBlue, w, w}));
  EXPECT_EQ(drawn(UIImageOrientation::downMirrored), (Pixels{w, w, kBlue, w, kRed, kGreen}));
  EXPECT_EQ(drawn(UIImageOrientation::leftMirrored), (Pixels{kRed, kBlue, w, kGreen, w, w}));
  EXPECT_EQ(drawn(UIImageOrientation::rightMirrored), (Pixels{w, w, kGreen, w, kBlue, kRed}));
}

class BitmapContextTest : public ::testing::Test {
 protected:
  static constexpr std::size_t kBytesPerRow = 13;
  std::optional<CGContext> context(std::size_t width, std::size_t height) {
    return CGContext::make(memory, width, height, 8, kBytesPerRow, CGImageAlphaInfo::noneSkipFirst);
  }
  std::vector<int> pixel(std::size_t x, std::size_t y) const {
    const auto* const bytes = &memory[y * kBytesPerRow + x * 4];
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
  }
  static std::shared_ptr<const CGImage> image(std::size_t width,
                                              const std::vector<std::uint32_t>& pixels) {
    return picture(width, pixels).cgImage().value();
  }

  std::vector<std::uint8_t> memory = std::vector<std::uint8_t>(3 * kBytesPerRow, 7);
};

TEST_F(BitmapContextTest, anchorsAPictureAtTheLowerLeftCorner) {
  ASSERT_TRUE(context(3, 3)->draw(image(2, {kRed, kGreen, kBlue, 0xff123456}), {{}, {2, 2}}));
  EXPECT_EQ(pixel(0, 1), (std::vector{255, 255, 0, 0}));
  EXPECT_EQ(pixel(1, 1), (std::vector{255, 0, 255, 0}));
  EXPECT_EQ(pixel(0, 2), (std::vector{255, 0, 0, 255}));
  EXPECT_EQ(pixel(1, 2), (std::vector{255, 0x12, 0x34, 0x56}));
  // What is not covered stays, the ends of the rows included.
  EXPECT_EQ(pixel(0, 0), (std::vector{7, 7, 7, 7}));
  EXPECT_EQ(pixel(2, 2), (std::vector{7, 7, 7, 7}));
  EXPECT_EQ(memory[kBytesPerRow - 1], 7);
}

TEST_F(BitmapContextTest, cutsOffALargerPictureAtTheTopAndRight) {
  ASSERT_TRUE(context(1, 1)->draw(image(2, {kRed, kGreen, kBlue, kWhite}), {{}, {2, 2}}));
  EXPECT_EQ(pixel(0, 0), (std::vector{255, 0, 0, 255}));
  EXPECT_EQ(memory[4], 7);
}

TEST_F(BitmapContextTest, drawsOverWhatIsThereAndIgnoresItsAlpha) {
  std::fill(memory.begin(), memory.end(), 0);
  memory[1] = 100;
  ASSERT_TRUE(context(1, 1)->draw(image(1, {0x80400000}), {{}, {1, 1}}));
  EXPECT_EQ(pixel(0, 0), (std::vector{255, 64 + 50, 0, 0}));
}

TEST_F(BitmapContextTest, drawsThroughItsTransform) {
  auto moved = context(3, 3);
  moved->concatenate(CGAffineTransform::identity());
  moved->concatenate(CGAffineTransform::translation(2, 2));
  moved->concatenate(CGAffineTransform::scale(-1, 1));
  ASSERT_TRUE(moved->draw(image(2, {kRed, kGreen}), {{}, {2, 1}}));
  EXPECT_EQ(pixel(1, 0), (std::vector{255, 255, 0, 0}));
  EXPECT_EQ(pixel(0, 0), (std::vector{255, 0, 255, 0}));
  moved->concatenate({0, 1, -1, 0, 0, 0});
  EXPECT_FALSE(moved->draw(image(1, {kRed}), {{}, {1, 1}}));
}

TEST_F(BitmapContextTest, existsOnlyForMemoryThatFits) {
  EXPECT_FALSE(context(4, 1));
  EXPECT_FALSE(context(1, 4));
  EXPECT_FALSE(context(0, 1));
  EXPECT_FALSE(CGContext::make(memory, 1, 1, 5, 4, CGImageAlphaInfo::noneSkipFirst));
  EXPECT_FALSE(CGContext::make(memory, 1, SIZE_MAX, 8, 4, CGImageAlphaInfo::noneSkipFirst));
}

}  // namespace
}  // namespace kestrova::test
