#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/video/AVVideoSettings.h"
#include "platform/video/CMTime.h"
#include "platform/video/CVPixelBuffer.h"

namespace kestrova::platform {

class AVAssetWriter;

// The one track of a movie that is written. Made by std::make_shared and added to a writer; used
// from one thread at a time.
class AVAssetWriterInput {
 public:
  AVAssetWriterInput(std::string mediaType, AVVideoSettings outputSettings)
      : mediaType_(std::move(mediaType)), outputSettings_(std::move(outputSettings)) {}

  const std::string& mediaType() const { return mediaType_; }
  const AVVideoSettings& outputSettings() const { return outputSettings_; }

  // Runs the block once on the queue: the writer takes what it is given whenever it comes.
  static void requestMediaDataWhenReady(const DispatchQueue& on, DispatchBlock block) {
    on.async(std::move(block));
  }
  // True from the start of the writing until the track is finished or the writer has failed:
  // appending waits by itself until the frame is encoded.
  bool isReadyForMoreMediaData() const;
  // How long the last frame lasts; its timescale is the track's unit of time. Before the writing
  // starts.
  void setFrameDuration(CMTime duration) { frameDuration_ = duration; }
  CMTime frameDuration() const { return frameDuration_; }
  // No frame comes any more.
  void markAsFinished() { isFinished_ = true; }

 private:
  friend class AVAssetWriter;
  friend class AVAssetWriterInputPixelBufferAdaptor;

  bool append(const CVPixelBuffer& buffer, CMTime time);

  std::string mediaType_;
  AVVideoSettings outputSettings_;
  std::weak_ptr<AVAssetWriter> writer_;
  CMTime frameDuration_ = CMTimeMake(1, 5);
  bool isFinished_ = false;
};

// Appends frames to a track. The attributes name the format of the frames; only 32-bit ARGB is
// accepted.
class AVAssetWriterInputPixelBufferAdaptor {
 public:
  AVAssetWriterInputPixelBufferAdaptor(
      std::shared_ptr<AVAssetWriterInput> assetWriterInput,
      const std::map<std::string, int>& sourcePixelBufferAttributes);

  // Encodes the buffer to be shown from `withPresentationTime` on; the buffer is free afterwards.
  // Not on the main thread. Returns false, with the writer failed, if it cannot; also if the writer
  // is not writing, the track is finished or the attributes name another format.
  bool append(const CVPixelBuffer& buffer, CMTime withPresentationTime);

 private:
  std::shared_ptr<AVAssetWriterInput> input_;
  bool takesARGB_;
};

}  // namespace kestrova::platform
