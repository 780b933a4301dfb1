#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "platform/liveness/ZoomVerificationDelegate.h"
#include "sdk/flow/CaptureViewController.h"

namespace kestrova {

// Where the selfie video is taken: the liveness engine's screen, the movie of its pictures, and
// their way to the backend.
class MoveHeadViewController : public CaptureViewController, public ZoomVerificationDelegate {
 public:
  std::weak_ptr<UIView> headGIFContainer;
  // What the engine's vendor issues to an integrator.
  const std::string MY_ZOOM_DEVELOPER_APP_TOKEN = "Qx7RmT2vLk9PwZ4nHc8JsYd3BfG6aNeU";
  // With which the engine encrypts its facemap. Made for development; nobody has the other half.
  const std::string publicKey = "-----BEGIN PUBLIC KEY-----\n"
                                "MIIBIjANBgkqhkiG9w0BAQEFAAOCAQ8AMIIBCgKCAQEArWDtleb2WR68usiS2ttj\n"
                                "HqEsrzyh9siJ4UVZw1iPz6EDEYhSmcCMLB1H5yZ1sQr3/H7xJ2mcCpDV7Vdef2qR\n"
                                "QRuMvq+wkB4TP3bMT3YUSONFHLd/aC8nu/r/K2XvPWBpeQkf2mOzzmm5j0DKoClC\n"
                                "tKPISpQkHUyrzmT5vA+/ydXYUNcasHBQ4CN4UHIY2U+yHPfMxjbOIIsRCydWFmlC\n"
                                "dLKt7Nvognmxy+M6FkLruB5v+UNxdgvjyrN64j21JKD0neIS2QKbD+lnooI5Jcd+\n"
                                "aomj/pzMHqIRekOnEVo3B4PtQldSAqtyz4G0hspXs495Z+4wO8Y9Ptex2CMa+03Q\n"
                                "RQIDAQAB\n"
                                "-----END PUBLIC KEY-----";

  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  void viewWillAppear(bool animated) override;
  void viewWillDisappear(bool animated) override;
  void recordSelfieVideo(const std::shared_ptr<UIControl>& sender);
  void playHeadGIF();

  bool onBeforeZoomDismiss(ZoomVerificationStatus status,
                           std::optional<ZoomRetryReason> retryReason) override;
  void onZoomVerificationResult(const ZoomVerificationResult& result) override;

  void setZoomCustomizationBasedOnDevice();
  void uploadVideoAndLivenessScore(const std::filesystem::path& url, double livenessScore);
  // Also where the screen has gone: the backend has the upload.
  static void recordStepInBackend(const std::string& apiKey, const std::string& authentication_key);

 private:
  std::string recordingName() const override { return "video"; }
  void closeCamera() override;
  void accessAnswered(bool granted);
  void engineAnswered(bool success);
  void makeMovie(const ZoomVerificationResult& result);

  std::weak_ptr<UIViewController> engineScreen_;
};

}  // namespace kestrova
