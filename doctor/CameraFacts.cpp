#include "doctor/CameraFacts.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>

#include "platform/foundation/FileDescriptor.h"

namespace kestrova::doctor {

namespace {

using platform::FileDescriptor;

// More than any device has; one that lists for ever is not believed.
constexpr std::uint32_t kMost = 256;

template <typename Argument>
bool ask(const FileDescriptor& device, unsigned long request, Argument& argument) {
  int result = 0;
  do {
    result = ::ioctl(device.get(), request, &argument);
  } while (result < 0 && errno == EINTR);
  return result == 0;
}

template <std::size_t Size>
std::string textOf(const std::uint8_t (&field)[Size]) {
  const auto* const characters = reinterpret_cast<const char*>(field);
  return {characters, strnlen(characters, Size)};
}

std::string codeOf(std::uint32_t format) {
  std::string code;
  for (int shift = 0; shift < 32; shift += 8) code += static_cast<char>(format >> shift & 0x7f);
  return code;
}

double perSecond(const FileDescriptor& device, std::uint32_t format, const CameraFormat& size) {
  v4l2_frmivalenum interval{};
  interval.pixel_format = format;
  interval.width = size.width;
  interval.height = size.height;
  if (!ask(device, VIDIOC_ENUM_FRAMEINTERVALS, interval)) return 0;
  // The shortest comes first.
  const auto& shortest =
      interval.type == V4L2_FRMIVAL_TYPE_DISCRETE ? interval.discrete : interval.stepwise.min;
  return shortest.numerator ? double{1} * shortest.denominator / shortest.numerator : 0;
}

CameraFormat largest(const FileDescriptor& device, std::uint32_t format) {
  CameraFormat found;
  found.code = codeOf(format);
  v4l2_frmsizeenum size{};
  size.pixel_format = format;
  for (; size.index < kMost && ask(device, VIDIOC_ENUM_FRAMESIZES, size); ++size.index) {
    const bool isDiscrete = size.type == V4L2_FRMSIZE_TYPE_DISCRETE;
    const auto width = isDiscrete ? size.discrete.width : size.stepwise.max_width;
    const auto height = isDiscrete ? size.discrete.height : size.stepwise.max_height;
    if (std::uint64_t{width} * height > std::uint64_t{found.width} * found.height) {
      found.width = width;
      found.height = height;
    }
    if (!isDiscrete) break;
  }
  found.perSecond = perSecond(device, format, found);
  return found;
}

}  // namespace

CameraFacts cameraFacts(const std::filesystem::path& path) {
  CameraFacts facts;
  const FileDescriptor device(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  if (!device) {
    facts.error = errno;
    return facts;
  }
  v4l2_capability capability{};
  if (!ask(device, VIDIOC_QUERYCAP, capability)) return facts;
  facts.name = textOf(capability.card);
  const auto can = capability.capabilities & V4L2_CAP_DEVICE_CAPS ? capability.device_caps
                                                                  : capability.capabilities;
  const bool isPlanar = (can & V4L2_CAP_VIDEO_CAPTURE_MPLANE) != 0;
  facts.givesPictures = ((can & V4L2_CAP_VIDEO_CAPTURE) != 0 || isPlanar) &&
                        (can & (V4L2_CAP_VIDEO_M2M | V4L2_CAP_VIDEO_M2M_MPLANE)) == 0;
  if (!facts.givesPictures) return facts;
  v4l2_fmtdesc format{};
  format.type = isPlanar ? V4L2_BUF_TYPE_VIDEO_CAPTURE_MPLANE : V4L2_BUF_TYPE_VIDEO_CAPTURE;
  for (; format.index < kMost && ask(device, VIDIOC_ENUM_FMT, format); ++format.index) {
    facts.formats.push_back(largest(device, format.pixelformat));
  }
  return facts;
}

}  // namespace kestrova::doctor
