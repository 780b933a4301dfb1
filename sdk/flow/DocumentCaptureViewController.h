#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/capture/UIImagePickerController.h"
#include "platform/uikit/UINavigationController.h"
#include "sdk/flow/CaptureViewController.h"

namespace kestrova {

// What photographing the two sides of a document has in common: the instructions, the camera, the
// stored picture and its way to the backend. Main thread.
class DocumentCaptureViewController : public CaptureViewController,
                                      public UIImagePickerControllerDelegate,
                                      public UINavigationControllerDelegate {
 public:
  std::weak_ptr<UIView> IDGIFCointainer;
  // Used for every photograph of this screen.
  std::shared_ptr<UIImagePickerController> mediaUI = std::make_shared<UIImagePickerController>();

  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;

  // From the shot on the picker shows no outline.
  void addOberserver();
  void playIDGIF();
  void imagePickerControllerDidCancel(UIImagePickerController& picker) override;
  void imagePickerControllerDidFinishPickingMediaWithInfo(
      UIImagePickerController& picker, const UIImagePickerControllerInfo& info) override;

 protected:
  // Opens the picker by one of VideoPhotoCaptureHelper's operations.
  void takePhoto(const std::function<void()>& start);
  // Name of the animation that shows how to hold the document.
  virtual std::string_view animationName() const { return "IDGIF"; }
  // Of the stored picture.
  virtual std::string_view fileName() const = 0;
  // Sends the stored picture.
  virtual void upload(const std::filesystem::path& url) = 0;

  // What a request needs.
  struct Keys {
    std::string apiKey;
    std::string authentication_key;
  };
  // None where the verification has none: then a line names the first that is missing, and the
  // screen is left by that segue.
  std::optional<Keys> keysOrError(std::string_view segue);

 private:
  std::string recordingName() const override { return "photo"; }
  void closeCamera() override;
  void recordingNotSaved() override;

  // True if the photo could not be stored: nothing is sent, and the user may try again.
  bool hasFailed_ = false;
};

}  // namespace kestrova
