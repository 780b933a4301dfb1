#pragma once

#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/capture/CameraSource.h"

namespace kestrova::platform {

// A picture, or a folder of pictures in the order of their names for half a second each, as a
// camera of 30 frames a second. A photograph is the file itself. A file that goes, or a folder
// without a picture that can be shown, is a camera that was unplugged.
class PictureCamera : public CameraSource {
 public:
  static constexpr double kSecondsEach = 0.5;

  // Whether the path is a folder, or begins as a PNG or JPEG file does.
  static bool canShow(const std::filesystem::path& path);

  explicit PictureCamera(std::filesystem::path path);
  ~PictureCamera() override;
  PictureCamera(const PictureCamera&) = delete;
  PictureCamera& operator=(const PictureCamera&) = delete;

  Result<Done> start(Events events) override;
  void stop() override;
  void setFrameSize(PixelSize room) override;
  Result<UIImage> takePhoto(CameraFlashMode flash) override;

 private:
  struct Shown {
    std::filesystem::path file;
    UIImage image;
  };

  // The first that can be shown after `last`, round the end; an error where none can be.
  Result<Shown> next(const std::filesystem::path& last) const;
  void run(const Events& events);

  const std::filesystem::path path_;
  std::thread thread_;

  std::mutex mutex_;
  std::condition_variable changed_;
  bool isStopping_ = false;
  PixelSize room_;
  std::optional<Shown> shown_;
};

}  // namespace kestrova::platform
