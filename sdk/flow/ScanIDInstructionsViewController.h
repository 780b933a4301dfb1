#pragma once

#include <string>

#include "sdk/flow/DocumentCaptureViewController.h"

namespace kestrova {

// Where the front of the document is photographed.
class ScanIDInstructionsViewController : public DocumentCaptureViewController {
 public:
  // The backend's name of the document; set before the screen is shown.
  std::string selectedDocumentType;
  std::weak_ptr<UILabel> headingLabel;

  void bind(UIBindings& bindings) override;
  void viewWillAppear(bool animated) override;
  void takePhotoOfFrontDocument(const std::shared_ptr<UIControl>& sender);
  void uploadFrontPicDocument(const std::filesystem::path& url);
  // Also where the screen has gone: the backend has the upload.
  static void recordStepInBackend(const std::string& apiKey, const std::string& authentication_key);

 protected:
  std::string_view animationName() const override {
    return isPassport() ? "photoPageGIF" : "IDGIF";
  }
  std::string_view fileName() const override { return "picture.png"; }
  void upload(const std::filesystem::path& url) override { uploadFrontPicDocument(url); }

 private:
  bool isPassport() const { return selectedDocumentType == "PASSPORT"; }
};

}  // namespace kestrova
