#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/foundation/Result.h"
#include "platform/video/AVAssetWriterInput.h"

namespace kestrova::platform {

class MovieFile;

enum class AVAssetWriterStatus { unknown, writing, completed, failed };

// Writes a movie file. Made on any thread; frames and the end come from one thread at a time, and
// status and error may be asked for on any.
class AVAssetWriter : public std::enable_shared_from_this<AVAssetWriter> {
 public:
  // An error for another type than a QuickTime movie, and for a file that exists or whose folder
  // does not.
  static Result<std::shared_ptr<AVAssetWriter>> make(const std::filesystem::path& url,
                                                     const std::string& fileType);
  ~AVAssetWriter();
  AVAssetWriter(const AVAssetWriter&) = delete;
  AVAssetWriter& operator=(const AVAssetWriter&) = delete;

  // One video track in H.264 with a size above 0, before the writing starts.
  bool canAdd(const AVAssetWriterInput& input) const;
  // Only what can be added.
  void add(const std::shared_ptr<AVAssetWriterInput>& input);

  // False where there is nothing to write or it has started before.
  bool startWriting();
  // The time at which the movie begins.
  void startSession(CMTime atSourceTime) { start_ = atSourceTime; }
  // Closes the file and calls the handler, on the calling thread, whatever the status is then.
  void finishWriting(const std::function<void()>& completionHandler);

  AVAssetWriterStatus status() const;
  std::optional<NSError> error() const;

 private:
  friend class AVAssetWriterInput;

  explicit AVAssetWriter(std::filesystem::path url);
  bool append(const CVPixelBuffer& buffer, CMTime time);
  void fail(const NSError& error);

  const std::filesystem::path url_;
  std::shared_ptr<AVAssetWriterInput> input_;
  std::unique_ptr<MovieFile> file_;
  CMTime start_ = kCMTimeZero;

  mutable std::mutex mutex_;
  AVAssetWriterStatus status_ = AVAssetWriterStatus::unknown;
  std::optional<NSError> error_;
};

}  // namespace kestrova::platform
