#pragma once

#include <string>

#include "sdk/flow/DocumentCaptureViewController.h"

namespace kestrova {

// Where the back of the document is photographed.
class ScanBacksideViewController : public DocumentCaptureViewController {
 public:
  void bind(UIBindings& bindings) override;
  void takePhotoOfBacksideDocument(const std::shared_ptr<UIControl>& sender);
  void uploadBackSideScan(const std::filesystem::path& url);
  // Also where the screen has gone: the backend has the upload.
  static void recordStepInBackend(const std::string& apiKey, const std::string& authentication_key);

 protected:
  std::string_view animationName() const override { return "backsideIDGIF"; }
  std::string_view fileName() const override { return "pictureBackside.png"; }
  void upload(const std::filesystem::path& url) override { uploadBackSideScan(url); }
};

}  // namespace kestrova
