#include "platform/video/MovieFile.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gst/app/gstappsrc.h>
#include <gst/gst.h>

#include "platform/foundation/FileManager.h"
#include "platform/video/GStreamer.h"
#include "platform/video/MovieBoxes.h"
#include "platform/video/VideoError.h"

namespace kestrova::platform {

namespace {

constexpr std::size_t kPixel = 4;
constexpr auto kPatience = std::chrono::seconds(30);

template <auto free>
struct Unref {
  template <typename Object>
  void operator()(Object* object) const {
    free(object);
  }
};
using Element = std::unique_ptr<GstElement, Unref<gst_object_unref>>;
using Pad = std::unique_ptr<GstPad, Unref<gst_object_unref>>;
using Bus = std::unique_ptr<GstBus, Unref<gst_object_unref>>;
using Message = std::unique_ptr<GstMessage, Unref<gst_message_unref>>;

// One quantizer for all frames: like quality at every size, about 40 dB on faces. B-frames are not
// in the encoder's power.
constexpr const char* kPipeline =
    "appsrc name=in format=time ! videoconvert "
    "! video/x-raw,format=I420,colorimetry=bt709 "
    "! openh264enc name=encoder rate-control=quality qp-min=24 qp-max=24 complexity=low "
    "! h264parse ! qtmux name=muxer ! filesink name=out";

NSError cannotWrite(const std::string& why) {
  return videoError(VideoErrorCode::cannotWrite, "the movie cannot be written: " + why);
}

std::string textOf(GstMessage& message) {
  GError* failure = nullptr;
  gst_message_parse_error(&message, &failure, nullptr);
  std::string text = failure ? failure->message : "unknown reason";
  g_clear_error(&failure);
  return text;
}

// The encoder takes even sides of at least 16 pixels and at most so many macroblocks of 16 x 16.
// The framework refuses very long sides; this limit is known to work.
constexpr std::size_t kMacroblock = 16;
constexpr std::size_t kMaxMacroblocks = 36864;
constexpr std::size_t kMaxSide = 16384;

std::size_t encodableSide(std::size_t side) {
  return std::max(side + side % 2, kMacroblock);
}

bool isEncodable(std::size_t width, std::size_t height) {
  const auto blocks = [](std::size_t side) { return (side + kMacroblock - 1) / kMacroblock; };
  return std::max(width, height) <= kMaxSide && blocks(width) * blocks(height) <= kMaxMacroblocks;
}

// The frame's pixels with the last column and row again where the movie is larger.
std::vector<std::uint8_t> pixels(const CVPixelBuffer& frame, std::size_t width,
                                 std::size_t height) {
  std::vector<std::uint8_t> copy(width * height * kPixel);
  const auto bytes = frame.bytes();
  for (std::size_t y = 0; y < height; ++y) {
    const auto* const from = &bytes[std::min(y, frame.height() - 1) * frame.bytesPerRow()];
    auto* const to = &copy[y * width * kPixel];
    const std::size_t whole = std::min(width, frame.width()) * kPixel;
    std::memcpy(to, from, whole);
    for (std::size_t x = whole; x < width * kPixel; x += kPixel) {
      std::memcpy(to + x, to + x - kPixel, kPixel);
    }
  }
  return copy;
}

}  // namespace

struct MovieFile::Pipeline {
  Pipeline() = default;
  Pipeline(const Pipeline&) = delete;
  Pipeline& operator=(const Pipeline&) = delete;
  ~Pipeline() {
    if (all) gst_element_set_state(all.get(), GST_STATE_NULL);
  }

  // Waits until as many frames have left the encoder, or something has failed.
  Result<Done> waitForFrames(std::size_t count) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (std::chrono::steady_clock::now() < end) {
      {
        std::unique_lock lock(mutex);
        const auto soon = std::chrono::milliseconds(20);
        if (encodedOne.wait_for(lock, soon, [&] { return encoded >= count; })) return Done{};
      }
      if (const Message failed{gst_bus_pop_filtered(bus.get(), GST_MESSAGE_ERROR)}) {
        return cannotWrite(textOf(*failed));
      }
    }
    return cannotWrite("the encoder does not answer");
  }

  static GstPadProbeReturn frameLeft(GstPad*, GstPadProbeInfo*, gpointer self) {
    auto& pipeline = *static_cast<Pipeline*>(self);
    const std::lock_guard lock(pipeline.mutex);
    ++pipeline.encoded;
    pipeline.encodedOne.notify_one();
    return GST_PAD_PROBE_OK;
  }

  // The encoder has nothing left, and complains on standard error when it is asked for it.
  static GstPadProbeReturn passEndBy(GstPad*, GstPadProbeInfo* info, gpointer source) {
    GstEvent* const event = gst_pad_probe_info_get_event(info);
    if (GST_EVENT_TYPE(event) != GST_EVENT_EOS) return GST_PAD_PROBE_OK;
    gst_pad_push_event(static_cast<GstPad*>(source), gst_event_ref(event));
    return GST_PAD_PROBE_DROP;
  }

  Element all;
  Element source;
  Bus bus;
  std::size_t appended = 0;

  std::mutex mutex;
  std::condition_variable encodedOne;
  std::size_t encoded = 0;
};

MovieFile::MovieFile(std::filesystem::path path, std::size_t width, std::size_t height,
                     CMTime frameDuration)
    : path_(std::move(path)),
      width_(encodableSide(width)),
      height_(encodableSide(height)),
      frameDuration_(frameDuration) {}

MovieFile::~MovieFile() = default;

Result<Done> MovieFile::open() {
  if (!isEncodable(width_, height_)) {
    const auto limit = kMaxMacroblocks * kMacroblock * kMacroblock;
    return videoError(VideoErrorCode::unsupported,
                      std::to_string(width_) + " x " + std::to_string(height_) +
                          " pixels are more than the encoder takes: " + std::to_string(limit) +
                          ", and " + std::to_string(kMaxSide) + " a side");
  }
  if (!frameDuration_.isValid() || frameDuration_.value <= 0) {
    return videoError(VideoErrorCode::unsupported, "the duration of a frame is not positive");
  }
  if (auto started = startGStreamer(); !started) return started;
  // Private to the user, which the framework would not make it.
  if (auto made = FileManager::write({}, path_); !made) return made;
  auto pipeline = std::make_unique<Pipeline>();
  GError* failure = nullptr;
  pipeline->all.reset(
      gst_parse_launch_full(kPipeline, nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &failure));
  if (!pipeline->all) {
    const std::string why = failure ? failure->message : "unknown reason";
    g_clear_error(&failure);
    return videoError(VideoErrorCode::unavailable, "movies cannot be encoded here: " + why);
  }
  auto* const bin = GST_BIN(pipeline->all.get());
  pipeline->source.reset(gst_bin_get_by_name(bin, "in"));
  pipeline->bus.reset(gst_element_get_bus(pipeline->all.get()));
  const Element muxer(gst_bin_get_by_name(bin, "muxer"));
  const auto timescale = static_cast<guint>(frameDuration_.timescale);
  g_object_set(muxer.get(), "trak-timescale", timescale, "movie-timescale", timescale, nullptr);
  const Element out(gst_bin_get_by_name(bin, "out"));
  g_object_set(out.get(), "location", path_.c_str(), nullptr);

  GstCaps* const caps = gst_caps_new_simple(
      "video/x-raw", "format", G_TYPE_STRING, "xRGB", "width", G_TYPE_INT, static_cast<int>(width_),
      "height", G_TYPE_INT, static_cast<int>(height_), "framerate", GST_TYPE_FRACTION,
      frameDuration_.timescale,
      static_cast<int>(std::min<std::int64_t>(frameDuration_.value, G_MAXINT)), nullptr);
  gst_app_src_set_caps(GST_APP_SRC(pipeline->source.get()), caps);
  gst_caps_unref(caps);

  const Element encoder(gst_bin_get_by_name(bin, "encoder"));
  const Pad frames(gst_element_get_static_pad(encoder.get(), "src"));
  gst_pad_add_probe(frames.get(), GST_PAD_PROBE_TYPE_BUFFER, &Pipeline::frameLeft, pipeline.get(),
                    nullptr);
  const Pad events(gst_element_get_static_pad(encoder.get(), "sink"));
  // The pad lives as long as the encoder.
  gst_pad_add_probe(events.get(), GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, &Pipeline::passEndBy,
                    frames.get(), nullptr);

  if (gst_element_set_state(pipeline->all.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
    const Message failed{gst_bus_pop_filtered(pipeline->bus.get(), GST_MESSAGE_ERROR)};
    return cannotWrite(failed ? textOf(*failed) : path_.string());
  }
  pipeline_ = std::move(pipeline);
  return Done{};
}

Result<Done> MovieFile::append(const CVPixelBuffer& frame, CMTime time) {
  const bool isFirst = !pipeline_;
  if (isFirst) {
    if (auto opened = open(); !opened) return opened;
  }
  const auto timescale = static_cast<guint64>(frameDuration_.timescale);
  const auto units = time.isValid() && time.value >= 0
                         ? gst_util_uint64_scale_round(static_cast<guint64>(time.value), timescale,
                                                       static_cast<guint64>(time.timescale))
                         : G_MAXUINT64;
  if (units > G_MAXUINT32 || (!isFirst && units <= lastTime_)) {
    return cannotWrite("a frame lies before another or outside the movie");
  }
  if (isFirst) firstTime_ = units;
  lastTime_ = units;
  const auto bytes = pixels(frame, width_, height_);
  GstBuffer* const buffer = gst_buffer_new_allocate(nullptr, bytes.size(), nullptr);
  if (!buffer) return cannotWrite("there is no memory for a frame");
  gst_buffer_fill(buffer, 0, bytes.data(), bytes.size());
  // The muxer begins every movie with its first frame; completeMovie() puts that right.
  GST_BUFFER_PTS(buffer) = gst_util_uint64_scale_round(units - firstTime_, GST_SECOND, timescale);
  GST_BUFFER_DURATION(buffer) = gst_util_uint64_scale_round(
      static_cast<guint64>(frameDuration_.value), GST_SECOND, timescale);
  // Takes the buffer over.
  if (gst_app_src_push_buffer(GST_APP_SRC(pipeline_->source.get()), buffer) != GST_FLOW_OK) {
    const Message failed{gst_bus_pop_filtered(pipeline_->bus.get(), GST_MESSAGE_ERROR)};
    return cannotWrite(failed ? textOf(*failed) : "the encoder takes no frame");
  }
  return pipeline_->waitForFrames(++pipeline_->appended);
}

Result<Done> MovieFile::finish() {
  if (!pipeline_) return FileManager::write(emptyMovie(), path_);
  gst_app_src_end_of_stream(GST_APP_SRC(pipeline_->source.get()));
  const auto patience = std::chrono::nanoseconds(kPatience).count();
  const Message last{
      gst_bus_timed_pop_filtered(pipeline_->bus.get(), static_cast<GstClockTime>(patience),
                                 static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR))};
  const bool isWhole = last && GST_MESSAGE_TYPE(last.get()) == GST_MESSAGE_EOS;
  const std::string why = last && !isWhole ? textOf(*last) : "the file does not end";
  pipeline_.reset();
  if (!isWhole) return cannotWrite(why);
  return completeMovie(path_, static_cast<std::uint32_t>(firstTime_));
}

}  // namespace kestrova::platform
