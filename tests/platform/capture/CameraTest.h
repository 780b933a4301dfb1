#pragma once

#include <array>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/capture/AVCaptureDevice.h"
#include "platform/capture/CameraConfiguration.h"
#include "platform/capture/CameraSession.h"
#include "platform/dispatch/RunLoop.h"
#include "platform/foundation/FileManager.h"
#include "tests/platform/graphics/Pictures.h"

namespace kestrova::test {

using namespace platform;

// Cameras without an interface: files made for the test, and what comes of them.
class CameraTest : public PictureTest {
 protected:
  ~CameraTest() override { CameraConfiguration::set({}); }

  static bool waitFor(const std::function<bool()>& condition) {
    return RunLoop::runUntil(condition, DispatchClock::now() + std::chrono::seconds(30));
  }
  // Until everything that the cameras' queue has to do is done.
  static void waitForRelease() {
    bool isDone = false;
    CameraSession::queue().async([&] { DispatchQueue::main().async([&] { isDone = true; }); });
    ASSERT_TRUE(waitFor([&] { return isDone; }));
  }

  // A PNG file whose halves, left and right, have these colours.
  std::filesystem::path picture(const std::string& name, std::size_t width, std::size_t height,
                                std::uint32_t left, std::uint32_t right) const {
    const auto image = CGImage::make(width, height);
    for (std::size_t y = 0; y < height; ++y) {
      const auto row = image->row(y);
      std::fill_n(row.begin(), width / 2, left);
      std::fill(row.begin() + std::ptrdiff_t(width / 2), row.end(), right);
    }
    const auto png = UIImagePNGRepresentation(UIImage(image));
    EXPECT_TRUE(png && FileManager::write(png.value().view(), folder.path() / name));
    return folder.path() / name;
  }

  // A camera that is open, and what came of it.
  struct Seen {
    std::shared_ptr<CameraSession> session;
    std::vector<CameraFrame> frames;
    std::optional<NSError> failure;
    bool isOpen = false;
  };
  static std::unique_ptr<Seen> see(std::unique_ptr<CameraSource> source) {
    auto seen = std::make_unique<Seen>();
    seen->session = std::make_shared<CameraSession>(std::move(source));
    seen->session->onFrame = [to = seen.get()](const CameraFrame& frame) {
      to->frames.push_back(frame);
    };
    seen->session->onFailure = [to = seen.get()](const NSError& error) { to->failure = error; };
    seen->session->onOpen = [to = seen.get()](bool) { to->isOpen = true; };
    seen->session->start();
    return seen;
  }
  // As the camera that looks away.
  static std::unique_ptr<Seen> see(const std::filesystem::path& path) {
    CameraConfiguration configuration;
    configuration.rear = path;
    CameraConfiguration::set(configuration);
    const auto device = AVCaptureDevice::defaultDevice(AVCaptureDevice::Position::back);
    EXPECT_TRUE(device) << path;
    return see(device->makeSource());
  }
  static bool waitForFrames(Seen& seen, std::size_t count) {
    return waitFor([&] { return seen.frames.size() >= count || seen.failure; }) && !seen.failure;
  }

  static std::optional<UIImage> photoOf(Seen& seen) {
    std::optional<Result<CameraPhoto>> taken;
    seen.session->takePhoto(CameraFlashMode::automatic,
                            [&](const Result<CameraPhoto>& photo) { taken = photo; });
    EXPECT_TRUE(waitFor([&] { return taken.has_value(); }));
    if (!taken || !*taken) return std::nullopt;
    return taken->value().image;
  }

  // The greatest difference of any channel of two colours.
  static int difference(std::uint32_t a, std::uint32_t b) {
    int greatest = 0;
    for (unsigned shift = 0; shift < 32; shift += 8) {
      greatest = std::max(greatest, std::abs(int(a >> shift & 255U) - int(b >> shift & 255U)));
    }
    return greatest;
  }
  // At a share of the sides.
  static std::uint32_t colorAt(const CGImage& image, double x, double y) {
    return image.row(
        std::size_t(y * double(image.height())))[std::size_t(x * double(image.width()))];
  }
};

}  // namespace kestrova::test
