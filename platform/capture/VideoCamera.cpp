#include "platform/capture/VideoCamera.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gst/app/gstappsink.h>
#include <gst/gst.h>

#include "platform/capture/CameraError.h"
#include "platform/capture/CameraMode.h"
#include "platform/capture/FrameConverter.h"
#include "platform/capture/V4L2Device.h"
#include "platform/video/GStreamer.h"

namespace kestrova::platform {

namespace {

using Clock = std::chrono::steady_clock;

// How long a camera may take for its first picture, and for a photograph.
constexpr auto kPatience = std::chrono::seconds(10);
constexpr auto kPhotoPatience = std::chrono::seconds(4);
// Pictures that a device needs to find the right exposure.
constexpr std::size_t kSettling = 6;
// A file that plays for less is a picture: it stays.
constexpr auto kShortest = std::chrono::milliseconds(30);
// Frames a second that are wanted, and the most that are taken.
constexpr double kRate = 30;
constexpr double kFastest = 60;
// Of 255; below it a photograph wants light.
constexpr unsigned kDark = 60;

// Upright and as the decoder made it, one frame at a time, the newest.
constexpr const char* kEnd =
    " videoconvert ! videoflip video-direction=auto ! appsink name=out caps=video/x-raw "
    "max-buffers=1 drop=true wait-on-eos=false enable-last-sample=false";

template <auto free>
struct Unref {
  template <typename Object>
  void operator()(Object* object) const {
    free(object);
  }
};
using Element = std::unique_ptr<GstElement, Unref<gst_object_unref>>;
using Pad = std::unique_ptr<GstPad, Unref<gst_object_unref>>;
using Caps = std::unique_ptr<GstCaps, Unref<gst_caps_unref>>;
using Text = std::unique_ptr<gchar, Unref<g_free>>;

// Takes the sample over.
MediaSample keep(GstSample* sample) {
  return {std::shared_ptr<void>(sample, [](void* each) {
    if (each) gst_sample_unref(static_cast<GstSample*>(each));
  })};
}

double rateOf(const GValue* value) {
  if (GST_VALUE_HOLDS_FRACTION(value)) {
    return double(gst_value_get_fraction_numerator(value)) /
           double(std::max(1, gst_value_get_fraction_denominator(value)));
  }
  if (GST_VALUE_HOLDS_FRACTION_RANGE(value)) {
    return rateOf(gst_value_get_fraction_range_max(value));
  }
  double best = 0;
  if (!GST_VALUE_HOLDS_LIST(value)) return best;
  for (guint at = 0; at < gst_value_list_get_size(value); ++at) {
    const double rate = rateOf(gst_value_list_get_value(value, at));
    if (std::abs(rate - kRate) < std::abs(best - kRate)) best = rate;
  }
  return best;
}

// Where the device takes any length, the preview's.
std::size_t lengthOf(const GstStructure& structure, const char* name, int wanted) {
  const GValue* const value = gst_structure_get_value(&structure, name);
  if (!value) return std::size_t(wanted);
  if (G_VALUE_HOLDS_INT(value)) return std::size_t(std::max(0, g_value_get_int(value)));
  if (!GST_VALUE_HOLDS_INT_RANGE(value)) return 0;
  return std::size_t(
      std::clamp(wanted, gst_value_get_int_range_min(value),
                 std::max(gst_value_get_int_range_min(value), gst_value_get_int_range_max(value))));
}

std::vector<CameraMode> modesOf(const GstCaps& caps) {
  std::vector<CameraMode> modes;
  for (guint at = 0; at < gst_caps_get_size(&caps); ++at) {
    const GstStructure& structure = *gst_caps_get_structure(&caps, at);
    const std::string_view name = gst_structure_get_name(&structure);
    if (name != "video/x-raw" && name != "image/jpeg") continue;
    const PixelSize size{lengthOf(structure, "width", 1280), lengthOf(structure, "height", 720)};
    const GValue* const rate = gst_structure_get_value(&structure, "framerate");
    modes.push_back(
        {size, rate ? std::min(rateOf(rate), kFastest) : kRate, name == "image/jpeg", at});
  }
  return modes;
}

// Of all that the device can do, that mode alone.
Caps capsOf(const GstCaps& all, const CameraMode& mode) {
  GstCaps* caps = gst_caps_copy_nth(&all, guint(mode.index));
  gst_caps_set_simple(caps, "width", G_TYPE_INT, int(mode.size.width), "height", G_TYPE_INT,
                      int(mode.size.height), nullptr);
  GstStructure* const structure = gst_caps_get_structure(caps, 0);
  if (gst_structure_has_field(structure, "framerate")) {
    gst_structure_fixate_field_nearest_fraction(structure, "framerate",
                                                int(std::lround(mode.framesPerSecond)), 1);
  }
  return Caps(caps);
}

// The system's camera that looks that way, of the framework's own list; null where it has none.
Element listedDevice(bool isFront) {
  const std::unique_ptr<GstDeviceMonitor, Unref<gst_object_unref>> monitor(
      gst_device_monitor_new());
  gst_device_monitor_add_filter(monitor.get(), "Video/Source", nullptr);
  GList* const devices = gst_device_monitor_get_devices(monitor.get());
  GstDevice* found = nullptr;
  for (const GList* each = devices; each; each = each->next) {
    auto* const device = static_cast<GstDevice*>(each->data);
    const Text name(gst_device_get_display_name(device));
    const Text lower(g_utf8_strdown(name.get(), -1));
    const std::string_view says(lower.get());
    const bool saysFront = says.find("front") != says.npos;
    const bool saysRear = says.find("rear") != says.npos || says.find("back") != says.npos;
    if (isFront ? saysFront : saysRear) {
      found = device;
      break;
    }
    if (!found || !isFront) found = device;
  }
  GstElement* element = found ? gst_device_create_element(found, nullptr) : nullptr;
  if (element) gst_object_ref_sink(element);
  g_list_free_full(devices, gst_object_unref);
  return Element(element);
}

// Called on a thread of the framework's: a file begins again.
void playAgain(GstElement* pipeline, gpointer path) {
  std::error_code none;
  const bool isThere = std::filesystem::exists(static_cast<const char*>(path), none);
  const auto flags = static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_KEY_UNIT);
  if (isThere && gst_element_seek_simple(pipeline, GST_FORMAT_TIME, flags, 0)) return;
  gst_element_message_full(pipeline, GST_MESSAGE_ERROR, GST_RESOURCE_ERROR,
                           GST_RESOURCE_ERROR_NOT_FOUND,
                           g_strdup(isThere ? "the video cannot begin again" : "the file is gone"),
                           nullptr, __FILE__, "playAgain", __LINE__);
}

unsigned brightness(const CGImage& image) {
  unsigned long sum = 0;
  for (const auto pixel : image.pixels()) {
    sum += ((pixel >> 16 & 255U) * 3 + (pixel >> 8 & 255U) * 6 + (pixel & 255U)) / 10;
  }
  return unsigned(sum / image.pixels().size());
}

}  // namespace

struct VideoCamera::Origin {
  enum class Kind { device, system, file };
  Kind kind;
  std::filesystem::path path;
  bool isFront = false;
};

// Made and used on the camera's queue, but for what the mutex guards.
struct VideoCamera::Pipeline {
  explicit Pipeline(Origin from) : origin(std::move(from)) {}

  bool isFile() const { return origin.kind == Origin::Kind::file; }

  Result<Done> open(std::optional<CameraMode> mode);
  Result<Done> openDevice(std::optional<CameraMode> mode);
  Result<Done> openFile();
  Result<Done> play();
  void close();
  // Whether so many frames have come since the camera was opened, before the time is up.
  bool waitForFrames(std::size_t count, Clock::duration patience);
  Result<UIImage> photo();
  bool isDark();

  NSError errorOf(GstMessage& message);
  void messageCame(GstMessage& message);
  void frameCame(const MediaSample& sample);
  static GstBusSyncReply onMessage(GstBus*, GstMessage* message, gpointer self);
  static GstFlowReturn onSample(GstAppSink* sink, gpointer self);
  static GstPadProbeReturn onFile(GstPad* pad, GstPadProbeInfo* info, gpointer self);

  Origin origin;
  Events events;
  Clock::time_point started;
  Element all;
  // Of a device: what it can do, and what it does.
  std::vector<CameraMode> modes;
  CameraMode mode;
  // The framework's thread's.
  FrameConverter converter;

  std::mutex mutex;
  std::condition_variable changed;
  std::size_t frames = 0;
  // Whether frames are told, and the end.
  bool isTold = false;
  bool isOpen = false;
  PixelSize room;
  MediaSample newest;
  // The same as the JPEG file that the device gave.
  MediaSample newestFile;
  std::optional<NSError> failure;
  Clock::time_point round;
};

Result<Done> VideoCamera::Pipeline::open(std::optional<CameraMode> wanted) {
  {
    const std::lock_guard lock(mutex);
    frames = 0;
    failure.reset();
    round = Clock::now();
  }
  auto opened = isFile() ? openFile() : openDevice(wanted);
  if (opened) return opened;
  close();
  return opened.error();
}

Result<Done> VideoCamera::Pipeline::openFile() {
  std::error_code none;
  if (!std::filesystem::exists(origin.path, none)) {
    return cameraError(CameraErrorCode::notFound, origin.path.string() + ": there is no such file");
  }
  GError* wrong = nullptr;
  const std::string description =
      std::string("uridecodebin name=in expose-all-streams=false caps=video/x-raw !") + kEnd;
  all.reset(GST_ELEMENT(gst_object_ref_sink(
      gst_parse_launch_full(description.c_str(), nullptr, GST_PARSE_FLAG_FATAL_ERRORS, &wrong))));
  if (wrong) {
    const std::string why = wrong->message;
    g_clear_error(&wrong);
    return cameraError(CameraErrorCode::unsupported, "videos cannot be shown here: " + why);
  }
  const Element in(gst_bin_get_by_name(GST_BIN(all.get()), "in"));
  const Text uri(gst_filename_to_uri(std::filesystem::absolute(origin.path).c_str(), nullptr));
  g_object_set(in.get(), "uri", uri.get(), nullptr);
  return play();
}

Result<Done> VideoCamera::Pipeline::openDevice(std::optional<CameraMode> wanted) {
  Element source;
  if (origin.kind == Origin::Kind::system) source = listedDevice(origin.isFront);
  if (!source) {
    if (origin.kind == Origin::Kind::system) {
      // Without the system's help the framework has no list.
      const auto devices = V4L2Device::cameras();
      if (devices.empty()) {
        return cameraError(CameraErrorCode::notFound, "this device has no camera");
      }
      origin.path = origin.isFront ? devices.front() : devices.back();
    }
    if (auto usable = V4L2Device::check(origin.path); !usable) return usable;
    source.reset(gst_element_factory_make("v4l2src", nullptr));
    if (!source) {
      return cameraError(CameraErrorCode::unsupported, "the framework has no element for cameras");
    }
    gst_object_ref_sink(source.get());
    g_object_set(source.get(), "device", origin.path.c_str(), nullptr);
  } else if (g_object_class_find_property(G_OBJECT_GET_CLASS(source.get()), "device")) {
    gchar* path = nullptr;
    g_object_get(source.get(), "device", &path, nullptr);
    if (path) origin.path = path;
    g_free(path);
  }

  all.reset(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
  gst_bin_add(GST_BIN(all.get()), source.get());
  const std::unique_ptr<GstBus, Unref<gst_object_unref>> bus(gst_element_get_bus(all.get()));
  gst_bus_set_sync_handler(bus.get(), &Pipeline::onMessage, this, nullptr);
  const auto failed = [this] {
    const std::lock_guard lock(mutex);
    return failure.value_or(cameraError(CameraErrorCode::failed, "the camera does not open"));
  };
  if (gst_element_set_state(all.get(), GST_STATE_READY) == GST_STATE_CHANGE_FAILURE) {
    return failed();
  }
  const Pad pad(gst_element_get_static_pad(source.get(), "src"));
  const Caps able(gst_pad_query_caps(pad.get(), nullptr));
  modes = modesOf(*able);
  const auto chosen = wanted ? wanted : previewMode(modes);
  if (!chosen) {
    return cameraError(CameraErrorCode::unsupported, "the camera has no mode that can be shown");
  }
  mode = *chosen;

  const std::string description = std::string("capsfilter name=mode !") +
                                  (mode.isJPEG ? " jpegdec !" : "") + kEnd + " sync=false";
  GstElement* const rest = gst_parse_bin_from_description(description.c_str(), TRUE, nullptr);
  if (!rest) return cameraError(CameraErrorCode::unsupported, "videos cannot be shown here");
  gst_bin_add(GST_BIN(all.get()), rest);
  const Element filter(gst_bin_get_by_name(GST_BIN(rest), "mode"));
  const Caps caps = capsOf(*able, mode);
  g_object_set(filter.get(), "caps", caps.get(), nullptr);
  if (mode.isJPEG) {
    const Pad files(gst_element_get_static_pad(filter.get(), "src"));
    gst_pad_add_probe(files.get(), GST_PAD_PROBE_TYPE_BUFFER, &Pipeline::onFile, this, nullptr);
  }
  if (!gst_element_link(source.get(), rest)) return failed();
  return play();
}

Result<Done> VideoCamera::Pipeline::play() {
  const std::unique_ptr<GstBus, Unref<gst_object_unref>> bus(gst_element_get_bus(all.get()));
  gst_bus_set_sync_handler(bus.get(), &Pipeline::onMessage, this, nullptr);
  const Element out(gst_bin_get_by_name(GST_BIN(all.get()), "out"));
  GstAppSinkCallbacks callbacks{};
  callbacks.new_sample = &Pipeline::onSample;
  gst_app_sink_set_callbacks(GST_APP_SINK(out.get()), &callbacks, this, nullptr);
  const bool moves =
      gst_element_set_state(all.get(), GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE;
  if (moves && waitForFrames(1, kPatience)) return Done{};
  const std::lock_guard lock(mutex);
  return failure.value_or(cameraError(CameraErrorCode::failed, "the camera gives no picture"));
}

void VideoCamera::Pipeline::close() {
  if (!all) return;
  gst_element_set_state(all.get(), GST_STATE_NULL);
  const std::unique_ptr<GstBus, Unref<gst_object_unref>> bus(gst_element_get_bus(all.get()));
  gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
  all.reset();
  const std::lock_guard lock(mutex);
  newest = {};
  newestFile = {};
}

bool VideoCamera::Pipeline::waitForFrames(std::size_t count, Clock::duration patience) {
  std::unique_lock lock(mutex);
  changed.wait_for(lock, patience, [&] { return frames >= count || failure; });
  return frames >= count;
}

NSError VideoCamera::Pipeline::errorOf(GstMessage& message) {
  GError* native = nullptr;
  gst_message_parse_error(&message, &native, nullptr);
  std::string text = origin.path.empty() ? std::string() : origin.path.string() + ": ";
  text += native ? native->message : "unknown reason";
  auto code = CameraErrorCode::failed;
  if (frames > 0) {
    const bool isThere = native && isFile() && native->domain != GST_RESOURCE_ERROR;
    code = isThere ? CameraErrorCode::failed : CameraErrorCode::disconnected;
  } else if (native && native->domain == GST_RESOURCE_ERROR) {
    if (native->code == GST_RESOURCE_ERROR_BUSY) code = CameraErrorCode::busy;
    if (native->code == GST_RESOURCE_ERROR_NOT_FOUND) code = CameraErrorCode::notFound;
    if (native->code == GST_RESOURCE_ERROR_NOT_AUTHORIZED) code = CameraErrorCode::notPermitted;
  } else if (native && (native->domain == GST_STREAM_ERROR || native->domain == GST_CORE_ERROR)) {
    code = CameraErrorCode::unsupported;
  }
  g_clear_error(&native);
  return cameraError(code, std::move(text));
}

void VideoCamera::Pipeline::messageCame(GstMessage& message) {
  std::unique_lock lock(mutex);
  if (GST_MESSAGE_TYPE(&message) == GST_MESSAGE_EOS && isFile()) {
    const bool isPicture = Clock::now() - round < kShortest;
    round = Clock::now();
    // The path is copied: the camera may be gone by then.
    if (!isPicture) {
      gst_element_call_async(all.get(), &playAgain, g_strdup(origin.path.c_str()), &g_free);
    }
    return;
  }
  if (failure) return;
  failure = GST_MESSAGE_TYPE(&message) == GST_MESSAGE_ERROR
                ? errorOf(message)
                : cameraError(CameraErrorCode::disconnected, "the camera has ended");
  const auto tell = isTold && isOpen ? events.failed : nullptr;
  const NSError error = *failure;
  changed.notify_all();
  lock.unlock();
  if (tell) tell(error);
}

GstBusSyncReply VideoCamera::Pipeline::onMessage(GstBus*, GstMessage* message, gpointer self) {
  const auto type = GST_MESSAGE_TYPE(message);
  if (type == GST_MESSAGE_ERROR || type == GST_MESSAGE_EOS) {
    static_cast<Pipeline*>(self)->messageCame(*message);
  }
  gst_message_unref(message);
  return GST_BUS_DROP;
}

GstFlowReturn VideoCamera::Pipeline::onSample(GstAppSink* sink, gpointer self) {
  const auto shared = keep(gst_app_sink_pull_sample(sink));
  if (!shared) return GST_FLOW_OK;
  // The sink changes its sample when a file begins again, also where somebody still has it.
  auto* const native = static_cast<GstSample*>(shared.native.get());
  auto sample = keep(
      gst_sample_new(gst_sample_get_buffer(native), gst_sample_get_caps(native), nullptr, nullptr));
  static_cast<Pipeline*>(self)->frameCame(sample);
  return GST_FLOW_OK;
}

GstPadProbeReturn VideoCamera::Pipeline::onFile(GstPad* pad, GstPadProbeInfo* info, gpointer self) {
  auto& pipeline = *static_cast<Pipeline*>(self);
  const Caps caps(gst_pad_get_current_caps(pad));
  auto sample =
      keep(gst_sample_new(gst_pad_probe_info_get_buffer(info), caps.get(), nullptr, nullptr));
  const std::lock_guard lock(pipeline.mutex);
  pipeline.newestFile = std::move(sample);
  return GST_PAD_PROBE_OK;
}

void VideoCamera::Pipeline::frameCame(const MediaSample& sample) {
  std::unique_lock lock(mutex);
  newest = sample;
  const PixelSize wanted = room;
  const auto tell = isTold ? events.frame : nullptr;
  lock.unlock();
  if (tell) {
    auto image = converter.convert(sample, frameSize(sample.size(), wanted));
    if (image) tell({image, std::chrono::duration<double>(Clock::now() - started).count()});
  }
  lock.lock();
  ++frames;
  changed.notify_all();
}

bool VideoCamera::Pipeline::isDark() {
  MediaSample sample;
  {
    const std::lock_guard lock(mutex);
    sample = newest;
  }
  FrameConverter small;
  constexpr PixelSize kEnough{64, 64};
  const auto image = sample ? small.convert(sample, kEnough) : nullptr;
  return image && brightness(*image) < kDark;
}

// Of the newest frame.
Result<UIImage> VideoCamera::Pipeline::photo() {
  MediaSample sample;
  MediaSample file;
  {
    const std::lock_guard lock(mutex);
    sample = newest;
    file = newestFile;
  }
  GstMapInfo bytes;
  GstBuffer* const buffer =
      file ? gst_sample_get_buffer(static_cast<GstSample*>(file.native.get())) : nullptr;
  if (buffer && gst_buffer_map(buffer, &bytes, GST_MAP_READ)) {
    Data data(bytes.size);
    std::memcpy(data.bytes(), bytes.data, bytes.size);
    gst_buffer_unmap(buffer, &bytes);
    // A damaged one, as from a bad cable, is left to the decoder that showed it.
    auto image = UIImage::make(std::move(data));
    if (image && image.value().cgImage()) return image;
  }
  FrameConverter whole;
  auto bitmap = sample ? whole.convert(sample, sample.size()) : nullptr;
  if (!bitmap) return cameraError(CameraErrorCode::failed, "the camera gives no picture");
  return UIImage(std::move(bitmap));
}

VideoCamera::VideoCamera(Origin origin)
    : pipeline_(std::make_unique<Pipeline>(std::move(origin))) {}

VideoCamera::~VideoCamera() {
  VideoCamera::stop();
}

std::unique_ptr<VideoCamera> VideoCamera::device(std::filesystem::path path) {
  return std::unique_ptr<VideoCamera>(
      new VideoCamera({Origin::Kind::device, std::move(path), false}));
}

std::unique_ptr<VideoCamera> VideoCamera::system(bool isFront) {
  return std::unique_ptr<VideoCamera>(new VideoCamera({Origin::Kind::system, {}, isFront}));
}

std::unique_ptr<VideoCamera> VideoCamera::file(std::filesystem::path path) {
  return std::unique_ptr<VideoCamera>(
      new VideoCamera({Origin::Kind::file, std::move(path), false}));
}

Result<Done> VideoCamera::start(Events events) {
  if (auto ready = startGStreamer(); !ready) return ready;
  {
    const std::lock_guard lock(pipeline_->mutex);
    pipeline_->events = std::move(events);
    pipeline_->started = Clock::now();
    pipeline_->isTold = true;
  }
  if (auto opened = pipeline_->open(std::nullopt); !opened) return opened;
  std::optional<NSError> failure;
  {
    const std::lock_guard lock(pipeline_->mutex);
    failure = pipeline_->failure;
    pipeline_->isOpen = !failure;
  }
  if (!failure) return Done{};
  pipeline_->close();
  return *failure;
}

void VideoCamera::stop() {
  pipeline_->close();
  // The framework's threads were here before.
  const std::lock_guard lock(pipeline_->mutex);
  pipeline_->isTold = false;
  pipeline_->events = {};
}

void VideoCamera::setFrameSize(PixelSize room) {
  const std::lock_guard lock(pipeline_->mutex);
  pipeline_->room = room;
}

bool VideoCamera::hasFlash() const {
  return !pipeline_->isFile() && !pipeline_->origin.path.empty() &&
         V4L2Device::hasFlash(pipeline_->origin.path);
}

Result<UIImage> VideoCamera::takePhoto(CameraFlashMode flash) {
  auto& pipeline = *pipeline_;
  {
    const std::lock_guard lock(pipeline.mutex);
    pipeline.isTold = false;
  }
  const bool wantsLight =
      flash == CameraFlashMode::on || (flash == CameraFlashMode::automatic && pipeline.isDark());
  const auto lamp = wantsLight && hasFlash() ? V4L2Device::light(pipeline.origin.path) : nullptr;
  const auto larger = pipeline.isFile() ? std::nullopt : photoMode(pipeline.modes, pipeline.mode);
  if (!larger && !lamp) return pipeline.photo();
  // What there is if the larger one does not come.
  auto small = pipeline.photo();
  if (larger) {
    pipeline.close();
    if (!pipeline.open(larger)) return small;
  }
  std::size_t until = kSettling;
  {
    const std::lock_guard lock(pipeline.mutex);
    until += pipeline.frames;
  }
  pipeline.waitForFrames(until, kPhotoPatience);
  auto photo = pipeline.photo();
  return photo ? std::move(photo) : std::move(small);
}

}  // namespace kestrova::platform
