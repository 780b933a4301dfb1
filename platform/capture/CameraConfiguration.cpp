#include "platform/capture/CameraConfiguration.h"

#include <mutex>
#include <utility>

#include "platform/capture/AVCaptureDevice.h"
#include "platform/capture/PictureCamera.h"
#include "platform/capture/V4L2Device.h"
#include "platform/capture/VideoCamera.h"

namespace kestrova::platform {

namespace {

struct Current {
  std::mutex mutex;
  CameraConfiguration configuration;
};

// Never freed: cameras may be asked for while the process ends.
Current& instance() {
  static auto& current = *new Current;
  return current;
}

}  // namespace

void CameraConfiguration::set(CameraConfiguration configuration) {
  {
    const std::lock_guard lock(instance().mutex);
    std::swap(instance().configuration, configuration);
  }
  AVCaptureDevice::forgetAccess();
}

CameraConfiguration CameraConfiguration::current() {
  const std::lock_guard lock(instance().mutex);
  return instance().configuration;
}

std::unique_ptr<CameraSource> CameraConfiguration::source(const std::filesystem::path& path) {
  if (V4L2Device::isDevice(path)) return VideoCamera::device(path);
  if (PictureCamera::canShow(path)) return std::make_unique<PictureCamera>(path);
  return VideoCamera::file(path);
}

}  // namespace kestrova::platform
