#include "sdk/media/VideoPhotoCaptureHelper.h"

#include <optional>
#include <string>
#include <utility>

#include "platform/foundation/FileManager.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/UIImageView.h"
#include "sdk/core/Kestrova.h"

namespace kestrova {

namespace {

std::optional<UIImage> outlineNamed(const char* name) {
  const auto bundle = Kestrova::bundle();
  const auto path = bundle ? bundle->path(name, "png") : std::nullopt;
  if (!path) return std::nullopt;
  auto contents = FileManager::contents(*path);
  if (!contents) return std::nullopt;
  auto image = UIImage::make(std::move(contents).value());
  // Decoded here, so that a damaged one is not shown as nothing.
  if (!image || !image.value().cgImage()) return std::nullopt;
  return std::move(image).value();
}

}  // namespace

void VideoPhotoCaptureHelper::start(
    const char* outline, const std::shared_ptr<UIViewController>& screen,
    const std::shared_ptr<UIImagePickerControllerDelegate>& delegate,
    const std::shared_ptr<UIImagePickerController>& mediaUI) {
  constexpr auto kCamera = UIImagePickerControllerSourceType::camera;
  if (!UIImagePickerController::isSourceTypeAvailable(kCamera)) return;
  const auto picture = outlineNamed(outline);
  if (!picture) {
    return print("iddocument: This image named \"" + std::string(outline) + "\" does not exist");
  }
  const auto view = std::make_shared<UIImageView>(picture);
  mediaUI->delegate = delegate;
  mediaUI->sourceType = kCamera;
  mediaUI->cameraFlashMode = UIImagePickerControllerCameraFlashMode::automatic;
  mediaUI->cameraDevice = UIImagePickerControllerCameraDevice::rear;
  mediaUI->allowsEditing = false;

  const CGSize overlay = mediaUI->cameraOverlayView()->frame().size;
  view->setFrame({view->frame().origin, {overlay.width * 0.8, overlay.height * 0.6}});
  view->setCenter({overlay.width / 2, overlay.height / 2 * 0.9});
  view->setContentMode(UIViewContentMode::scaleAspectFit);
  view->setClipsToBounds(true);
  mediaUI->setCameraOverlayView(view);
  screen->present(mediaUI, true);
}

}  // namespace kestrova
