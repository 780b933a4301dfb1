#pragma once

#include <filesystem>
#include <memory>

#include "platform/capture/CameraSource.h"

namespace kestrova::platform {

// A camera that the media framework reads: a video device, or a video file, which plays in real
// time, over and over. Starts the framework when it is opened.
class VideoCamera : public CameraSource {
 public:
  // A photograph is taken in the device's largest mode, for which it is opened anew.
  static std::unique_ptr<VideoCamera> device(std::filesystem::path path);
  // The same with a device of the system's: one whose name says that it looks that way; else the
  // first looks at the user, the last away.
  static std::unique_ptr<VideoCamera> system(bool isFront);
  // A photograph is the frame on display. Turned as the file's orientation tag says.
  static std::unique_ptr<VideoCamera> file(std::filesystem::path path);

  ~VideoCamera() override;
  VideoCamera(const VideoCamera&) = delete;
  VideoCamera& operator=(const VideoCamera&) = delete;

  Result<Done> start(Events events) override;
  void stop() override;
  void setFrameSize(PixelSize room) override;
  bool hasFlash() const override;
  Result<UIImage> takePhoto(CameraFlashMode flash) override;

 private:
  struct Origin;
  struct Pipeline;

  explicit VideoCamera(Origin origin);

  std::unique_ptr<Pipeline> pipeline_;
};

}  // namespace kestrova::platform
