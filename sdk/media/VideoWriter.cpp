#include "sdk/media/VideoWriter.h"

#include <utility>

#include "platform/foundation/FileManager.h"
#include "platform/foundation/Print.h"
#include "platform/graphics/CGContext.h"

namespace kestrova {

namespace {

std::size_t side(const AVVideoSettings& settings, const char* key) {
  const auto found = settings.find(key);
  const auto* const value = found == settings.end() ? nullptr : std::any_cast<int>(&found->second);
  return value && *value > 0 ? static_cast<std::size_t>(*value) : 0;
}

}  // namespace

AVVideoSettings CXEImagesToVideo::videoSettings(std::string_view /*codec*/, int width, int height) {
  constexpr int kMacroblock = 16;
  if (width % kMacroblock != 0) {
    print("warning: video settings width must be divisible by 16");
  }
  return {{AVVideoCodecKey, std::string(AVVideoCodecH264)},
          {AVVideoWidthKey, width},
          {AVVideoHeightKey, height}};
}

CXEImagesToVideo::CXEImagesToVideo(AVVideoSettings settings) {
  const auto directory = FileManager::documentDirectory();
  if (!directory) {
    failure_ = "Kestrova: no movie is made: " + directory.error().localizedDescription;
    return;
  }
  auto path = directory.value() / "exprotvideo.mp4";
  std::error_code error;
  if (std::filesystem::exists(std::filesystem::symlink_status(path, error)) &&
      !std::filesystem::remove(path, error)) {
    failure_ = "remove path failed";
    print(failure_);
    return;
  }
  fileURL = std::move(path);
  auto writer = AVAssetWriter::make(*fileURL, AVFileTypeQuickTimeMovie);
  if (!writer) {
    failure_ = "Kestrova: no movie is made: " + writer.error().localizedDescription;
    return;
  }
  assetWriter = std::move(writer).value();
  videoSettings_ = std::move(settings);
  writeInput = std::make_shared<AVAssetWriterInput>(AVMediaTypeVideo, *videoSettings_);
  if (!assetWriter->canAdd(*writeInput)) {
    failure_ = "add failed";
    return;
  }
  assetWriter->add(writeInput);
  bufferAdapter = std::make_shared<AVAssetWriterInputPixelBufferAdaptor>(
      writeInput,
      std::map<std::string, int>{{kCVPixelBufferPixelFormatTypeKey, kCVPixelFormatType_32ARGB}});
  constexpr int kFramesASecond = 5;
  frameTime = CMTimeMake(1, kFramesASecond);
}

void CXEImagesToVideo::createMovieFrom(const std::vector<std::filesystem::path>& urls,
                                       CXEMovieMakerCompletion withCompletion) {
  const auto imageIn = [this](const std::any& element) -> std::optional<UIImage> {
    const auto* const url = std::any_cast<std::filesystem::path>(&element);
    auto data = FileManager::contents(*url);
    if (!data) {
      failure_ = "Kestrova: no movie is made: " + data.error().localizedDescription;
      return std::nullopt;
    }
    auto image = UIImage::make(std::move(data).value());
    return image ? std::optional(std::move(image).value()) : std::nullopt;
  };
  createMovieFromSource(std::vector<std::any>(urls.begin(), urls.end()), imageIn,
                        std::move(withCompletion));
}

void CXEImagesToVideo::createMovieFrom(const std::vector<UIImage>& images,
                                       CXEMovieMakerCompletion withCompletion) {
  const auto itself = [](const std::any& element) -> std::optional<UIImage> {
    const auto* const image = std::any_cast<UIImage>(&element);
    return image ? std::optional(*image) : std::nullopt;
  };
  createMovieFromSource(std::vector<std::any>(images.begin(), images.end()), itself,
                        std::move(withCompletion));
}

void CXEImagesToVideo::createMovieFromSource(std::vector<std::any> images,
                                             CXEMovieMakerUIImageExtractor extractor,
                                             CXEMovieMakerCompletion withCompletion) {
  if (std::exchange(isStarted_, true)) {
    print("Kestrova: no movie is made: one object makes one movie");
    return;
  }
  completionBlock = std::move(withCompletion);
  if (!failure_.empty()) return stop();
  writeInput->setFrameDuration(frameTime.value_or(CMTime()));
  assetWriter->startWriting();
  assetWriter->startSession(kCMTimeZero);
  AVAssetWriterInput::requestMediaDataWhenReady(
      DispatchQueue("mediaInputQueue"),
      [self = shared_from_this(), images = std::move(images), extractor = std::move(extractor)] {
        self->write(images, extractor);
      });
}

void CXEImagesToVideo::write(const std::vector<std::any>& images,
                             const CXEMovieMakerUIImageExtractor& extractor) {
  for (std::size_t i = 0; i < images.size(); ++i) {
    const auto image = extractor(images[i]);
    if (!failure_.empty()) return stop();
    if (!image) {
      print("Warning: counld not extract one of the frames");
      continue;
    }
    append(*image, i);
    if (!failure_.empty()) return stop();
  }
  writeInput->markAsFinished();
  assetWriter->finishWriting([self = shared_from_this()] {
    if (const auto error = self->assetWriter->error()) {
      print("Kestrova: the movie is not whole: " + error->localizedDescription);
    }
    const bool isTold = DispatchQueue::main().sync([&self] {
      self->stopHandler = nullptr;
      if (const auto completion = std::exchange(self->completionBlock, nullptr)) {
        completion(*self->fileURL);
      }
    });
    if (!isTold) print("Kestrova: the application has ended before its movie");
  });
}

void CXEImagesToVideo::append(const UIImage& image, std::size_t i) {
  const auto bitmap = image.cgImage();
  if (!bitmap) {
    failure_ = "Kestrova: no movie is made: " + bitmap.error().localizedDescription;
    return;
  }
  const auto buffer = newPixelBufferFrom(bitmap.value());
  if (!buffer) return;
  const auto duration = writeInput->frameDuration();
  const auto before = static_cast<std::int64_t>(i) - 1;
  const CMTime time = i == 0 ? kCMTimeZero : CMTimeMake(before, duration.timescale) + duration;
  // If the frame cannot be written, the writer fails and reports it when it finishes.
  static_cast<void>(bufferAdapter->append(*buffer, time));
}

std::shared_ptr<CVPixelBuffer> CXEImagesToVideo::newPixelBufferFrom(
    const std::shared_ptr<const CGImage>& cgImage) {
  const auto settings = videoSettings_.value_or(AVVideoSettings());
  auto buffer = CVPixelBuffer::create(side(settings, AVVideoWidthKey),
                                      side(settings, AVVideoHeightKey), kCVPixelFormatType_32ARGB,
                                      {{kCVPixelBufferCGImageCompatibilityKey, true},
                                       {kCVPixelBufferCGBitmapContextCompatibilityKey, true}});
  if (!buffer) {
    failure_ = "newPixelBuffer failed";
    return nullptr;
  }
  buffer->lockBaseAddress();
  constexpr std::size_t kBitsPerComponent = 8;
  auto context =
      CGContext::make(buffer->baseAddress(), buffer->width(), buffer->height(), kBitsPerComponent,
                      buffer->bytesPerRow(), CGImageAlphaInfo::noneSkipFirst);
  if (!context) {
    failure_ = "context is nil";
    return nullptr;
  }
  context->concatenate(CGAffineTransform());
  const auto drawn =
      context->draw(cgImage, {{}, {double(cgImage->width()), double(cgImage->height())}});
  buffer->unlockBaseAddress();
  if (!drawn) {
    failure_ = "Kestrova: no movie is made: " + drawn.error().localizedDescription;
    return nullptr;
  }
  return buffer;
}

void CXEImagesToVideo::stop() {
  print(failure_);
  const bool isWriting = assetWriter && assetWriter->status() != AVAssetWriterStatus::unknown;
  // Closes the file.
  assetWriter.reset();
  std::error_code ignored;
  if (isWriting) std::filesystem::remove(*fileURL, ignored);
  // Releases what the handlers hold on the main thread.
  DispatchQueue::main().async([completion = std::exchange(completionBlock, nullptr),
                               stopped = std::exchange(stopHandler, nullptr)] {
    if (stopped) stopped();
  });
}

}  // namespace kestrova
