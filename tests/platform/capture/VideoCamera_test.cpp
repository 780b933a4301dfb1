// Devices as the media framework sees them: a provider of the test's own lists cameras that draw
// test patterns.

#include "platform/capture/VideoCamera.h"

#include <gst/gst.h>

#include "platform/capture/CameraError.h"
#include "platform/video/GStreamer.h"
#include "tests/platform/capture/CameraTest.h"

namespace kestrova::test {
namespace {

// What the provider lists: how each camera is called and what stands for it.
struct Listed {
  std::string name;
  std::string description;
};
std::vector<Listed>& listed() {
  static std::vector<Listed> list;
  return list;
}

struct Device {
  GstDevice parent;
  std::size_t index;
};
struct DeviceClass {
  GstDeviceClass parent;
};
struct Provider {
  GstDeviceProvider parent;
};
struct ProviderClass {
  GstDeviceProviderClass parent;
};

GstElement* createElement(GstDevice* device, const gchar*) {
  const auto& description = listed()[reinterpret_cast<Device*>(device)->index].description;
  return gst_parse_bin_from_description(description.c_str(), TRUE, nullptr);
}

GType deviceType() {
  static const GType type = g_type_register_static_simple(
      GST_TYPE_DEVICE, "KestrovaTestDevice", sizeof(DeviceClass),
      [](gpointer each, gpointer) {
        static_cast<GstDeviceClass*>(each)->create_element = &createElement;
      },
      sizeof(Device), nullptr, GTypeFlags{});
  return type;
}

GList* probe(GstDeviceProvider*) {
  GList* list = nullptr;
  for (std::size_t index = 0; index < listed().size(); ++index) {
    GstCaps* const caps = gst_caps_new_empty_simple("video/x-raw");
    gpointer const made = g_object_new(deviceType(), "display-name", listed()[index].name.c_str(),
                                       "device-class", "Video/Source", "caps", caps, nullptr);
    gst_caps_unref(caps);
    static_cast<Device*>(made)->index = index;
    list = g_list_append(list, made);
  }
  return list;
}

GType providerType() {
  static const GType type = g_type_register_static_simple(
      GST_TYPE_DEVICE_PROVIDER, "KestrovaTestProvider", sizeof(ProviderClass),
      [](gpointer each, gpointer) {
        static_cast<GstDeviceProviderClass*>(each)->probe = &probe;
        gst_device_provider_class_set_static_metadata(static_cast<GstDeviceProviderClass*>(each),
                                                      "Test cameras", "Source/Video",
                                                      "Cameras of a test", "nobody");
      },
      sizeof(Provider), nullptr, GTypeFlags{});
  return type;
}

class VideoCameraTest : public CameraTest {
 protected:
  VideoCameraTest() {
    EXPECT_TRUE(startGStreamer());
    static const bool isListed = gst_device_provider_register(
        nullptr, "kestrovatest", GST_RANK_PRIMARY + 100, providerType());
    EXPECT_TRUE(isListed);
  }
  ~VideoCameraTest() override { listed().clear(); }

  static std::uint32_t middleOf(const CameraFrame& frame) {
    return colorAt(*frame.image, 0.5, 0.5);
  }
};

// A camera of one colour; `how` tells what it can do.
std::string source(const std::string& color, const std::string& how) {
  return "videotestsrc is-live=true pattern=solid-color foreground-color=0x" + color + " ! " + how;
}

TEST_F(VideoCameraTest, ChoosesItsCameraByName) {
  const std::string how = "video/x-raw,format=I420,width=64,height=64,framerate=30/1";
  listed() = {{"Some camera", source("ff00ff00", how)},
              {"Integrated Front Camera", source("ffff0000", how)},
              {"Rear Camera", source("ff0000ff", how)},
              {"Yet another", source("ffffffff", how)}};
  const auto front = see(VideoCamera::system(true));
  ASSERT_TRUE(waitForFrames(*front, 1));
  EXPECT_LT(difference(middleOf(front->frames.back()), 0xffff0000), 12);
  front->session->stop();
  const auto rear = see(VideoCamera::system(false));
  ASSERT_TRUE(waitForFrames(*rear, 1));
  EXPECT_LT(difference(middleOf(rear->frames.back()), 0xff0000ff), 12);
  rear->session->stop();
  // Nothing is known: the first looks at the user, the last away.
  listed() = {listed()[0], listed()[3]};
  const auto first = see(VideoCamera::system(true));
  ASSERT_TRUE(waitForFrames(*first, 1));
  EXPECT_LT(difference(middleOf(first->frames.back()), 0xff00ff00), 12);
  first->session->stop();
  const auto last = see(VideoCamera::system(false));
  ASSERT_TRUE(waitForFrames(*last, 1));
  EXPECT_LT(difference(middleOf(last->frames.back()), 0xffffffff), 12);
}

TEST_F(VideoCameraTest, ShowsItsPreviewAndPhotographsAtFullSize) {
  listed() = {
      {"Camera", source("ffffff00",
                        "capsfilter caps=\""
                        "video/x-raw,format=YUY2,framerate=30/1,width=640,height=480;"
                        "video/x-raw,format=YUY2,framerate=30/1,width=1280,height=720;"
                        "video/x-raw,format=YUY2,framerate=30/1,width=2048,height=1536\"")}};
  const auto seen = see(VideoCamera::system(false));
  ASSERT_TRUE(waitForFrames(*seen, 3));
  EXPECT_EQ(seen->frames.back().image->width(), 1280U);
  EXPECT_EQ(seen->frames.back().image->height(), 720U);
  const auto photo = photoOf(*seen);
  ASSERT_TRUE(photo);
  EXPECT_EQ(photo->size(), (CGSize{2048, 1536}));
  EXPECT_LT(difference(colorAt(*photo->cgImage().value(), 0.5, 0.5), 0xffffff00), 12);
}

TEST_F(VideoCameraTest, KeepsThePhotographOfACompressedStreamAsItIs) {
  listed() = {{"Camera", source("ffff0000",
                                "video/x-raw,width=640,height=480,framerate=30/1 ! jpegenc "
                                "quality=100 ! capsfilter "
                                "caps=image/jpeg,width=640,height=480,framerate=30/1")}};
  const auto seen = see(VideoCamera::system(false));
  ASSERT_TRUE(waitForFrames(*seen, 1));
  const auto photo = photoOf(*seen);
  ASSERT_TRUE(photo);
  EXPECT_EQ(photo->size(), (CGSize{640, 480}));
  // Still a file that is decoded when its pixels are needed.
  EXPECT_FALSE(photo->uprightBitmap());
  // That encoder writes the levels of video into its files.
  EXPECT_LT(difference(colorAt(*photo->cgImage().value(), 0.5, 0.5), 0xffff0000), 24);
}

TEST_F(VideoCameraTest, TellsThatADeviceIsGoneAfterItWasOpen) {
  listed() = {{"Camera", source("ffff0000",
                                "video/x-raw,width=64,height=64,framerate=30/1 ! "
                                "identity error-after=5")}};
  const auto seen = see(VideoCamera::system(true));
  ASSERT_TRUE(waitFor([&] { return seen->failure.has_value(); }));
  EXPECT_FALSE(seen->frames.empty());
  EXPECT_TRUE(isCameraError(*seen->failure, CameraErrorCode::disconnected))
      << seen->failure->localizedDescription;
}

TEST_F(VideoCameraTest, TellsWhyADeviceDoesNotOpen) {
  const auto errorOf = [](std::unique_ptr<CameraSource> source) {
    const auto seen = see(std::move(source));
    EXPECT_TRUE(waitFor([&] { return seen->failure.has_value(); }));
    return seen->failure.value_or(NSError{});
  };
  EXPECT_TRUE(isCameraError(errorOf(VideoCamera::device(folder.path() / "video9")),
                            CameraErrorCode::notFound));
  // Something else than a camera, by the very call that tells cameras.
  EXPECT_TRUE(
      isCameraError(errorOf(VideoCamera::device("/dev/null")), CameraErrorCode::unsupported));
  listed() = {{"Camera", "audiotestsrc"}};
  EXPECT_TRUE(isCameraError(errorOf(VideoCamera::system(true)), CameraErrorCode::unsupported));
}

std::size_t countIn(const char* folder) {
  std::size_t count = 0;
  for (const auto& each : std::filesystem::directory_iterator(folder)) count += each.exists();
  return count;
}

TEST_F(VideoCameraTest, GivesTheDeviceBackEachTime) {
  run("ffmpeg -v error -f lavfi -i testsrc=s=320x240:r=25:d=1 -c:v mjpeg film.mov");
  const auto once = [&] {
    const auto seen = see(VideoCamera::file(folder.path() / "film.mov"));
    EXPECT_TRUE(waitForFrames(*seen, 2));
    seen->session->stop();
    waitForRelease();
  };
  once();
  const auto descriptors = countIn("/proc/self/fd");
  const auto threads = countIn("/proc/self/task");
  for (int round = 0; round < 5; ++round) once();
  EXPECT_LE(countIn("/proc/self/fd"), descriptors);
  EXPECT_TRUE(waitFor([&] { return countIn("/proc/self/task") <= threads; }))
      << threads << ", now " << countIn("/proc/self/task");
}

}  // namespace
}  // namespace kestrova::test
