#pragma once

#include <concepts>
#include <memory>

#include "platform/capture/UIImagePickerController.h"
#include "platform/uikit/UINavigationController.h"
#include "sdk/Platform.h"

namespace kestrova {

// A screen that can present the picker and be its delegate.
template <typename Screen>
concept CapturingScreen = std::derived_from<Screen, UIViewController> &&
    std::derived_from<Screen, UIImagePickerControllerDelegate> &&
    std::derived_from<Screen, UINavigationControllerDelegate>;

// Presents the camera for a picture of a document, with an outline to hold it into. Main thread.
class VideoPhotoCaptureHelper {
 public:
  // Sets up `mediaUI` and has `delegate` present it. Without a camera nothing happens; without the
  // outline's picture in the bundle a line says so and nothing is presented.
  template <CapturingScreen Screen>
  static void startScanFrontDocument(const std::shared_ptr<Screen>& delegate,
                                     const std::shared_ptr<UIImagePickerController>& mediaUI) {
    start("iddocument", delegate, delegate, mediaUI);
  }
  template <CapturingScreen Screen>
  static void startScanBackDocument(const std::shared_ptr<Screen>& delegate,
                                    const std::shared_ptr<UIImagePickerController>& mediaUI) {
    start("backsideiddocument", delegate, delegate, mediaUI);
  }

 private:
  static void start(const char* outline, const std::shared_ptr<UIViewController>& screen,
                    const std::shared_ptr<UIImagePickerControllerDelegate>& delegate,
                    const std::shared_ptr<UIImagePickerController>& mediaUI);
};

}  // namespace kestrova
