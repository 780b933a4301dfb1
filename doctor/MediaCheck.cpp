#include <array>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include <gst/gst.h>

#include "doctor/Checks.h"
#include "platform/foundation/ProcessInfo.h"
#include "platform/video/GStreamer.h"

namespace kestrova::doctor {

namespace {

struct Unref {
  void operator()(void* object) const { gst_object_unref(object); }
};

struct Element {
  const char* name;
  const char* purpose;
  const char* package;
};
constexpr std::array kElements{
    Element{"appsrc", "the selfie's movie", "gstreamer1.0-plugins-base"},
    Element{"openh264enc", "the selfie's movie, H.264 encoder", "gstreamer1.0-plugins-bad"},
    Element{"h264parse", "the selfie's movie", "gstreamer1.0-plugins-bad"},
    Element{"qtmux", "the selfie's movie, container", "gstreamer1.0-plugins-good"},
    Element{"v4l2src", "cameras", "gstreamer1.0-plugins-good"},
    Element{"jpegdec", "cameras that send JPEG", "gstreamer1.0-plugins-good"},
    Element{"videoconvert", "cameras and movies", "gstreamer1.0-plugins-base"},
    Element{"videoflip", "cameras", "gstreamer1.0-plugins-good"},
    Element{"appsink", "cameras", "gstreamer1.0-plugins-base"},
    Element{"uridecodebin", "video files as cameras", "gstreamer1.0-plugins-base"},
};

// Whether the framework has the list of its plugins that it keeps in a file.
bool hasRegistry() {
  std::error_code none;
  for (const auto* name : {"GST_REGISTRY_1_0", "GST_REGISTRY"}) {
    if (const auto file = platform::ProcessInfo::environment(name)) {
      return std::filesystem::exists(*file, none);
    }
  }
  const auto folder = std::filesystem::path(g_get_user_cache_dir()) / "gstreamer-1.0";
  for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
    if (entry.path().filename().string().starts_with("registry.")) return true;
  }
  return false;
}

// Loaded as well: a plugin may be listed whose own libraries are missing.
bool isUsable(const char* name) {
  const std::unique_ptr<GstElementFactory, Unref> factory(gst_element_factory_find(name));
  if (!factory) return false;
  const std::unique_ptr<GstPluginFeature, Unref> loaded(
      gst_plugin_feature_load(GST_PLUGIN_FEATURE(factory.get())));
  return loaded != nullptr;
}

}  // namespace

Findings checkMedia(const Machine& /*machine*/) {
  // To write that file is the host's to do: here it goes where none can be.
  if (!hasRegistry()) {
    ::setenv("GST_REGISTRY_1_0", "/proc/self/none", 1);  // NOLINT(concurrency-mt-unsafe)
  }
  if (const auto started = platform::startGStreamer(); !started) {
    return {{"media", Severity::failure, started.error().localizedDescription,
             "Install GStreamer's packages again."}};
  }
  Findings findings;
  for (const auto& element : kElements) {
    if (isUsable(element.name)) continue;
    findings.push_back({"media", Severity::failure,
                        std::string(element.name) + " is missing: " + element.purpose,
                        std::string("Install the package ") + element.package + "."});
  }
  if (findings.empty()) {
    findings.push_back({"media", Severity::ok, "the H.264 encoder and all else are there", {}});
  }
  return findings;
}

}  // namespace kestrova::doctor
