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
  // A frame may always be appended; appending waits until it is encoded.
  static bool isReadyForMoreMediaData() { return true; }
  // No frame comes any more.
  void markAsFinished() { isFinished_ = true; }

 private:
  friend class AVAssetWriter;
  friend class AVAssetWriterInputPixelBufferAdaptor;

  bool append(const CVPixelBuffer& buffer, CMTime time);

  std::string mediaType_;
  AVVideoSettings outputSettings_;
  std::weak_ptr<AVAssetWriter> writer_;
  bool isFinished_ = false;
};

// Appends frames to a track.
class AVAssetWriterInputPixelBufferAdaptor {
 public:
  AVAssetWriterInputPixelBufferAdaptor(std::shared_ptr<AVAssetWriterInput> assetWriterInput,
                                       std::map<std::string, int> sourcePixelBufferAttributes)
      : input_(std::move(assetWriterInput)), attributes_(std::move(sourcePixelBufferAttributes)) {}

  const std::map<std::string, int>& sourcePixelBufferAttributes() const { return attributes_; }

  // Encodes the buffer to be shown from `withPresentationTime` on; the buffer is free afterwards.
  // Not on the main thread. False, with the writer failed, where it cannot be; also where the
  // writer is not writing or the track is finished.
  bool append(const CVPixelBuffer& buffer, CMTime withPresentationTime) {
    return input_->append(buffer, withPresentationTime);
  }

 private:
  std::shared_ptr<AVAssetWriterInput> input_;
  std::map<std::string, int> attributes_;
};

}  // namespace kestrova::platform
