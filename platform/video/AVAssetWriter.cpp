#include "platform/video/AVAssetWriter.h"

#include <utility>

#include "platform/video/MovieFile.h"
#include "platform/video/VideoError.h"

namespace kestrova::platform {

namespace {

std::size_t side(const AVVideoSettings& settings, const char* key) {
  const auto found = settings.find(key);
  const auto* const value = found == settings.end() ? nullptr : std::any_cast<int>(&found->second);
  return value && *value > 0 ? static_cast<std::size_t>(*value) : 0;
}

std::string codec(const AVVideoSettings& settings) {
  const auto found = settings.find(AVVideoCodecKey);
  const auto* const value =
      found == settings.end() ? nullptr : std::any_cast<std::string>(&found->second);
  return value ? *value : std::string();
}

}  // namespace

bool AVAssetWriterInput::isReadyForMoreMediaData() const {
  const auto writer = writer_.lock();
  return writer && !isFinished_ && writer->status() == AVAssetWriterStatus::writing;
}

bool AVAssetWriterInput::append(const CVPixelBuffer& buffer, CMTime time) {
  const auto writer = writer_.lock();
  return writer && isReadyForMoreMediaData() && writer->append(buffer, time);
}

AVAssetWriterInputPixelBufferAdaptor::AVAssetWriterInputPixelBufferAdaptor(
    std::shared_ptr<AVAssetWriterInput> assetWriterInput,
    const std::map<std::string, int>& sourcePixelBufferAttributes)
    : input_(std::move(assetWriterInput)) {
  const auto format = sourcePixelBufferAttributes.find(kCVPixelBufferPixelFormatTypeKey);
  takesARGB_ =
      format == sourcePixelBufferAttributes.end() || format->second == kCVPixelFormatType_32ARGB;
}

bool AVAssetWriterInputPixelBufferAdaptor::append(const CVPixelBuffer& buffer,
                                                  CMTime withPresentationTime) {
  return takesARGB_ && input_->append(buffer, withPresentationTime);
}

Result<std::shared_ptr<AVAssetWriter>> AVAssetWriter::make(const std::filesystem::path& url,
                                                           const std::string& fileType) {
  if (fileType != AVFileTypeQuickTimeMovie) {
    return videoError(VideoErrorCode::unsupported, "only QuickTime movies are written");
  }
  std::error_code ignored;
  if (std::filesystem::exists(url, ignored)) {
    return videoError(VideoErrorCode::cannotWrite, url.string() + " exists");
  }
  if (!std::filesystem::is_directory(url.parent_path(), ignored)) {
    return videoError(VideoErrorCode::cannotWrite, "there is no folder for " + url.string());
  }
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the constructor is private.
  return std::shared_ptr<AVAssetWriter>(new AVAssetWriter(url));
}

AVAssetWriter::AVAssetWriter(std::filesystem::path url) : url_(std::move(url)) {}
AVAssetWriter::~AVAssetWriter() = default;

bool AVAssetWriter::canAdd(const AVAssetWriterInput& input) const {
  const auto& settings = input.outputSettings();
  return !input_ && status() == AVAssetWriterStatus::unknown &&
         input.mediaType() == AVMediaTypeVideo && codec(settings) == AVVideoCodecH264 &&
         side(settings, AVVideoWidthKey) > 0 && side(settings, AVVideoHeightKey) > 0;
}

void AVAssetWriter::add(const std::shared_ptr<AVAssetWriterInput>& input) {
  if (!canAdd(*input)) return;
  input_ = input;
  input_->writer_ = weak_from_this();
}

bool AVAssetWriter::startWriting() {
  if (!input_ || status() != AVAssetWriterStatus::unknown) return false;
  const auto& settings = input_->outputSettings();
  file_ = std::make_unique<MovieFile>(url_, side(settings, AVVideoWidthKey),
                                      side(settings, AVVideoHeightKey), input_->frameDuration());
  const std::lock_guard lock(mutex_);
  status_ = AVAssetWriterStatus::writing;
  return true;
}

bool AVAssetWriter::append(const CVPixelBuffer& buffer, CMTime time) {
  const auto appended = file_->append(buffer, time + CMTimeMake(-start_.value, start_.timescale));
  if (!appended) fail(appended.error());
  return bool(appended);
}

void AVAssetWriter::finishWriting(const std::function<void()>& completionHandler) {
  if (status() == AVAssetWriterStatus::writing) {
    const auto finished = file_->finish();
    if (finished) {
      const std::lock_guard lock(mutex_);
      status_ = AVAssetWriterStatus::completed;
    } else {
      fail(finished.error());
    }
  }
  file_.reset();
  completionHandler();
}

void AVAssetWriter::fail(const NSError& error) {
  const std::lock_guard lock(mutex_);
  status_ = AVAssetWriterStatus::failed;
  error_ = error;
}

AVAssetWriterStatus AVAssetWriter::status() const {
  const std::lock_guard lock(mutex_);
  return status_;
}

std::optional<NSError> AVAssetWriter::error() const {
  const std::lock_guard lock(mutex_);
  return error_;
}

}  // namespace kestrova::platform
