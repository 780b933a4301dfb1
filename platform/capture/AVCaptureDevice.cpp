#include "platform/capture/AVCaptureDevice.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "platform/capture/CameraError.h"
#include "platform/capture/CameraSession.h"
#include "platform/capture/V4L2Device.h"
#include "platform/capture/VideoCamera.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/video/AVVideoSettings.h"

namespace kestrova::platform {

namespace {

using Position = AVCaptureDevice::Position;

// How often a configuration was set, and in which of them access was granted.
std::atomic<unsigned> configuration = 1;
std::atomic<unsigned> granted = 0;

struct AccessError {
  std::mutex mutex;
  std::optional<NSError> error;
};

AccessError& lastAccessError() {
  static auto& last = *new AccessError;
  return last;
}

void setAccessError(std::optional<NSError> error) {
  const std::lock_guard lock(lastAccessError().mutex);
  lastAccessError().error = std::move(error);
}

// Opens the front camera and waits for a picture; returns the error if either fails.
std::optional<NSError> tryToOpen() {
  const auto device = AVCaptureDevice::defaultDevice(Position::front);
  const auto source = device ? device->makeSource() : nullptr;
  if (!source) return cameraError(CameraErrorCode::notFound, "there is no camera");
  const auto opens = source->start({[](const CameraFrame&) {}, [](const NSError&) {}});
  if (!opens) return opens.error();
  source->stop();
  return std::nullopt;
}

// Empty where the configuration names no camera there, one that is not there, or a device that is
// no camera.
CameraConfiguration::Maker named(const std::filesystem::path& path,
                                 const CameraConfiguration::Maker& source) {
  if (source) return source;
  std::error_code none;
  if (path.empty() || !std::filesystem::exists(path, none)) return {};
  if (V4L2Device::isDevice(path) && !V4L2Device::isCamera(path)) return {};
  return [path] { return CameraConfiguration::source(path); };
}

CameraConfiguration::Maker found(Position position) {
  if (!V4L2Device::isThere()) return {};
  return [isFront = position == Position::front] { return VideoCamera::system(isFront); };
}

CameraConfiguration::Maker makerFor(const CameraConfiguration& cameras, Position position) {
  const bool isFront = position == Position::front;
  const auto& path = isFront ? cameras.front : cameras.rear;
  auto maker = named(path, isFront ? cameras.frontSource : cameras.rearSource);
  return maker || !path.empty() ? maker : found(position);
}

}  // namespace

std::optional<AVCaptureDevice> AVCaptureDevice::defaultDevice(Position position) {
  const auto cameras = CameraConfiguration::current();
  const auto wanted = position == Position::front ? Position::front : Position::back;
  const auto other = wanted == Position::front ? Position::back : Position::front;
  for (const auto each : {wanted, other}) {
    if (auto maker = makerFor(cameras, each)) return AVCaptureDevice(each, std::move(maker));
  }
  return std::nullopt;
}

void AVCaptureDevice::forgetAccess() {
  ++configuration;
}

std::optional<NSError> AVCaptureDevice::accessError() {
  const std::lock_guard lock(lastAccessError().mutex);
  return lastAccessError().error;
}

void AVCaptureDevice::requestAccess(const std::string& forMediaType,
                                    std::function<void(bool granted)> completionHandler) {
  const auto answers = DispatchQueue::global(DispatchQoS::userInitiated);
  const unsigned asked = configuration;
  if (forMediaType != AVMediaTypeVideo || granted == asked) {
    const bool isGranted = forMediaType == AVMediaTypeVideo;
    return answers.async([completionHandler = std::move(completionHandler), isGranted] {
      completionHandler(isGranted);
    });
  }
  CameraSession::queue().async([answers, asked, completionHandler = std::move(completionHandler)] {
    auto error = tryToOpen();
    const bool opens = !error;
    if (opens) granted = asked;
    setAccessError(std::move(error));
    answers.async([completionHandler, opens] { completionHandler(opens); });
  });
}

}  // namespace kestrova::platform
