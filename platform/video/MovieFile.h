#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "platform/foundation/Result.h"
#include "platform/video/CMTime.h"
#include "platform/video/CVPixelBuffer.h"

namespace kestrova::platform {

// A QuickTime file with one H.264 track. Not for the main thread: each call works until what it was
// given is encoded. One thread at a time.
class MovieFile {
 public:
  // The frame duration's timescale is the track's unit of time; its value is how long the last
  // frame lasts. Nothing is written until a frame is appended.
  MovieFile(std::filesystem::path path, std::size_t width, std::size_t height,
            CMTime frameDuration);
  ~MovieFile();
  MovieFile(const MovieFile&) = delete;
  MovieFile& operator=(const MovieFile&) = delete;

  // Shows the frame from that time on, which is 0 or later and after the frame before. An odd or a
  // small side is encoded larger with its edge repeated. Returns an error if the encoder is missing
  // or cannot take the size, or the file cannot be written.
  Result<Done> append(const CVPixelBuffer& frame, CMTime time);
  // Closes the file; without frames one without a frame. After an error the file is no movie.
  Result<Done> finish();

 private:
  struct Pipeline;

  Result<Done> open();

  const std::filesystem::path path_;
  const std::size_t width_;
  const std::size_t height_;
  const CMTime frameDuration_;
  // Times of the first and the last frame, in units of the track's time.
  std::uint64_t firstTime_ = 0;
  std::uint64_t lastTime_ = 0;
  std::unique_ptr<Pipeline> pipeline_;
};

}  // namespace kestrova::platform
