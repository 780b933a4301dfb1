#include "examples/enduser/DemoCameras.h"

#include "platform/capture/CameraConfiguration.h"
#include "platform/capture/CameraSource.h"
#include "platform/uikit/UINavigationController.h"
#include "sdk/flow/ScanBacksideViewController.h"

namespace kestrova {

namespace {

bool asksForBack(const std::weak_ptr<UIViewController>& host) {
  const auto alive = host.lock();
  const auto flow = alive ? alive->presentedViewController() : nullptr;
  if (!flow || flow->children().empty()) return false;
  const auto stack = std::dynamic_pointer_cast<UINavigationController>(flow->children().front());
  return stack && std::dynamic_pointer_cast<ScanBacksideViewController>(stack->topViewController());
}

}  // namespace

void DemoCameras::use(const std::weak_ptr<UIViewController>& host) const {
  CameraConfiguration cameras;
  cameras.front = face;
  if (front.empty() || back.empty()) {
    cameras.rear = front.empty() ? back : front;
  } else {
    cameras.rearSource = [host, front = front, back = back] {
      return CameraConfiguration::source(asksForBack(host) ? back : front);
    };
  }
  CameraConfiguration::set(std::move(cameras));
}

}  // namespace kestrova
