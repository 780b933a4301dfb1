#pragma once

#include <functional>

#include "platform/capture/CameraFrame.h"
#include "platform/foundation/Export.h"
#include "platform/foundation/Result.h"

namespace kestrova::platform {

enum class CameraFlashMode { off = -1, automatic = 0, on = 1 };

// A camera that can be opened: the seam between those who show pictures and what makes them. Calls
// come from one thread at a time, never from the main one, and may wait for the device.
class KESTROVA_EXPORT CameraSource {
 public:
  struct Events {
    // On a thread of the camera's, one at a time.
    std::function<void(const CameraFrame&)> frame;
    // The camera has ended; no frame follows. At most once, on any thread.
    std::function<void(const NSError&)> failed;
  };

  CameraSource() = default;
  CameraSource(const CameraSource&) = delete;
  CameraSource& operator=(const CameraSource&) = delete;
  // Of one that is stopped or was never started.
  virtual ~CameraSource() = default;

  // Once: opens the camera and returns when it gives pictures. After an error nothing is open.
  virtual Result<Done> start(Events events) = 0;
  // Events have ended when it returns, and the device is free.
  virtual void stop() = 0;

  // Frames become as large as fits into that size; at first they have the camera's own, at most
  // 1280 pixels a side. Any thread.
  virtual void setFrameSize(PixelSize room) = 0;
  // Of a camera that is open.
  virtual bool hasFlash() const { return false; }
  // What is before the open camera, at the largest size it has. Frames may end with it.
  virtual Result<UIImage> takePhoto(CameraFlashMode flash) = 0;
};

}  // namespace kestrova::platform
