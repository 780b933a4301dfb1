#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/capture/CameraConfiguration.h"
#include "platform/capture/CameraError.h"
#include "platform/capture/CameraSource.h"

namespace kestrova::test {

inline std::shared_ptr<const platform::CGImage> plain(std::size_t width, std::size_t height,
                                                      std::uint32_t color) {
  auto image = platform::CGImage::make(width, height);
  std::ranges::fill(image->pixels(), color);
  return image;
}

// A device as the test wants it to be; its cameras come one after the other.
class ScriptedDevice : public std::enable_shared_from_this<ScriptedDevice> {
 public:
  // What the next cameras do.
  std::optional<platform::NSError> refusal;
  std::optional<platform::NSError> photoFailure;
  std::shared_ptr<const platform::CGImage> picture = plain(640, 480, 0xff204080);
  bool hasFlash = false;

  platform::CameraConfiguration::Maker maker() {
    return [self = shared_from_this()] { return std::make_unique<Camera>(self); };
  }

  // What has happened so far: "start", "photo", "stop".
  std::vector<std::string> calls() {
    const std::lock_guard lock(mutex_);
    return calls_;
  }
  platform::PixelSize room() {
    const std::lock_guard lock(mutex_);
    return room_;
  }
  std::optional<platform::CameraFlashMode> flash() {
    const std::lock_guard lock(mutex_);
    return flash_;
  }
  // From the thread that calls.
  void send(const std::shared_ptr<const platform::CGImage>& image) {
    const auto tell = events().frame;
    if (tell) tell({image, 0});
  }
  void unplug() {
    const auto tell = events().failed;
    if (tell) {
      tell(platform::cameraError(platform::CameraErrorCode::disconnected, "it was pulled out"));
    }
  }

 private:
  class Camera : public platform::CameraSource {
   public:
    explicit Camera(std::shared_ptr<ScriptedDevice> device) : device_(std::move(device)) {}

    platform::Result<platform::Done> start(Events events) override {
      device_->note("start");
      if (device_->refusal) return *device_->refusal;
      {
        const std::lock_guard lock(device_->mutex_);
        device_->events_ = std::move(events);
      }
      device_->send(device_->picture);
      return platform::Done{};
    }
    void stop() override {
      device_->note("stop");
      const std::lock_guard lock(device_->mutex_);
      device_->events_ = {};
    }
    void setFrameSize(platform::PixelSize room) override {
      const std::lock_guard lock(device_->mutex_);
      device_->room_ = room;
    }
    bool hasFlash() const override { return device_->hasFlash; }
    platform::Result<platform::UIImage> takePhoto(platform::CameraFlashMode flash) override {
      device_->note("photo");
      const std::lock_guard lock(device_->mutex_);
      device_->flash_ = flash;
      if (device_->photoFailure) return *device_->photoFailure;
      return platform::UIImage(device_->picture);
    }

   private:
    std::shared_ptr<ScriptedDevice> device_;
  };

  platform::CameraSource::Events events() {
    const std::lock_guard lock(mutex_);
    return events_;
  }
  void note(const char* call) {
    const std::lock_guard lock(mutex_);
    calls_.emplace_back(call);
  }

  std::mutex mutex_;
  std::vector<std::string> calls_;
  platform::CameraSource::Events events_;
  platform::PixelSize room_;
  std::optional<platform::CameraFlashMode> flash_;
};

}  // namespace kestrova::test
