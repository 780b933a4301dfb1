#include <QtGui/QColorSpace>
#include <QtGui/QImage>

#include "platform/graphics/UIGraphicsImageContext.h"
#include "tests/platform/graphics/Pictures.h"

namespace kestrova::test {
namespace {

using namespace platform;
using namespace std::string_literals;

std::string profile(QColorSpace::NamedColorSpace space) {
  return QColorSpace(space).iccProfile().toStdString();
}

class ColorProfileTest : public PictureTest {
 protected:
  // The JPEG file with the profile in this many marker segments, the last one first.
  static std::string withProfile(std::string jpeg, const std::string& icc, std::size_t count = 1) {
    const auto size = icc.size() / count + 1;
    for (std::size_t i = 0; i < count; ++i) {
      const auto part = icc.substr(i * size, size);
      const auto length = part.size() + 16;
      jpeg.insert(2, "\xff\xe2"s + static_cast<char>(length >> 8U) + static_cast<char>(length) +
                         "ICC_PROFILE\0"s + static_cast<char>(i + 1) + static_cast<char>(count) +
                         part);
    }
    return jpeg;
  }

  static std::vector<std::uint32_t> pixelsOf(const std::string& file) {
    const auto image = UIImage::make(asData(file));
    return image ? test::pixelsOf(image.value()) : std::vector<std::uint32_t>();
  }

  // Drawn at half its size, which reads a JPEG file row by row.
  static UIImage halved(const std::string& file) {
    const auto image = UIImage::make(asData(file)).value();
    const CGSize size{image.size().width / 2, image.size().height / 2};
    auto context = UIGraphicsImageContext::begin(size, false, 1);
    EXPECT_TRUE(image.draw({{}, size}, *context));
    return *context->takeImage();
  }

  // What Qt's colour conversion makes of straight pixels.
  static std::vector<std::uint32_t> converted(std::vector<std::uint32_t> pixels,
                                              QColorSpace::NamedColorSpace from) {
    QImage image(reinterpret_cast<uchar*>(pixels.data()), static_cast<int>(pixels.size()), 1,
                 QImage::Format_ARGB32);
    image.setColorSpace(from);
    image.convertToColorSpace(QColorSpace::SRgb);
    return pixels;
  }

  static int difference(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b) {
    std::string rgba;
    for (const auto pixel : b) {
      for (const unsigned shift : {16, 8, 0, 24}) rgba += static_cast<char>(pixel >> shift);
    }
    return greatestDifference(a, rgba);
  }
};

TEST_F(ColorProfileTest, ConvertsPicturesOfPhonesToSRGB) {
  run("convert -size 16x8 'xc:rgb(180,130,100)' -quality 100 -sampling-factor 4:4:4 skin.jpg");
  run("convert -seed 7 -size 40x30 plasma:red-blue plain.png");
  run("convert plain.png -quality 95 plain.jpg && convert plain.jpg -interlace JPEG scans.jpg");
  const auto skin = pixelsOf(withProfile(bytes("skin.jpg"), profile(QColorSpace::DisplayP3)));
  EXPECT_LE(difference(skin, std::vector<std::uint32_t>(128, 0xffbd7f5f)), 2);
  for (const auto space : {QColorSpace::DisplayP3, QColorSpace::AdobeRgb}) {
    const auto icc = profile(space);
    for (const auto* const name : {"plain.jpg", "scans.jpg"}) {
      const auto plain = bytes(name);
      const auto expected = converted(pixelsOf(plain), space);
      EXPECT_GT(difference(pixelsOf(plain), expected), 20);
      for (const std::size_t count : {1, 3}) {
        const auto file = withProfile(plain, icc, count);
        EXPECT_LE(difference(pixelsOf(file), expected), 2) << name;
        EXPECT_LE(difference(test::pixelsOf(halved(file)),
                             converted(test::pixelsOf(halved(plain)), space)),
                  2)
            << name;
      }
    }
  }
  std::ofstream(folder.path() / "p3.icc") << profile(QColorSpace::DisplayP3);
  for (const auto* const kind : {"PNG8:", "PNG48:", "-interlace PNG PNG24:"}) {
    run("convert plain.png "s + kind + "a.png && convert a.png -profile p3.icc " + kind + "b.png");
    const auto expected = converted(pixelsOf(bytes("a.png")), QColorSpace::DisplayP3);
    EXPECT_LE(difference(pixelsOf(bytes("b.png")), expected), 2) << kind;
  }
}

TEST_F(ColorProfileTest, ConvertsColoursUnderTransparency) {
  std::ofstream(folder.path() / "p3.icc") << profile(QColorSpace::DisplayP3);
  run("convert -size 8x1 'xc:rgba(180,130,100,0.5)' -alpha on -profile p3.icc PNG32:clear.png");
  const auto pixels = pixelsOf(bytes("clear.png"));
  ASSERT_EQ(pixels.size(), 8U);
  const auto expected = std::array<std::uint8_t, 4>{189, 127, 95, 128};
  EXPECT_LE(
      greatestDifference({pixels.data(), 1}, {reinterpret_cast<const char*>(expected.data()), 4}),
      2);
  // The edges of a place between pixels are half covered.
  run("convert -size 8x8 'xc:rgb(180,130,100)' -quality 100 -sampling-factor 4:4:4 skin.jpg");
  const auto file = withProfile(bytes("skin.jpg"), profile(QColorSpace::DisplayP3));
  auto context = UIGraphicsImageContext::begin({5, 5}, false, 1);
  ASSERT_TRUE(UIImage::make(asData(file)).value().draw({{0.5, 0.5}, {4, 4}}, *context));
  const auto edge = test::pixelsOf(*context->takeImage());
  EXPECT_LE(greatestDifference({&edge[2], 1}, {reinterpret_cast<const char*>(expected.data()), 4}),
            2);
}

TEST_F(ColorProfileTest, TakesPixelsAsSRGBWithoutAProfileThatApplies) {
  run("convert -seed 7 -size 40x30 plasma:red-blue plain.jpg && convert plain.jpg -colorspace Gray "
      "grey.jpg && convert plain.jpg -colorspace CMYK inks.jpg && convert plain.jpg plain.png");
  const auto p3 = profile(QColorSpace::DisplayP3);
  const auto plain = bytes("plain.jpg");
  auto incomplete = withProfile(plain, p3, 2);
  incomplete.erase(2, 2 + 14 + 2 + p3.size() - (p3.size() / 2 + 1));
  auto grey = p3;
  grey.replace(16, 4, "GRAY");
  for (const auto& file :
       {withProfile(plain, profile(QColorSpace::SRgb)), withProfile(plain, grey), incomplete,
        withProfile(plain, p3.substr(0, 200)), withProfile(plain, "")}) {
    EXPECT_EQ(pixelsOf(file), pixelsOf(plain));
  }
  for (const auto* const name : {"grey.jpg", "inks.jpg"}) {
    EXPECT_EQ(pixelsOf(withProfile(bytes(name), p3)), pixelsOf(bytes(name)));
  }
}

TEST_F(ColorProfileTest, SurvivesAnyDamagedProfileInSilence) {
  run("convert -size 2x2 xc:red plain.jpg");
  const auto plain = bytes("plain.jpg");
  const auto p3 = profile(QColorSpace::DisplayP3);
  ::testing::internal::CaptureStderr();
  for (std::size_t i = 0; i < p3.size(); ++i) {
    auto damaged = p3;
    damaged[i] = static_cast<char>(~damaged[i]);
    EXPECT_EQ(pixelsOf(withProfile(plain, damaged)).size(), 4U);
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace kestrova::test
