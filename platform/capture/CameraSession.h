#pragma once

#include <functional>
#include <memory>

#include "platform/capture/CameraSource.h"
#include "platform/dispatch/DispatchQueue.h"

namespace kestrova::platform {

// One use of a camera by the interface, from opening to release. Main thread; the camera works on a
// queue of its own and the handlers come on the main queue, none of them after stop(). Made by
// std::make_shared.
class CameraSession : public std::enable_shared_from_this<CameraSession> {
 public:
  explicit CameraSession(std::unique_ptr<CameraSource> source);
  // Stops.
  ~CameraSession();
  CameraSession(const CameraSession&) = delete;
  CameraSession& operator=(const CameraSession&) = delete;

  // The newest frame; those that came while the main thread was busy are left out.
  std::function<void(const CameraFrame&)> onFrame;
  // The camera is open; once.
  std::function<void(bool hasFlash)> onOpen;
  // It did not open, or has ended; once. Nothing else follows.
  std::function<void(const NSError&)> onFailure;

  // Once. Returns at once.
  void start();
  void setFrameSize(PixelSize room);
  // A photograph at full size, its preview as large as a frame. Frames end with it; the camera
  // stays open until stop().
  void takePhoto(CameraFlashMode flash, std::function<void(Result<CameraPhoto>)> completion);
  // Returns at once; the device is free soon, and a later start, of another session too, waits for
  // that.
  void stop();

  // Where all cameras of the process are opened, closed and asked, one after the other.
  static const DispatchQueue& queue();

 private:
  struct Mailbox;

  bool isOver_ = false;
  std::shared_ptr<CameraSource> source_;
  std::shared_ptr<Mailbox> mailbox_;
};

}  // namespace kestrova::platform
