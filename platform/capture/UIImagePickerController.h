#pragma once

#include <memory>
#include <optional>

#include "platform/capture/CameraSource.h"
#include "platform/capture/UIImagePickerControllerDelegate.h"
#include "platform/uikit/UIViewController.h"

namespace kestrova::platform {

class CameraSession;

enum class UIImagePickerControllerSourceType { photoLibrary = 0, camera = 1, savedPhotosAlbum = 2 };
enum class UIImagePickerControllerCameraDevice { rear = 0, front = 1 };
using UIImagePickerControllerCameraFlashMode = CameraFlashMode;

// Posted by the picker when the user has taken a photograph and sees it.
inline constexpr const char* kUserDidCaptureItem = "_UIImagePickerControllerUserDidCaptureItem";

// The screen with which a photograph is taken: the live picture with an overlay, the shutter, then
// the photograph to be used or taken again. Opens the camera when it appears and gives it back when
// it goes; may be presented any number of times. A camera that fails is told on the screen.
// Presented over the whole window. Main thread.
class UIImagePickerController : public UIViewController {
 public:
  UIImagePickerController();
  ~UIImagePickerController() override;
  UIImagePickerController(const UIImagePickerController&) = delete;
  UIImagePickerController& operator=(const UIImagePickerController&) = delete;

  // Whether there is a camera; there are no photo libraries. Opens nothing.
  static bool isSourceTypeAvailable(UIImagePickerControllerSourceType sourceType);

  // Without one a cancelled or finished picker dismisses itself.
  std::weak_ptr<UIImagePickerControllerDelegate> delegate;
  // The following count from the next time the picker appears, the flash from the next photograph.
  UIImagePickerControllerSourceType sourceType = UIImagePickerControllerSourceType::photoLibrary;
  UIImagePickerControllerCameraFlashMode cameraFlashMode = CameraFlashMode::automatic;
  UIImagePickerControllerCameraDevice cameraDevice = UIImagePickerControllerCameraDevice::rear;
  // Kept; photographs are never edited here.
  bool allowsEditing = false;

  // Lies over the picture, from the upper left corner of the window; follows changes of the
  // window's size. Where none is set, an empty one as large as the picker will be over the
  // delegate's window.
  const std::shared_ptr<UIView>& cameraOverlayView();
  // Null takes it away.
  void setCameraOverlayView(const std::shared_ptr<UIView>& view);

  bool fillsWindow() const override { return true; }
  void loadView() override;
  void viewWillAppear(bool animated) override;
  std::shared_ptr<UIView> preferredFocusView() override;
  void viewDidAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;
  std::string accessibilityTitle() const override { return "Camera"; }
  bool accessibilityPerformEscape() override;

 private:
  class PickerView;

  CGSize sizeToCome() const;
  // Called after a change of state: moves the focus to the new state's main control.
  void controlsChanged();
  void open();
  void close();
  void fail(const NSError& error);
  void takePhoto();
  void show(const CameraPhoto& photo);
  void use();
  void cancel();
  void switchFlash();

  std::shared_ptr<PickerView> content_;
  std::shared_ptr<CameraSession> session_;
  std::shared_ptr<UIView> overlay_;
  bool isOverlaySet_ = false;
  std::optional<UIImage> photo_;
};

}  // namespace kestrova::platform
