#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "sdk/Platform.h"

namespace kestrova::platform {
class UIViewController;
}

namespace kestrova {

// What stands before the cameras of a demo; a path may be a device, a picture, a folder of pictures
// or a video.
struct DemoCameras {
  std::filesystem::path face;
  std::filesystem::path front;
  std::filesystem::path back;
  // A folder of drawn specimens, which stand where nothing else does; without it the machine's own
  // cameras do.
  std::filesystem::path specimens;

  // For the captures that follow, in flows over that host: the rear camera sees the side of the
  // document for which the flow asks.
  void use(const std::weak_ptr<UIViewController>& host) const;

 private:
  std::filesystem::path document(const std::string& type, bool isBack) const;
};

}  // namespace kestrova
