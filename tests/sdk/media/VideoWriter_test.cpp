#include "sdk/media/VideoWriter.h"

#include <cstdlib>
#include <limits>
#include <sstream>

#include "platform/dispatch/RunLoop.h"
#include "tests/platform/graphics/Pictures.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/StandardOutput.h"

namespace kestrova::test {
namespace {

// Movies are read back by another program.
class VideoWriterTest : public PictureTest {
 protected:
  // NOLINTBEGIN(concurrency-mt-unsafe): the tests are on one thread.
  VideoWriterTest() { ::setenv("XDG_DATA_HOME", folder.path().c_str(), 1); }
  ~VideoWriterTest() override { ::unsetenv("XDG_DATA_HOME"); }
  // NOLINTEND(concurrency-mt-unsafe)

  static std::shared_ptr<CXEImagesToVideo> writer(int width, int height) {
    return std::make_shared<CXEImagesToVideo>(
        CXEImagesToVideo::videoSettings(AVVideoCodecH264, width, height));
  }

  static UIImage plain(std::size_t width, std::size_t height, std::uint32_t color) {
    const auto image = CGImage::make(width, height);
    std::ranges::fill(image->pixels(), color);
    return UIImage(image);
  }

  // Runs until the completion; the file, or none where the run has written a line and ended.
  template <typename Source>
  std::optional<std::filesystem::path> make(const std::shared_ptr<CXEImagesToVideo>& made,
                                            const Source& source) {
    std::optional<std::filesystem::path> file;
    const auto lines = output.lines().size();
    std::weak_ptr<CXEImagesToVideo> running = made;
    made->createMovieFrom(source, [&](const std::filesystem::path& url) { file = url; });
    EXPECT_TRUE(RunLoop::runUntil(
        [&] { return file || (made.use_count() == 1 && output.lines().size() > lines); },
        DispatchClock::now() + std::chrono::seconds(30)));
    return file;
  }

  // What ffprobe says of each frame, "time,width,height".
  std::string frames(const std::filesystem::path& file) const {
    run("ffprobe -v error -show_entries frame=pts_time,width,height -of csv=p=0 '" + file.string() +
        "' >frames; true");
    return bytes("frames");
  }

  std::string duration(const std::filesystem::path& file) const {
    run("ffprobe -v error -show_entries format=duration -of csv=p=0 '" + file.string() +
        "' >duration; true");
    return bytes("duration");
  }

  StandardOutput output;
};

std::string lines(const std::vector<std::string>& all) {
  std::string text;
  for (const auto& line : all) text += line + "\n";
  return text;
}

TEST(CMTime, AddsInACommonTimescaleAndIsInvalidIfTheSumDoesNotFit) {
  EXPECT_EQ(CMTimeMake(1, 2) + CMTimeMake(1, 3), CMTimeMake(5, 6));
  constexpr std::int32_t kPrime = std::numeric_limits<std::int32_t>::max();
  EXPECT_FALSE((CMTimeMake(1, kPrime) + CMTimeMake(1, kPrime - 1)).isValid());
  constexpr auto kLongest = std::numeric_limits<std::int64_t>::max();
  EXPECT_FALSE((CMTimeMake(kLongest, 1) + CMTimeMake(1, 1)).isValid());
  EXPECT_FALSE((CMTime{1, 1, kCMTimeFlags_Valid, 1} + kCMTimeZero).isValid());
  EXPECT_FALSE((CMTime() + kCMTimeZero).isValid());
}

TEST_F(VideoWriterTest, ShowsAPictureEachFifthOfASecond) {
  const std::vector<UIImage> images{plain(64, 48, 0xffff0000), plain(64, 48, 0xff00ff00),
                                    plain(64, 48, 0xff0000ff)};
  const auto file = make(writer(64, 48), images);
  ASSERT_TRUE(file);
  EXPECT_EQ(file->filename(), "exprotvideo.mp4");
  EXPECT_EQ(frames(*file), lines({"0.000000,64,48", "0.200000,64,48", "0.400000,64,48"}));
  run("ffprobe -v error -show_entries "
      "stream=codec_name,has_b_frames,color_space,color_transfer,color_primaries,"
      "time_base:format=duration:format_tags=major_brand -of default=nw=1 '" +
      file->string() + "' >about; true");
  const std::string about = bytes("about");
  for (const auto* line : {"codec_name=h264", "has_b_frames=0", "color_space=bt709",
                           "time_base=1/5", "duration=0.600000", "major_brand=qt  "}) {
    EXPECT_NE(about.find(line), std::string::npos) << line << " in\n" << about;
  }
  // The middle pixel of each frame, decoded.
  run("ffmpeg -v error -i '" + file->string() +
      "' -vf format=rgb24,crop=1:1:32:24 -f rawvideo -pix_fmt rgb24 pixels");
  const std::string pixels = bytes("pixels");
  ASSERT_EQ(pixels.size(), 9U);
  for (std::size_t i = 0; i < 9; ++i) {
    const int wanted = i % 4 == 0 ? 255 : 0;
    EXPECT_NEAR(int(static_cast<unsigned char>(pixels[i])), wanted, 6) << i;
  }
}

TEST_F(VideoWriterTest, LeavesThePlaceOfASkippedPictureEmpty) {
  run("convert -size 64x48 xc:red a.png && convert -size 64x48 xc:blue c.png && echo no >b.png");
  const auto of = [this](const std::vector<std::string>& names) {
    std::vector<std::filesystem::path> urls;
    for (const auto& name : names) urls.push_back(folder.path() / (name + ".png"));
    return urls;
  };
  auto file = make(writer(64, 48), of({"a", "b", "c"}));
  ASSERT_TRUE(file);
  EXPECT_EQ(frames(*file), lines({"0.000000,64,48", "0.400000,64,48"}));
  EXPECT_EQ(output.lines(),
            std::vector<std::string>{"Warning: counld not extract one of the frames"});
  file = make(writer(64, 48), of({"b", "b", "a", "c"}));
  ASSERT_TRUE(file);
  EXPECT_EQ(frames(*file), lines({"0.400000,64,48", "0.600000,64,48"}));
  EXPECT_EQ(duration(*file), "0.800000\n");
}

TEST_F(VideoWriterTest, ShowsEachPictureForTheFrameTimeThatWasSet) {
  const std::vector<UIImage> images(3, plain(64, 48, 0xffff0000));
  const std::pair<CMTime, std::vector<std::string>> cases[] = {
      {CMTimeMake(1, 10), {"0.000000", "0.100000", "0.200000", "0.300000"}},
      {CMTimeMake(1, 3), {"0.000000", "0.333333", "0.666667", "1.000000"}},
      {CMTimeMake(1001, 30000), {"0.000000", "0.033367", "0.033400", "0.066767"}}};
  for (const auto& [frameTime, times] : cases) {
    const auto made = writer(64, 48);
    made->frameTime = frameTime;
    const auto file = make(made, images);
    ASSERT_TRUE(file);
    EXPECT_EQ(frames(*file),
              lines({times[0] + ",64,48", times[1] + ",64,48", times[2] + ",64,48"}));
    EXPECT_EQ(duration(*file), times[3] + "\n");
  }
  for (const auto& frameTime : {CMTime(), CMTimeMake(0, 5), CMTimeMake(1, 0)}) {
    const auto made = writer(64, 48);
    made->frameTime = frameTime;
    EXPECT_TRUE(make(made, images));
    EXPECT_FALSE(made->isMovieWhole());
  }
}

TEST_F(VideoWriterTest, PadsSmallSizesAndNamesTheLimitOfLargeOnes) {
  for (const auto& [width, height, size] :
       {std::tuple{1, 1, "16,16"}, {14, 201, "16,202"}, {300, 3, "300,16"}}) {
    const auto file = make(writer(width, height), std::vector<UIImage>{plain(1, 1, 0xffff0000)});
    ASSERT_TRUE(file);
    EXPECT_EQ(frames(*file), std::string("0.000000,") + size + "\n");
  }
  const auto large = writer(4096, 2305);
  testing::internal::CaptureStderr();
  EXPECT_TRUE(make(large, std::vector<UIImage>(2, plain(8, 8, 0xffffffff))));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_FALSE(large->isMovieWhole());
  EXPECT_EQ(output.lines().back(),
            "Kestrova: the movie is not whole: 4096 x 2306 pixels are more than the encoder takes: "
            "9437184, and 16384 a side");
}

TEST_F(VideoWriterTest, ReplacesTheMovieBeforeAndMayHaveNoPicture) {
  ASSERT_TRUE(make(writer(64, 48), std::vector<UIImage>{plain(64, 48, 0xffffffff)}));
  const auto file = make(writer(64, 48), std::vector<UIImage>{});
  ASSERT_TRUE(file);
  run("ffprobe -v error -show_entries format=nb_streams,duration -of csv=p=0 '" + file->string() +
      "' >about; true");
  EXPECT_EQ(bytes("about").substr(0, 2), "0,");
  EXPECT_EQ(std::filesystem::status(*file).permissions(), std::filesystem::perms(0600));
}

TEST_F(VideoWriterTest, CutsAPictureAtTheUpperRightAndKeepsOddSizes) {
  // Red above blue, larger than the frame: the lower left corner is what stays.
  const auto image = CGImage::make(200, 200);
  for (std::size_t y = 0; y < 200; ++y) {
    std::ranges::fill(image->row(y), y < 150 ? 0xffff0000U : 0xff0000ffU);
  }
  const auto file = make(writer(81, 61), std::vector<UIImage>{UIImage(image)});
  ASSERT_TRUE(file);
  EXPECT_EQ(output.lines().front(), "warning: video settings width must be divisible by 16");
  EXPECT_EQ(frames(*file), lines({"0.000000,82,62"}));
  run("ffmpeg -v error -i '" + file->string() + "' -f rawvideo -pix_fmt rgb24 pixels");
  const std::string pixels = bytes("pixels");
  ASSERT_EQ(pixels.size(), 82U * 62 * 3);
  const auto blue = [&](std::size_t y) {
    return static_cast<unsigned char>(pixels[(y * 82 + 40) * 3 + 2]);
  };
  EXPECT_LT(blue(5), 40);
  EXPECT_GT(blue(55), 215);
}

TEST_F(VideoWriterTest, CompletesWhereverTheDiskIsFullAndSaysThatTheMovieIsNotWhole) {
  // Noise, so that the encoder's frames are large.
  std::vector<std::filesystem::path> urls;
  for (const std::string name : {"a.png", "b.png", "c.png"}) {
    run("convert -size 320x240 xc: +noise Random " + name);
    urls.push_back(folder.path() / name);
  }
  const auto whole = make(writer(320, 240), urls);
  ASSERT_TRUE(whole);
  const auto size = std::filesystem::file_size(*whole);
  for (const rlim_t room : {size / 6, size / 2, size - 1}) {
    const auto cut = writer(320, 240);
    const FileSizeLimit full(room);
    EXPECT_TRUE(make(cut, urls)) << room;
    EXPECT_FALSE(cut->isMovieWhole()) << room;
    EXPECT_TRUE(output.lines().back().starts_with("Kestrova: the movie is not whole: ")) << room;
  }
}

TEST_F(VideoWriterTest, MakesOneMovieAndLeavesItAlone) {
  const auto made =
      std::make_shared<CXEImagesToVideo>(CXEImagesToVideo::videoSettings("hvc1", 64, 48));
  EXPECT_EQ(std::any_cast<std::string>((*made->videoSettings_)[AVVideoCodecKey]), AVVideoCodecH264);
  const std::vector<UIImage> images{plain(64, 48, 0xffff0000)};
  const auto file = make(made, images);
  ASSERT_TRUE(file);
  EXPECT_TRUE(made->isMovieWhole());
  EXPECT_FALSE(make(made, std::vector<UIImage>{}));
  EXPECT_EQ(output.lines().back(), "Kestrova: no movie is made: one object makes one movie");
  EXPECT_EQ(frames(*file), lines({"0.000000,64,48"}));
}

TEST_F(VideoWriterTest, HasNoTraceOfTheMachine) {
  const auto file = make(writer(64, 48), std::vector<UIImage>{plain(64, 48, 0xff808080)});
  ASSERT_TRUE(file);
  run("(hostname; id -un; echo GStreamer; echo Lavf; uname -r) >words; true");
  const std::string movie(platform::FileManager::contents(*file).value().view());
  std::istringstream words(bytes("words"));
  for (std::string word; std::getline(words, word);) {
    // Shorter ones are part of a file by chance.
    if (word.size() < 4) continue;
    EXPECT_EQ(movie.find(word), std::string::npos) << word;
  }
  EXPECT_EQ(movie.find(folder.path().string()), std::string::npos);
  run("ffprobe -v error -show_entries format_tags=creation_time,encoder:stream_tags=creation_time "
      "-of default=nw=1 '" +
      file->string() + "' >tags; true");
  EXPECT_EQ(bytes("tags"), "");
}

TEST_F(VideoWriterTest, EndsWithOneLineAndNoFileWhereItCannotGoOn) {
  run("convert -size 64x48 xc:red a.png");
  const auto stopping = writer(64, 48);
  const auto file = *stopping->fileURL;
  bool isStopped = false;
  stopping->stopHandler = [&] { isStopped = true; };
  EXPECT_FALSE(make(stopping, std::vector<std::filesystem::path>{folder.path() / "a.png",
                                                                 folder.path() / "nowhere.png"}));
  EXPECT_NE(output.lines().back().find("nowhere.png"), std::string::npos);
  EXPECT_TRUE(RunLoop::runUntil([&] { return isStopped; },
                                DispatchClock::now() + std::chrono::seconds(30)));
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_FALSE(make(writer(0, 48), std::vector<UIImage>{}));
  EXPECT_EQ(output.lines().back(), "add failed");
  // A folder where the movie is to be, which cannot be removed.
  std::filesystem::create_directories(file / "inside");
  const auto stopped = writer(64, 48);
  EXPECT_EQ(output.lines().back(), "remove path failed");
  EXPECT_FALSE(stopped->assetWriter);
  EXPECT_FALSE(make(stopped, std::vector<UIImage>{}));
  EXPECT_TRUE(std::filesystem::exists(file / "inside"));
}

}  // namespace
}  // namespace kestrova::test
