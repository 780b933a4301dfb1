#include "platform/video/GStreamer.h"

#include <mutex>
#include <string>

#include <gst/gst.h>

#include "platform/video/VideoError.h"

namespace kestrova::platform {

Result<Done> startGStreamer() {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  if (gst_is_initialized()) return Done{};
  // Where the framework has no list of its plugins yet it looks through them in a child process.
  // That stays so: in this one they would leave hundreds of libraries, threads, and an ignored
  // SIGPIPE behind.
  GError* failure = nullptr;
  if (gst_init_check(nullptr, nullptr, &failure)) return Done{};
  std::string why = failure ? failure->message : "unknown reason";
  g_clear_error(&failure);
  return videoError(VideoErrorCode::unavailable, "the media framework does not start: " + why);
}

NSError videoError(VideoErrorCode code, std::string description) {
  return {"Kestrova.Video", static_cast<int>(code), std::move(description)};
}

}  // namespace kestrova::platform
