#pragma once

#include <filesystem>
#include <memory>

#include "sdk/Platform.h"

namespace kestrova::platform {
class UIViewController;
}

namespace kestrova {

// What stands before the cameras of a demo; a path may be a device, a picture, a folder of pictures
// or a video. An empty one leaves that camera to the machine.
struct DemoCameras {
  std::filesystem::path face;
  // The rear camera sees the back as soon as the flow presented over the host asks for it.
  std::filesystem::path front;
  std::filesystem::path back;

  // For the captures that follow, in flows over that host.
  void use(const std::weak_ptr<UIViewController>& host) const;
};

}  // namespace kestrova
