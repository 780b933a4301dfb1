#include "platform/capture/CameraConfiguration.h"

#include <mutex>
#include <utility>

#include "platform/capture/AVCaptureDevice.h"

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

}  // namespace kestrova::platform
