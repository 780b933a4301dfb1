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

// Makes one movie of still pictures, five a second, in the documents directory; every instance
// writes to the same file and removes an earlier one's as it is made. Made by std::make_shared,
// which a run needs; construction and the start of a run are the caller's thread, the run is a
// queue's, the completion the main queue's. A run that cannot go on writes one line, removes what
// it has written, and never completes.
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
  // The duration of a frame.
  std::optional<CMTime> frameTime;
  std::optional<std::filesystem::path> fileURL;
  CXEMovieMakerCompletion completionBlock;

  // The settings for a size in pixels; one line where the width is no multiple of 16.
  static AVVideoSettings videoSettings(std::string_view codec, int width, int height);

  explicit CXEImagesToVideo(AVVideoSettings settings);
  virtual ~CXEImagesToVideo() = default;
  CXEImagesToVideo(const CXEImagesToVideo&) = delete;
  CXEImagesToVideo& operator=(const CXEImagesToVideo&) = delete;

  // Start the one run of this instance and return at once.
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
  bool append(const UIImage& image, std::size_t i);
  void stop();

  // Why the run cannot go on; empty while it can.
  std::string failure_;
};

}  // namespace kestrova
