#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/capture/CameraConfiguration.h"
#include "platform/capture/CameraSource.h"

namespace kestrova::platform {

// A camera of the process. A value; any thread.
class AVCaptureDevice {
 public:
  enum class Position { unspecified = 0, back = 1, front = 2 };

  // The camera at that position, the other one where there is none; none in a process without
  // cameras. Asks a video device for its kind without starting it; never waits.
  static std::optional<AVCaptureDevice> defaultDevice(Position position);

  // Whether the process may have a camera; asks nobody: the answer is whether the front camera, or
  // the other where there is none, opens and gives a picture. A grant is remembered. The handler is
  // called on a background queue, never on the main thread. Media types other than video are not
  // granted.
  static void requestAccess(const std::string& forMediaType,
                            std::function<void(bool granted)> completionHandler);

  // Reason why the last request for access was refused; none if it was granted. Any thread.
  static std::optional<NSError> accessError();

  Position position() const { return position_; }
  // A camera to be opened. Several at a time get in each other's way.
  std::unique_ptr<CameraSource> makeSource() const { return maker_(); }

  // By the configuration: access is asked for anew.
  static void forgetAccess();

 private:
  AVCaptureDevice(Position position, CameraConfiguration::Maker maker)
      : position_(position), maker_(std::move(maker)) {}

  Position position_;
  CameraConfiguration::Maker maker_;
};

}  // namespace kestrova::platform
