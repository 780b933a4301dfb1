#include "platform/graphics/CGImageSource.h"

#include <utility>

#include "platform/graphics/GraphicsError.h"
#include "tests/platform/graphics/Pictures.h"

namespace kestrova::test {
namespace {

using namespace platform;
using namespace std::string_literals;

class GIFTest : public PictureTest {
 protected:
  static Result<CGImageSource> sourceOf(std::string_view file) {
    return CGImageSource::make(std::make_shared<const Data>(asData(file)));
  }

  // Compares every frame with the one that another decoder composes.
  void expectSameFrames(const std::string& name) const {
    auto source = sourceOf(bytes(name));
    ASSERT_TRUE(source) << source.error().localizedDescription;
    run("convert " + name + " -coalesce -depth 8 rgba:frames.raw");
    const auto raw = bytes("frames.raw");
    std::size_t offset = 0;
    for (std::size_t i = 0; i < source.value().count(); ++i) {
      const auto image = source.value().imageAtIndex(i);
      ASSERT_TRUE(image) << image.error().localizedDescription;
      const auto size = image.value()->pixels().size() * 4;
      ASSERT_LE(offset + size, raw.size());
      EXPECT_EQ(greatestDifference(image.value()->pixels(), raw.substr(offset, size)), 0)
          << name << ", frame " << i;
      offset += size;
    }
    EXPECT_EQ(offset, raw.size());
  }

  // Frames over a transparent screen that leave it, overlap, and have transparent pixels.
  static std::string frames(const std::string& setting) {
    return "convert -size 40x30 " + setting + " -delay 10 xc:none " + setting +
           " \\( -size 20x18 gradient:red-blue -repage +3+5 \\) " + setting +
           " \\( -size 9x22 plasma:green-yellow -repage +25+4 \\) " + setting +
           " \\( -size 12x12 pattern:checkerboard -transparent '#999999' -repage +8+9 \\) " +
           setting + " \\( -size 6x6 xc:cyan -repage +30+20 \\) frames.gif";
  }

  // A screen of 2 x 2 pixels, red and green in its palette, with these records.
  static std::string file(const std::string& records) {
    return "GIF89a\2\0\2\0\x80\0\0\xff\0\0\0\xff\0"s + records + ";";
  }
  // Frames of the pixel at the top left.
  const std::string red = "\x2c\0\0\0\0\1\0\1\0\0\2\2\x44\1\0"s;
  const std::string green = "\x2c\0\0\0\0\1\0\1\0\0\2\2\x4c\1\0"s;
  const std::uint32_t redPixel = 0xffff0000;
  const std::uint32_t greenPixel = 0xff00ff00;
};

TEST_F(GIFTest, composesFramesByTheirDisposal) {
  for (const auto* const disposal : {"undefined", "none", "background", "previous"}) {
    SCOPED_TRACE(disposal);
    run(frames("-dispose "s + disposal));
    expectSameFrames("frames.gif");
  }
  run("convert -size 40x30 -dispose none xc:orange -dispose previous \\( -size 9x9 xc:red -repage "
      "+2+2 \\) -dispose background \\( -size 20x9 xc:blue -repage +9+9 \\) -dispose previous \\( "
      "-size 9x20 xc:lime -repage +12+3 \\) -dispose none \\( -size 5x5 xc:cyan -repage +0+20 \\) "
      "mixed.gif");
  expectSameFrames("mixed.gif");
}

TEST_F(GIFTest, readsInterlacedOptimisedAndManyColouredFiles) {
  for (const auto* const size : {"1x1", "7x3", "64x61"}) {
    run("convert -size "s + size + " plasma:red-blue plasma:white-black +repage plain.gif");
    run("gifsicle --interlace plain.gif -o interlaced.gif");
    run("gifsicle -O3 plain.gif -o optimised.gif");
    for (const auto* const name : {"plain.gif", "interlaced.gif", "optimised.gif"}) {
      expectSameFrames(name);
    }
  }
  run("ffmpeg -v error -f lavfi -i testsrc=s=96x64:r=5 -frames:v 6 other.gif");
  expectSameFrames("other.gif");
}

TEST_F(GIFTest, givesDelaysAsStoredAndClamped) {
  run("convert -size 4x4 -delay 0 xc:red -delay 1 xc:lime -delay 7 xc:blue -delay 10 xc:cyan "
      "-delay 12 xc:white -delay 65535 xc:black delays.gif");
  const auto source = sourceOf(bytes("delays.gif"));
  ASSERT_TRUE(source);
  const std::vector<std::pair<double, double>> expected{{0, 0.1},   {0.01, 0.1},  {0.07, 0.1},
                                                        {0.1, 0.1}, {0.12, 0.12}, {655.35, 655.35}};
  ASSERT_EQ(source.value().count(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto properties = source.value().propertiesAtIndex(i);
    const auto& gif = *properties.at(kCGImagePropertyGIFDictionary).dictionary();
    EXPECT_EQ(*gif.at(kCGImagePropertyGIFUnclampedDelayTime).real(), expected[i].first);
    EXPECT_EQ(*gif.at(kCGImagePropertyGIFDelayTime).real(), expected[i].second);
  }
  EXPECT_TRUE(source.value().propertiesAtIndex(expected.size()).empty());
}

TEST_F(GIFTest, givesNoDelayWhereTheFileStatesNone) {
  const auto source = sourceOf(file(red + "!\xf9\4\0\3\0\0\0"s + green));
  ASSERT_TRUE(source);
  const auto gif = [&](std::size_t i) {
    return *source.value().propertiesAtIndex(i).at(kCGImagePropertyGIFDictionary).dictionary();
  };
  EXPECT_TRUE(gif(0).empty());
  EXPECT_EQ(gif(1).size(), 2U);
}

TEST_F(GIFTest, decodesImagesInAnyOrder) {
  run(frames("-dispose previous"));
  const auto file = bytes("frames.gif");
  auto forward = sourceOf(file);
  auto backward = sourceOf(file);
  ASSERT_EQ(forward.value().count(), 5U);
  for (std::size_t i = 5; i-- > 0;) {
    auto again = sourceOf(file);
    const auto direct = again.value().imageAtIndex(i);
    const auto back = backward.value().imageAtIndex(i);
    EXPECT_TRUE(std::ranges::equal(direct.value()->pixels(), back.value()->pixels()));
  }
  EXPECT_FALSE(forward.value().imageAtIndex(5));
}

TEST_F(GIFTest, leavesOutADamagedImageAndGoesOn) {
  auto damaged = green;
  damaged[12] = '\x7f';  // A code that no dictionary holds yet.
  auto source = sourceOf(file(red + damaged + green));
  ASSERT_TRUE(source);
  ASSERT_EQ(source.value().count(), 3U);
  EXPECT_EQ(source.value().imageAtIndex(0).value()->pixels()[0], redPixel);
  EXPECT_EQ(source.value().imageAtIndex(1).error().code,
            static_cast<int>(GraphicsErrorCode::damaged));
  EXPECT_EQ(source.value().imageAtIndex(2).value()->pixels()[0], greenPixel);
  EXPECT_EQ(source.value().imageAtIndex(2).value()->pixels()[3], 0U);
}

TEST_F(GIFTest, LosesOnlyTheFrameWithAnImpossibleCodeSize) {
  for (const char codeSize : {'\x9', '\xc', '\xff'}) {
    auto damaged = green;
    damaged[10] = codeSize;
    auto source = sourceOf(file(red + damaged + green));
    ASSERT_EQ(source.value().count(), 3U);
    EXPECT_EQ(source.value().imageAtIndex(0).value()->pixels()[0], redPixel);
    EXPECT_FALSE(source.value().imageAtIndex(1));
    EXPECT_EQ(source.value().imageAtIndex(2).value()->pixels()[0], greenPixel);
  }
}

TEST_F(GIFTest, LosesOnlyTheLastFrameIfItHasNoTerminator) {
  auto unended = green;
  unended.pop_back();
  for (const auto* const end : {"", ";"}) {
    auto source = sourceOf("GIF89a\2\0\2\0\x80\0\0\xff\0\0\0\xff\0"s + red + unended + end);
    ASSERT_EQ(source.value().count(), 1U);
    EXPECT_EQ(source.value().imageAtIndex(0).value()->pixels()[0], redPixel);
  }
}

TEST_F(GIFTest, TakesTheFirstFrameForAScreenWithoutSize) {
  for (const int height : {0, 2}) {
    auto sizeless = file(red + green);
    sizeless[6] = 0;
    sizeless[8] = static_cast<char>(height);
    sizeless[20] = 1;  // The first frame starts one pixel from the left.
    auto source = sourceOf(sizeless);
    ASSERT_EQ(source.value().count(), 2U);
    const auto image = source.value().imageAtIndex(1);
    ASSERT_TRUE(image) << image.error().localizedDescription;
    EXPECT_EQ(image.value()->width(), 2U);
    EXPECT_EQ(image.value()->height(), height == 0 ? 1U : 2U);
    EXPECT_EQ(image.value()->pixels()[0], greenPixel);
    EXPECT_EQ(image.value()->pixels()[1], redPixel);
  }
}

TEST_F(GIFTest, findsTheNextImageAfterOneOfAnyLength) {
  // Row 0 of an image of two, then the end of its data, with the end of codes before it or without;
  // and images of no height and no width.
  for (const auto& odd :
       {"\x2c\0\0\0\0\1\0\2\0\0\2\1\x44\0"s, "\x2c\0\0\0\0\1\0\2\0\0\2\2\x44\1\0"s,
        "\x2c\0\0\0\0\1\0\0\0\0\2\2\x44\1\0"s, "\x2c\0\0\0\0\0\0\1\0\0\2\2\x44\1\0"s,
        "\x2c\0\0\0\0\1\0\2\0\0\2\0"s}) {
    auto source = sourceOf(file(red + odd + green));
    ASSERT_EQ(source.value().count(), 3U);
    (void)source.value().imageAtIndex(1);
    const auto last = source.value().imageAtIndex(2);
    ASSERT_TRUE(last) << last.error().localizedDescription;
    EXPECT_EQ(last.value()->pixels()[0], greenPixel);
  }
}

TEST_F(GIFTest, decodesCodesOfAnyDepth) {
  // What follows the end of the codes counts for nothing.
  auto ended = red;
  ended.pop_back();
  for (int i = 0; i < 20; ++i) ended += "\1\xff"s;
  auto source = sourceOf(file(ended + "\0"s + green));
  EXPECT_EQ(source.value().imageAtIndex(0).value()->pixels()[0], redPixel);
  ended[7] = 2;
  source = sourceOf(file(ended + "\0"s + green));
  EXPECT_FALSE(source.value().imageAtIndex(0));
  EXPECT_TRUE(source.value().imageAtIndex(1));
  for (const char depth : {'\0', '\1', '\x9', '\xc', '\x1f', '\x40', '\xff'}) {
    auto odd = red;
    odd[10] = depth;
    auto other = sourceOf(file(odd));
    if (other && other.value().count() > 0) (void)other.value().imageAtIndex(0);
  }
}

TEST_F(GIFTest, clipsFramesToTheScreen) {
  auto beyond = green;
  beyond[1] = 1;
  beyond[3] = '\x80';
  auto source = sourceOf(file(beyond + red));
  EXPECT_EQ(source.value().imageAtIndex(0).value()->pixels()[1], 0U);
  EXPECT_EQ(source.value().imageAtIndex(1).value()->pixels()[0], redPixel);
}

TEST_F(GIFTest, keepsTheImagesBeforeABreak) {
  run(frames("-dispose background"));
  const auto whole = bytes("frames.gif");
  auto complete = sourceOf(whole);
  std::size_t most = 0;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    auto source = sourceOf(std::string_view(whole).substr(0, length));
    if (!source) continue;
    EXPECT_GE(source.value().count(), most);
    most = source.value().count();
    for (std::size_t i = 0; i < most; ++i) {
      const auto part = source.value().imageAtIndex(i);
      ASSERT_TRUE(part);
      EXPECT_TRUE(std::ranges::equal(part.value()->pixels(),
                                     complete.value().imageAtIndex(i).value()->pixels()));
    }
  }
  EXPECT_EQ(most, 5U);
}

TEST_F(GIFTest, refusesWhatIsNoGIFFileOrTooLarge) {
  for (const auto& other : {""s, "GIF"s, "\x89PNG\r\n\x1a\n"s, std::string(100, 'x')}) {
    EXPECT_EQ(sourceOf(other).error().code, static_cast<int>(GraphicsErrorCode::unknownFormat));
  }
  auto huge = file(red);
  huge[7] = huge[9] = '\xff';
  EXPECT_EQ(sourceOf(huge).error().code, static_cast<int>(GraphicsErrorCode::tooLarge));
  auto many = file("");
  many.pop_back();
  many[7] = many[9] = 10;  // 2562 pixels square, eight of which are too many.
  for (int i = 0; i < 8; ++i) many += red;
  EXPECT_EQ(sourceOf(many).error().code, static_cast<int>(GraphicsErrorCode::tooLarge));
  // Nothing to show is no error.
  EXPECT_EQ(sourceOf(file("")).value().count(), 0U);
}

}  // namespace
}  // namespace kestrova::test
