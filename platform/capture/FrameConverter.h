#pragma once

#include <memory>

#include "platform/capture/CameraFrame.h"

namespace kestrova::platform {

// A picture as the media framework has it; keeps it alive.
struct MediaSample {
  std::shared_ptr<void> native;

  explicit operator bool() const { return native != nullptr; }
  // None where it is no picture in memory.
  PixelSize size() const;
};

// Makes bitmaps of samples, scaling on the way. One thread at a time.
class FrameConverter {
 public:
  FrameConverter();
  ~FrameConverter();
  FrameConverter(const FrameConverter&) = delete;
  FrameConverter& operator=(const FrameConverter&) = delete;

  // Null where the sample is no picture, or the size is not allowed.
  std::shared_ptr<const CGImage> convert(const MediaSample& sample, PixelSize to);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kestrova::platform
