#include <atomic>
#include <future>
#include <thread>

#include "platform/capture/CameraError.h"
#include "platform/capture/CameraMode.h"
#include "platform/dispatch/MainLoop.h"
#include "platform/video/AVVideoSettings.h"
#include "tests/platform/capture/CameraTest.h"
#include "tests/platform/capture/ScriptedCamera.h"

namespace kestrova::test {
namespace {

constexpr std::uint32_t kRed = 0xffdc2814;
constexpr std::uint32_t kGreen = 0xff14b43c;
constexpr std::uint32_t kBlue = 0xff1e3cc8;
constexpr std::uint32_t kYellow = 0xffe6d21e;

CameraMode mode(std::size_t width, std::size_t height, double rate, bool isJPEG = false) {
  return {{width, height}, rate, isJPEG, 0};
}

TEST(CameraModes, prefersASmoothPreviewOf720Lines) {
  // A usual webcam: uncompressed pictures are slow where they are large.
  const std::vector<CameraMode> webcam{
      mode(640, 480, 30),         mode(1280, 720, 10),        mode(1920, 1080, 5),
      mode(640, 480, 30, true),   mode(1280, 720, 30, true),  mode(1920, 1080, 30, true),
      mode(2592, 1944, 15, true), mode(2592, 1944, 2, false),
  };
  const auto preview = previewMode(webcam);
  ASSERT_TRUE(preview);
  EXPECT_EQ(preview->size, (PixelSize{1280, 720}));
  EXPECT_TRUE(preview->isJPEG);
  const auto photo = photoMode(webcam, *preview);
  ASSERT_TRUE(photo);
  EXPECT_EQ(photo->size, (PixelSize{2592, 1944}));
  EXPECT_TRUE(photo->isJPEG);
}

TEST(CameraModes, takesWhatThereIs) {
  EXPECT_FALSE(previewMode({}));
  const std::vector<CameraMode> one{mode(320, 240, 15)};
  EXPECT_EQ(previewMode(one)->size, (PixelSize{320, 240}));
  EXPECT_FALSE(photoMode(one, one[0]));
  // Smoothness before size, and a size that cannot be kept is none.
  const std::vector<CameraMode> slow{mode(1280, 720, 8), mode(640, 480, 30), mode(0, 0, 30),
                                     mode(60'000, 60'000, 30)};
  EXPECT_EQ(previewMode(slow)->size, (PixelSize{640, 480}));
  EXPECT_EQ(photoMode(slow, *previewMode(slow))->size, (PixelSize{1280, 720}));
}

TEST_F(CameraTest, ShowsAPictureThirtyTimesASecondAndGivesTheWholeFile) {
  const auto seen = see(picture("wide.png", 3000, 1000, kRed, kBlue));
  ASSERT_TRUE(waitForFrames(*seen, 10));
  EXPECT_TRUE(seen->isOpen);
  const auto& frame = *seen->frames.back().image;
  EXPECT_EQ(frame.width(), kLargestFrameSide);
  EXPECT_EQ(frame.height(), 427U);
  EXPECT_EQ(colorAt(frame, 0.25, 0.5), kRed);
  EXPECT_EQ(colorAt(frame, 0.75, 0.5), kBlue);
  EXPECT_GT(seen->frames.back().time, 0.25);

  const auto photo = photoOf(*seen);
  ASSERT_TRUE(photo);
  EXPECT_EQ(photo->size(), (CGSize{3000, 1000}));
}

TEST_F(CameraTest, MakesFramesAsLargeAsTheyAreShown) {
  const auto seen = see(picture("small.png", 40, 20, kRed, kBlue));
  seen->session->setFrameSize({300, 500});
  ASSERT_TRUE(
      waitFor([&] { return !seen->frames.empty() && seen->frames.back().image->width() == 300; }));
  EXPECT_EQ(seen->frames.back().image->height(), 150U);
}

TEST_F(CameraTest, HoldsPhotographsUprightAsTheirFileSays) {
  picture("upright.png", 60, 40, kRed, kBlue);
  run("convert upright.png -quality 100 -sampling-factor 4:4:4 plain.jpg");
  const std::string plain = bytes("plain.jpg");
  // Orientation 6: the file's left side is the picture's top.
  const std::string exif(
      "\xff\xe1\0\x22"
      "Exif\0\0MM\0*\0\0\0\10\0\1\1\x12\0\3\0\0\0\1\0\6\0\0\0\0\0\0",
      36);
  ASSERT_TRUE(FileManager::write(plain.substr(0, 2) + exif + plain.substr(2),
                                 folder.path() / "turned.jpg"));
  const auto seen = see(folder.path() / "turned.jpg");
  ASSERT_TRUE(waitForFrames(*seen, 1));
  const auto& frame = *seen->frames.back().image;
  ASSERT_EQ(frame.width(), 40U);
  ASSERT_EQ(frame.height(), 60U);
  EXPECT_LT(difference(colorAt(frame, 0.5, 0.25), kRed), 8);
  EXPECT_LT(difference(colorAt(frame, 0.5, 0.75), kBlue), 8);
  const auto photo = photoOf(*seen);
  ASSERT_TRUE(photo);
  EXPECT_EQ(photo->size(), (CGSize{40, 60}));
}

TEST_F(CameraTest, GoesThroughAFolderOverAndOver) {
  std::filesystem::create_directory(folder.path() / "faces");
  picture("faces/1.png", 8, 8, kRed, kRed);
  picture("faces/2.png", 8, 8, kGreen, kGreen);
  ASSERT_TRUE(FileManager::write("no picture", folder.path() / "faces/3.txt"));
  ASSERT_TRUE(FileManager::write("\xff\xd8\xff broken", folder.path() / "faces/4.jpg"));
  const auto seen = see(folder.path() / "faces");
  std::vector<std::uint32_t> colors;
  ASSERT_TRUE(waitFor([&] {
    if (seen->frames.empty()) return false;
    const auto color = colorAt(*seen->frames.back().image, 0.5, 0.5);
    if (colors.empty() || colors.back() != color) colors.push_back(color);
    return colors.size() == 3;
  }));
  EXPECT_EQ(colors, (std::vector{kRed, kGreen, kRed}));
  EXPECT_GT(seen->frames.back().time, 2 * 0.5 - 0.05);
}

TEST_F(CameraTest, PlaysAVideoInRealTimeAndAgain) {
  // Half a second red, half a second blue, 25 frames a second.
  run("ffmpeg -v error -f lavfi -i color=0xdc2814:s=320x180:r=25:d=0.52 "
      "-f lavfi -i color=0x1e3cc8:s=320x180:r=25:d=0.52 -filter_complex concat "
      "-c:v mjpeg -q:v 2 film.mov");
  const auto seen = see(folder.path() / "film.mov");
  std::vector<double> turns;
  bool isRed = true;
  ASSERT_TRUE(waitFor([&] {
    if (seen->failure) return true;
    if (seen->frames.empty()) return false;
    const bool red = difference(colorAt(*seen->frames.back().image, 0.5, 0.5), kRed) < 40;
    if (red != isRed) turns.push_back(seen->frames.back().time);
    isRed = red;
    return turns.size() == 3;
  }));
  ASSERT_FALSE(seen->failure) << seen->failure->localizedDescription;
  EXPECT_EQ(seen->frames.back().image->width(), 320U);
  EXPECT_EQ(seen->frames.back().image->height(), 180U);
  // To blue, to red again as it begins anew, to blue: a second later than the first time.
  EXPECT_GT(turns[2] - turns[0], 0.9);
  const auto photo = photoOf(*seen);
  ASSERT_TRUE(photo);
  EXPECT_EQ(photo->size(), (CGSize{320, 180}));
  EXPECT_EQ(photo->cgImage().value()->isOpaque(), true);
}

TEST_F(CameraTest, TurnsAVideoAsItsTagSays) {
  run("ffmpeg -v error -f lavfi -i color=0xdc2814:s=80x60:r=25:d=1 "
      "-f lavfi -i color=0x1e3cc8:s=80x60:r=25:d=1 -filter_complex hstack "
      "-c:v mjpeg -q:v 2 level.mov");
  // A quarter turn against the clock for whoever shows it, as that program itself does.
  run("ffmpeg -v error -i level.mov -c copy -metadata:s:v rotate=90 turned.mov");
  const auto seen = see(folder.path() / "turned.mov");
  ASSERT_TRUE(waitForFrames(*seen, 1));
  const auto& frame = *seen->frames.back().image;
  ASSERT_EQ(frame.width(), 60U);
  ASSERT_EQ(frame.height(), 160U);
  EXPECT_LT(difference(colorAt(frame, 0.5, 0.25), kBlue), 40);
  EXPECT_LT(difference(colorAt(frame, 0.5, 0.75), kRed), 40);
}

TEST_F(CameraTest, TellsWhatIsWrongWithAFile) {
  ASSERT_TRUE(FileManager::write("no film at all", folder.path() / "film.mov"));
  ASSERT_TRUE(FileManager::write("\xff\xd8\xff broken", folder.path() / "broken.jpg"));
  run("ffmpeg -v error -f lavfi -i sine=d=1 sound.wav");
  std::filesystem::create_directory(folder.path() / "empty");
  for (const char* const name : {"film.mov", "broken.jpg", "sound.wav"}) {
    const auto seen = see(folder.path() / name);
    ASSERT_TRUE(waitFor([&] { return seen->failure.has_value(); })) << name;
    EXPECT_TRUE(isCameraError(*seen->failure, CameraErrorCode::unsupported))
        << name << seen->failure->localizedDescription;
    EXPECT_TRUE(seen->frames.empty());
    EXPECT_FALSE(seen->isOpen);
  }
  const auto seen = see(folder.path() / "empty");
  ASSERT_TRUE(waitFor([&] { return seen->failure.has_value(); }));
  EXPECT_TRUE(isCameraError(*seen->failure, CameraErrorCode::notFound));
}

TEST_F(CameraTest, NoticesThatAFileIsGone) {
  run("ffmpeg -v error -f lavfi -i color=red:s=64x64:r=25:d=0.3 -c:v mjpeg film.mov");
  picture("still.png", 8, 8, kRed, kBlue);
  for (const char* const name : {"film.mov", "still.png"}) {
    const auto seen = see(folder.path() / name);
    ASSERT_TRUE(waitForFrames(*seen, 1));
    std::filesystem::remove(folder.path() / name);
    ASSERT_TRUE(waitFor([&] { return seen->failure.has_value(); })) << name;
    EXPECT_TRUE(isCameraError(*seen->failure, CameraErrorCode::disconnected))
        << seen->failure->localizedDescription;
  }
}

TEST_F(CameraTest, DropsFramesThatNobodyHadTimeFor) {
  const auto device = std::make_shared<ScriptedDevice>();
  const auto seen = see(device->maker()());
  ASSERT_TRUE(waitForFrames(*seen, 1));
  // From another thread while this one is busy.
  const auto last = plain(2, 2, kYellow);
  std::thread([&] {
    for (int round = 0; round < 100; ++round) device->send(plain(2, 2, kGreen));
    device->send(last);
  }).join();
  ASSERT_TRUE(waitForFrames(*seen, 2));
  waitForRelease();
  EXPECT_EQ(seen->frames.size(), 2U);
  EXPECT_EQ(seen->frames.back().image, last);
}

TEST_F(CameraTest, TellsNothingOnceItIsStopped) {
  const auto device = std::make_shared<ScriptedDevice>();
  const auto seen = see(device->maker()());
  ASSERT_TRUE(waitForFrames(*seen, 1));
  device->send(plain(2, 2, kGreen));
  device->unplug();
  seen->session->stop();
  waitForRelease();
  EXPECT_EQ(seen->frames.size(), 1U);
  EXPECT_FALSE(seen->failure);
  EXPECT_EQ(device->calls(), (std::vector<std::string>{"start", "stop"}));
  // Gone before it was opened: never opened.
  std::promise<void> gate;
  CameraSession::queue().async([opened = gate.get_future().share()] { opened.wait(); });
  see(device->maker()()).reset();
  gate.set_value();
  waitForRelease();
  EXPECT_EQ(device->calls(), (std::vector<std::string>{"start", "stop", "stop"}));
}

TEST_F(CameraTest, UsesTheOtherCameraWhereThereIsOne) {
  using Position = AVCaptureDevice::Position;
  CameraConfiguration configuration;
  configuration.front = folder.path() / "missing";
  configuration.rear = picture("rear.png", 8, 8, kRed, kBlue);
  CameraConfiguration::set(configuration);
  EXPECT_EQ(AVCaptureDevice::defaultDevice(Position::front)->position(), Position::back);
  EXPECT_EQ(AVCaptureDevice::defaultDevice(Position::back)->position(), Position::back);
  configuration.front = configuration.rear;
  CameraConfiguration::set(configuration);
  EXPECT_EQ(AVCaptureDevice::defaultDevice(Position::front)->position(), Position::front);
  configuration.front = configuration.rear = folder.path() / "missing";
  CameraConfiguration::set(configuration);
  EXPECT_FALSE(AVCaptureDevice::defaultDevice(Position::front));
  EXPECT_FALSE(AVCaptureDevice::defaultDevice(Position::back));
}

class AccessTest : public CameraTest {
 protected:
  static bool ask(const std::string& mediaType = AVMediaTypeVideo) {
    std::atomic<int> answer = -1;
    AVCaptureDevice::requestAccess(mediaType, [&](bool granted) {
      EXPECT_FALSE(isMainThread());
      answer = granted ? 1 : 0;
    });
    EXPECT_TRUE(waitFor([&] { return answer >= 0; }));
    return answer == 1;
  }
};

TEST_F(AccessTest, IsGrantedWhereTheDeviceOpensAndOnlyThatIsRemembered) {
  const auto device = std::make_shared<ScriptedDevice>();
  CameraConfiguration configuration;
  configuration.frontSource = device->maker();
  CameraConfiguration::set(configuration);
  EXPECT_FALSE(ask("soun"));
  EXPECT_TRUE(device->calls().empty());
  device->refusal = cameraError(CameraErrorCode::busy, "somebody else has it");
  EXPECT_FALSE(ask());
  device->refusal.reset();
  EXPECT_TRUE(ask());
  EXPECT_EQ(device->calls(), (std::vector<std::string>{"start", "start", "stop"}));
  device->refusal = cameraError(CameraErrorCode::busy, "somebody else has it");
  EXPECT_TRUE(ask());
  EXPECT_EQ(device->calls().size(), 3U);
  CameraConfiguration::set(configuration);
  EXPECT_FALSE(ask());
}

TEST_F(AccessTest, IsRefusedWithoutACamera) {
  CameraConfiguration configuration;
  configuration.front = configuration.rear = folder.path() / "missing";
  CameraConfiguration::set(configuration);
  EXPECT_FALSE(ask());
}

}  // namespace
}  // namespace kestrova::test
