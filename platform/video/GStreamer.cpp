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
  // The plugins are looked through in this process, which forks no helper.
  gst_registry_fork_set_enabled(FALSE);
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
