#include <array>
#include <memory>

#include <gst/gst.h>

#include "doctor/Checks.h"
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
    Element{"openh264enc", "the selfie's movie, H.264 encoder", "gstreamer1.0-plugins-bad"},
    Element{"h264parse", "the selfie's movie", "gstreamer1.0-plugins-bad"},
    Element{"qtmux", "the selfie's movie, container", "gstreamer1.0-plugins-good"},
    Element{"v4l2src", "cameras", "gstreamer1.0-plugins-good"},
    Element{"jpegdec", "cameras that send JPEG", "gstreamer1.0-plugins-good"},
    Element{"videoconvert", "cameras and movies", "gstreamer1.0-plugins-base"},
    Element{"uridecodebin", "video files as cameras", "gstreamer1.0-plugins-base"},
};

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
