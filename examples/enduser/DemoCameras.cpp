#include "examples/enduser/DemoCameras.h"

#include "platform/capture/CameraConfiguration.h"
#include "platform/capture/CameraSource.h"
#include "platform/uikit/UINavigationController.h"
#include "sdk/flow/ScanBacksideViewController.h"
#include "sdk/flow/ScanIDInstructionsViewController.h"

namespace kestrova {

namespace {

// What the flow over a host asks to be photographed.
struct Wanted {
  std::string type;
  bool isBack = false;
};

Wanted wanted(const std::weak_ptr<UIViewController>& host) {
  const auto alive = host.lock();
  const auto flow = alive ? alive->presentedViewController() : nullptr;
  if (!flow || flow->children().empty()) return {};
  const auto stack = std::dynamic_pointer_cast<UINavigationController>(flow->children().front());
  Wanted found;
  if (!stack) return found;
  for (const auto& screen : stack->viewControllers()) {
    if (const auto front = std::dynamic_pointer_cast<ScanIDInstructionsViewController>(screen)) {
      found = {front->selectedDocumentType, false};
    }
    found.isBack |= std::dynamic_pointer_cast<ScanBacksideViewController>(screen) != nullptr;
  }
  return found;
}

}  // namespace

std::filesystem::path DemoCameras::document(const std::string& type, bool isBack) const {
  const auto& given = isBack ? back : front;
  if (!given.empty()) return given;
  if (specimens.empty()) return isBack ? front : back;
  if (type == "PASSPORT") return specimens / "passport.png";
  const std::string name = type == "DRIVERS_LICENSE" ? "licence" : "id";
  return specimens / (name + (isBack ? "-back.png" : "-front.png"));
}

void DemoCameras::use(const std::weak_ptr<UIViewController>& host) const {
  CameraConfiguration cameras;
  cameras.front = face.empty() && !specimens.empty() ? specimens / "face.mov" : face;
  if (!(front.empty() && back.empty() && specimens.empty())) {
    cameras.rearSource = [host, from = *this] {
      const auto [type, isBack] = wanted(host);
      return CameraConfiguration::source(from.document(type, isBack));
    };
  }
  CameraConfiguration::set(std::move(cameras));
}

}  // namespace kestrova
