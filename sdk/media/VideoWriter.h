#pragma once

#include <any>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/graphics/UIImage.h"
#include "platform/video/AVAssetWriter.h"
#include "sdk/Platform.h"

namespace kestrova {

// Makes one movie of still pictures, one each `frameTime`, in the documents directory. Every
// instance writes to the same file and removes an earlier one's when it is constructed. Create it
// with std::make_shared. The run works on a queue of its own; its completion comes on the main
// queue, also when a frame could not be written or the disk was full: isMovieWhole() says which. A
// run without a writer or with a picture that cannot be drawn stops instead: it logs one line,
// removes its file and calls `stopHandler`.
class CXEImagesToVideo : public std::enable_shared_from_this<CXEImagesToVideo> {
 public:
  using CXEMovieMakerCompletion = std::function<void(const std::filesystem::path& url)>;
  // The picture of one element of the source, none where there is none. On the run's queue.
  using CXEMovieMakerUIImageExtractor = std::function<std::optional<UIImage>(const std::any&)>;

  // Absent after a construction that stopped.
  std::shared_ptr<AVAssetWriter> assetWriter;
  std::shared_ptr<AVAssetWriterInput> writeInput;
  std::shared_ptr<AVAssetWriterInputPixelBufferAdaptor> bufferAdapter;
  std::optional<AVVideoSettings> videoSettings_;
  // The duration of a frame: 0.2 s, unless changed before the run.
  std::optional<CMTime> frameTime;
  std::optional<std::filesystem::path> fileURL;
  // Called once, and empty afterwards, as is `stopHandler`: either may hold this object.
  CXEMovieMakerCompletion completionBlock;
  // Called on the main queue if the run stops without its completion.
  std::function<void()> stopHandler;

  // The settings for a size in pixels, always in H.264; logs a line if the width is not a multiple
  // of 16.
  static AVVideoSettings videoSettings(std::string_view codec, int width, int height);

  explicit CXEImagesToVideo(AVVideoSettings settings);
  virtual ~CXEImagesToVideo() = default;
  CXEImagesToVideo(const CXEImagesToVideo&) = delete;
  CXEImagesToVideo& operator=(const CXEImagesToVideo&) = delete;

  // For the completion: true if the movie was written to its end without an error.
  bool isMovieWhole() const {
    return assetWriter && assetWriter->status() == AVAssetWriterStatus::completed;
  }

  // Start the one run of this instance and return at once. A second run logs a line and changes
  // nothing.
  virtual void createMovieFrom(const std::vector<std::filesystem::path>& urls,
                               CXEMovieMakerCompletion withCompletion);
  virtual void createMovieFrom(const std::vector<UIImage>& images,
                               CXEMovieMakerCompletion withCompletion);
  // An element without a picture is skipped with a line; its place in time stays empty.
  virtual void createMovieFromSource(std::vector<std::any> images,
                                     CXEMovieMakerUIImageExtractor extractor,
                                     CXEMovieMakerCompletion withCompletion);
  // A frame with the picture unscaled in its lower left corner; null where there is none.
  virtual std::shared_ptr<CVPixelBuffer> newPixelBufferFrom(
      const std::shared_ptr<const CGImage>& cgImage);

 private:
  void write(const std::vector<std::any>& images, const CXEMovieMakerUIImageExtractor& extractor);
  void append(const UIImage& image, std::size_t i);
  void stop();

  bool isStarted_ = false;
  // The reason why the run cannot go on; empty while it can.
  std::string failure_;
};

}  // namespace kestrova
