#include "platform/capture/FrameConverter.h"

#include <gst/gst.h>
#include <gst/video/video.h>

namespace kestrova::platform {

namespace {

struct FreeConverter {
  void operator()(GstVideoConverter* converter) const { gst_video_converter_free(converter); }
};
struct UnrefBuffer {
  void operator()(GstBuffer* buffer) const { gst_buffer_unref(buffer); }
};

// A buffer's picture in memory, as long as it lives.
class Mapped {
 public:
  Mapped(GstVideoInfo& info, GstBuffer* buffer, GstMapFlags flags)
      : isMapped_(gst_video_frame_map(&frame_, &info, buffer, flags)) {}
  ~Mapped() {
    if (isMapped_) gst_video_frame_unmap(&frame_);
  }
  Mapped(const Mapped&) = delete;
  Mapped& operator=(const Mapped&) = delete;

  explicit operator bool() const { return isMapped_; }
  GstVideoFrame* get() { return &frame_; }

 private:
  GstVideoFrame frame_{};
  bool isMapped_;
};

bool infoOf(const MediaSample& sample, GstVideoInfo& info) {
  auto* const native = static_cast<GstSample*>(sample.native.get());
  GstCaps* const caps = native ? gst_sample_get_caps(native) : nullptr;
  return caps && gst_video_info_from_caps(&info, caps);
}

}  // namespace

PixelSize MediaSample::size() const {
  GstVideoInfo info;
  if (!infoOf(*this, info)) return {};
  return {std::size_t(info.width), std::size_t(info.height)};
}

struct FrameConverter::State {
  GstVideoInfo from{};
  PixelSize to;
  std::unique_ptr<GstVideoConverter, FreeConverter> converter;
};

FrameConverter::FrameConverter() : state_(std::make_unique<State>()) {}

FrameConverter::~FrameConverter() = default;

std::shared_ptr<const CGImage> FrameConverter::convert(const MediaSample& sample, PixelSize to) {
  GstVideoInfo from;
  auto image = CGImage::make(to.width, to.height);
  if (!image || !infoOf(sample, from)) return nullptr;
  // The bytes of a pixel's word.
  GstVideoInfo into;
  const auto format =
      G_BYTE_ORDER == G_LITTLE_ENDIAN ? GST_VIDEO_FORMAT_BGRA : GST_VIDEO_FORMAT_ARGB;
  gst_video_info_set_format(&into, format, guint(to.width), guint(to.height));
  // The converter works on pictures, and yet wants both to be of one film.
  into.fps_n = from.fps_n;
  into.fps_d = from.fps_d;
  if (!state_->converter || state_->to != to || !gst_video_info_is_equal(&state_->from, &from)) {
    GstStructure* const settings = gst_structure_new(
        "settings", GST_VIDEO_CONVERTER_OPT_ALPHA_MODE, GST_TYPE_VIDEO_ALPHA_MODE,
        GST_VIDEO_ALPHA_MODE_SET, GST_VIDEO_CONVERTER_OPT_ALPHA_VALUE, G_TYPE_DOUBLE, 1.0,
        GST_VIDEO_CONVERTER_OPT_RESAMPLER_METHOD, GST_TYPE_VIDEO_RESAMPLER_METHOD,
        GST_VIDEO_RESAMPLER_METHOD_LINEAR, nullptr);
    // Takes the settings over.
    state_->converter.reset(gst_video_converter_new(&from, &into, settings));
    state_->from = from;
    state_->to = to;
  }
  if (!state_->converter) return nullptr;
  const auto pixels = std::as_writable_bytes(image->pixels());
  // Written in place: the bitmap outlives the buffer, which does not own it.
  const std::unique_ptr<GstBuffer, UnrefBuffer> target(gst_buffer_new_wrapped_full(
      GstMemoryFlags{}, pixels.data(), pixels.size(), 0, pixels.size(), nullptr, nullptr));
  auto* const native = static_cast<GstSample*>(sample.native.get());
  Mapped source(from, gst_sample_get_buffer(native), GST_MAP_READ);
  Mapped made(into, target.get(), GST_MAP_WRITE);
  if (!source || !made) return nullptr;
  gst_video_converter_frame(state_->converter.get(), source.get(), made.get());
  return image;
}

}  // namespace kestrova::platform
