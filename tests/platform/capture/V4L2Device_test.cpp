// Video nodes without hardware: harmless character devices stand behind them, and this program's
// own open() and ioctl() answer for those.

#include "platform/capture/V4L2Device.h"

#include <cerrno>
#include <cstdarg>
#include <map>
#include <set>

#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "platform/capture/UIImagePickerController.h"
#include "tests/platform/capture/CameraTest.h"

namespace {

struct Node {
  int openError = 0;
  // Those of the node; 0 answers no question about video.
  unsigned capabilities = 0;
};

// Each node by its path.
std::map<std::string, Node>& nodes() {
  static std::map<std::string, Node> all;
  return all;
}
std::map<int, std::string> opened;
std::set<unsigned long> requests;
bool mayBlock = false;

}  // namespace

extern "C" int open(const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0;
  va_end(arguments);
  const auto node = nodes().find(path);
  if (node != nodes().end()) {
    mayBlock |= (flags & O_NONBLOCK) == 0;
    if (node->second.openError != 0) {
      errno = node->second.openError;
      return -1;
    }
  }
  const int file = static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
  if (node != nodes().end()) opened[file] = path;
  return file;
}

extern "C" int ioctl(int file, unsigned long request, ...) noexcept {
  std::va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  const auto node = opened.find(file);
  const unsigned own = node == opened.end() ? 0 : nodes()[node->second].capabilities;
  if (own == 0) return static_cast<int>(::syscall(SYS_ioctl, file, request, argument));
  requests.insert(request);
  if (request != VIDIOC_QUERYCAP) {
    errno = ENOTTY;
    return -1;
  }
  auto& answer = *static_cast<v4l2_capability*>(argument);
  answer = {};
  // The device as a whole can capture, whatever this node of it is for.
  answer.capabilities = V4L2_CAP_DEVICE_CAPS | V4L2_CAP_VIDEO_CAPTURE | own;
  answer.device_caps = own;
  return 0;
}

namespace kestrova::test {
namespace {

class VideoNodeTest : public CameraTest {
 protected:
  VideoNodeTest() { V4L2Device::setFolder(folder.path().c_str()); }
  ~VideoNodeTest() override {
    V4L2Device::setFolder("/dev");
    nodes().clear();
    opened.clear();
    requests.clear();
    mayBlock = false;
  }

  std::string add(const std::string& name, Node node) const {
    const auto path = folder.path() / name;
    std::filesystem::create_symlink("/dev/null", path);
    nodes()[path.string()] = node;
    return path.string();
  }

  static bool isPickerAvailable() {
    return UIImagePickerController::isSourceTypeAvailable(
        UIImagePickerControllerSourceType::camera);
  }
};

TEST_F(VideoNodeTest, OffersThePickerOnlyForNodesThatGivePictures) {
  EXPECT_FALSE(isPickerAvailable());
  const auto codec = add("video10", {0, V4L2_CAP_VIDEO_M2M_MPLANE | V4L2_CAP_STREAMING});
  add("video1", {0, V4L2_CAP_META_CAPTURE | V4L2_CAP_STREAMING});
  add("video2", {0, V4L2_CAP_VIDEO_OUTPUT | V4L2_CAP_STREAMING});
  add("video3", {});
  add("video4", {ENODEV, 0});
  EXPECT_FALSE(isPickerAvailable());
  CameraConfiguration configuration;
  configuration.rear = codec;
  CameraConfiguration::set(configuration);
  EXPECT_FALSE(isPickerAvailable());
  for (const Node camera : {Node{0, V4L2_CAP_VIDEO_CAPTURE}, Node{0, V4L2_CAP_VIDEO_CAPTURE_MPLANE},
                            Node{EBUSY, 0}, Node{EACCES, 0}, Node{EPERM, 0}}) {
    CameraConfiguration::set({});
    const auto path = add("video0", camera);
    EXPECT_TRUE(isPickerAvailable()) << camera.openError;
    EXPECT_EQ(V4L2Device::cameras(), std::vector<std::filesystem::path>{path});
    configuration.rear = path;
    CameraConfiguration::set(configuration);
    EXPECT_TRUE(isPickerAvailable()) << camera.openError;
    std::filesystem::remove(path);
  }
  EXPECT_EQ(requests, std::set<unsigned long>{VIDIOC_QUERYCAP});
  EXPECT_FALSE(mayBlock);
}

}  // namespace
}  // namespace kestrova::test
