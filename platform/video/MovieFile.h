#pragma once

#include <filesystem>
#include <memory>

#include "platform/foundation/Result.h"
#include "platform/video/CMTime.h"
#include "platform/video/CVPixelBuffer.h"

namespace kestrova::platform {

// A QuickTime file with one H.264 track, at five units of time a second. Not on the main thread:
// each call works until what it was given is encoded. One thread at a time.
class MovieFile {
 public:
  // Nothing is written until a frame is appended.
  MovieFile(std::filesystem::path path, std::size_t width, std::size_t height);
  ~MovieFile();
  MovieFile(const MovieFile&) = delete;
  MovieFile& operator=(const MovieFile&) = delete;

  // The frame as it is at that time; an odd side is encoded one pixel larger with its edge
  // repeated. An error where the encoder is missing or refuses the size, or the file cannot be
  // written.
  Result<Done> append(const CVPixelBuffer& frame, CMTime time);
  // Closes the file; without frames one without a frame. After an error the file is no movie.
  Result<Done> finish();

 private:
  struct Pipeline;

  Result<Done> open();

  const std::filesystem::path path_;
  const std::size_t width_;
  const std::size_t height_;
  std::unique_ptr<Pipeline> pipeline_;
};

}  // namespace kestrova::platform
