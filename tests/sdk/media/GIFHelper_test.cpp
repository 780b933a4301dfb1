#include "sdk/media/GIFHelper.h"

#include <filesystem>
#include <fstream>
#include <limits>

#include "sdk/core/Kestrova.h"
#include "tests/platform/graphics/Pictures.h"
#include "tests/support/StandardOutput.h"

namespace kestrova::test {
namespace {

using Helper = UIImageExtensions;

class GIFHelperTest : public PictureTest {
 protected:
  // The bytes of a file whose frames have these delays, in hundredths of a second.
  std::string file(const std::vector<int>& delays) const {
    std::string command = "convert -size 3x2";
    for (std::size_t i = 0; i < delays.size(); ++i) {
      command +=
          " -delay " + std::to_string(delays[i]) + " 'xc:rgb(" + std::to_string(i) + ",9,9)'";
    }
    run(command + " made.gif");
    return bytes("made.gif");
  }

  // How often each frame is in the list, in order.
  static std::vector<int> repeats(const UIImage& animation) {
    std::vector<int> repeats;
    const CGImage* last = nullptr;
    for (const auto& image : animation.images()) {
      const auto* const bitmap = image.cgImage().value().get();
      if (bitmap != last) repeats.push_back(0);
      ++repeats.back();
      last = bitmap;
    }
    return repeats;
  }

  void expectTiming(const std::vector<int>& delays, const std::vector<int>& expected,
                    double duration) {
    const auto animation = Helper::gifImageWithData(asData(file(delays)));
    ASSERT_TRUE(animation);
    EXPECT_EQ(repeats(*animation), expected);
    EXPECT_DOUBLE_EQ(animation->duration(), duration);
  }

  const StandardOutput output;
};

TEST_F(GIFHelperTest, repeatsFramesInProportionToTheirDelays) {
  expectTiming({10, 20, 5}, {1, 2, 1}, 0.12);
  expectTiming({50}, {1}, 0.15);
  expectTiming({15, 10}, {3, 2}, 0.075);
  expectTiming({10, 10, 10, 10, 10, 10, 10, 10, 10, 10}, std::vector<int>(10, 1), 0.3);
  expectTiming({0, 1, 9, 20}, {1, 1, 1, 2}, 0.15);
  // 122.99... units, which are not rounded.
  expectTiming({41, 10}, {61, 15}, 0.152);
}

TEST_F(GIFHelperTest, keepsTheShortestDelayWhereAFrameStatesNone) {
  using namespace std::string_literals;
  const auto source = CGImageSource::make(std::make_shared<const Data>(
      asData("GIF89a\1\0\1\0\x80\0\0\xff\0\0\0\xff\0\x2c\0\0\0\0\1\0\1\0\0\2\2\x44\1\0;"s)));
  ASSERT_TRUE(source);
  EXPECT_EQ(Helper::delayForImageAtIndex(0, source.value()), 0.1);
  EXPECT_EQ(Helper::delayForImageAtIndex(7, source.value()), 0.1);
}

TEST_F(GIFHelperTest, dropsADamagedFrameWithItsDelay) {
  auto damaged = file({10, 30, 10});
  // The second frame's codes begin with one that no dictionary holds yet.
  const auto second = damaged.find('\x2c', damaged.find('\x2c') + 1);
  const bool hasPalette = (damaged[second + 9] & '\x80') != 0;
  const auto colors =
      hasPalette ? 3U * (2U << (static_cast<unsigned>(damaged[second + 9]) & 7U)) : 0U;
  damaged[second + 10 + colors + 2] = '\x7f';
  const auto animation = Helper::gifImageWithData(asData(damaged));
  ASSERT_TRUE(animation);
  EXPECT_EQ(repeats(*animation), (std::vector{1, 1}));
  EXPECT_DOUBLE_EQ(animation->duration(), 0.06);
}

TEST_F(GIFHelperTest, saysWhatIsWrongInOneLine) {
  EXPECT_FALSE(Helper::gifImageWithData(asData("no picture")));
  EXPECT_FALSE(Helper::gifImageWithName("absent"));
  EXPECT_EQ(output.lines(),
            (std::vector<std::string>{"image doesn't exist",
                                      "The image named \"absent\" does not exist"}));
  EXPECT_FALSE(Helper::gifImageWithData(asData("GIF89a\1" + std::string(7, '\0') + ";")));
}

TEST_F(GIFHelperTest, findsItsFilesInTheBundle) {
  const auto bundle = Kestrova::bundle();
  ASSERT_TRUE(bundle);
  const auto path = bundle->bundlePath() / "temporaryOfATest.gif";
  std::ofstream(path) << file({10, 20});
  EXPECT_TRUE(Helper::gifImageWithName("temporaryOfATest"));
  std::filesystem::remove(path);
  std::filesystem::create_directory(path);
  EXPECT_FALSE(Helper::gifImageWithName("temporaryOfATest"));
  std::filesystem::remove(path);
  EXPECT_EQ(output.lines().back(), "The image named \"temporaryOfATest\" cannot be read");
}

TEST_F(GIFHelperTest, refusesAnAnimationOfTooManyEntries) {
  EXPECT_FALSE(
      Helper::gifImageWithData(asData(file({65535, 65534, 65533, 65532, 65531, 65529, 11}))));
  EXPECT_EQ(output.lines(), std::vector<std::string>{"An animation takes too many entries"});
}

TEST(GreatestCommonDivisor, takesAbsentNumbers) {
  EXPECT_EQ(Helper::gcdForPair({}, 5), 5);
  EXPECT_EQ(Helper::gcdForPair(7, {}), 7);
  EXPECT_EQ(Helper::gcdForPair({}, {}), 0);
  EXPECT_EQ(Helper::gcdForPair(12, 18), 6);
  EXPECT_EQ(Helper::gcdForPair(0, 4), 4);
  constexpr auto kSmallest = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(Helper::gcdForPair(kSmallest, 6), -2);
  EXPECT_EQ(Helper::gcdForPair(-1, kSmallest), -1);
  EXPECT_EQ(Helper::gcdForPair(0, kSmallest), kSmallest);
  EXPECT_EQ(Helper::gcdForArray({}), 1);
  EXPECT_EQ(Helper::gcdForArray({30, 45, 60}), 15);
  EXPECT_EQ(Helper::gcdForArray({30}), 30);
}

}  // namespace
}  // namespace kestrova::test
