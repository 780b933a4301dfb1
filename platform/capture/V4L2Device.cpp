#include "platform/capture/V4L2Device.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <system_error>

#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "platform/capture/CameraError.h"
#include "platform/foundation/FileDescriptor.h"

namespace kestrova::platform {

namespace {

FileDescriptor open(const std::filesystem::path& path) {
  return FileDescriptor(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
}

const char* folder = "/dev";

std::vector<std::filesystem::path> devices() {
  std::vector<std::filesystem::path> found;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
    const auto name = entry.path().filename().string();
    if (name.starts_with("video") && entry.is_character_file(none)) found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

template <typename Argument>
bool control(const FileDescriptor& device, unsigned long request, Argument& argument) {
  int result = 0;
  do {
    result = ::ioctl(device.get(), request, &argument);
  } while (result < 0 && errno == EINTR);
  return result == 0;
}

bool givesPictures(const FileDescriptor& device) {
  v4l2_capability capability{};
  if (!control(device, VIDIOC_QUERYCAP, capability)) return false;
  const unsigned capabilities = capability.capabilities & V4L2_CAP_DEVICE_CAPS
                                    ? capability.device_caps
                                    : capability.capabilities;
  constexpr unsigned kMemoryToMemory = V4L2_CAP_VIDEO_M2M | V4L2_CAP_VIDEO_M2M_MPLANE;
  constexpr unsigned kCapture = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_VIDEO_CAPTURE_MPLANE;
  return (capabilities & kCapture) != 0 && (capabilities & kMemoryToMemory) == 0;
}

bool setLamp(const FileDescriptor& device, int mode) {
  v4l2_control lamp{};
  lamp.id = V4L2_CID_FLASH_LED_MODE;
  lamp.value = mode;
  return control(device, VIDIOC_S_CTRL, lamp);
}

}  // namespace

void V4L2Device::setFolder(const char* path) {
  folder = path;
}

bool V4L2Device::isThere() {
  return std::ranges::any_of(devices(), isCamera);
}

std::vector<std::filesystem::path> V4L2Device::cameras() {
  auto found = devices();
  std::erase_if(found, std::not_fn(isCamera));
  return found;
}

bool V4L2Device::isCamera(const std::filesystem::path& path) {
  const auto device = open(path);
  if (device) return givesPictures(device);
  // These say that no device is behind the node.
  return errno != ENODEV && errno != ENXIO && errno != ENOENT;
}

bool V4L2Device::isDevice(const std::filesystem::path& path) {
  std::error_code none;
  return std::filesystem::is_character_file(path, none);
}

Result<Done> V4L2Device::check(const std::filesystem::path& path) {
  const auto device = open(path);
  if (!device) {
    const int reason = errno;
    const bool isRefused = reason == EACCES || reason == EPERM;
    const auto code = isRefused         ? CameraErrorCode::notPermitted
                      : reason == EBUSY ? CameraErrorCode::busy
                                        : CameraErrorCode::notFound;
    return cameraError(code, NSError::posix(reason, path.string()).localizedDescription);
  }
  if (givesPictures(device)) return Done{};
  return cameraError(CameraErrorCode::unsupported, path.string() + ": this is no camera");
}

bool V4L2Device::hasFlash(const std::filesystem::path& path) {
  const auto device = open(path);
  v4l2_queryctrl query{};
  query.id = V4L2_CID_FLASH_LED_MODE;
  return device && control(device, VIDIOC_QUERYCTRL, query) &&
         (query.flags & V4L2_CTRL_FLAG_DISABLED) == 0;
}

std::shared_ptr<const void> V4L2Device::light(const std::filesystem::path& path) {
  auto device = std::make_shared<FileDescriptor>(open(path));
  if (!*device || !setLamp(*device, V4L2_FLASH_LED_MODE_TORCH)) return nullptr;
  const void* const token = device.get();
  return {token, [device](const void*) { setLamp(*device, V4L2_FLASH_LED_MODE_NONE); }};
}

}  // namespace kestrova::platform
