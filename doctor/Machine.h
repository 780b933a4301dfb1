#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "doctor/CameraFacts.h"

namespace kestrova::doctor {

// Where the checks look. The defaults are this machine and what the SDK was built for; tests look
// elsewhere.
struct Machine {
  // Empty: where the SDK's library would find it, were it installed with this program.
  std::filesystem::path bundle;
  std::filesystem::path devices = "/dev";
  std::filesystem::path processes = "/proc";
  std::function<CameraFacts(const std::filesystem::path&)> camera = cameraFacts;
  // Where programs keep their users' data.
  std::filesystem::path data = dataFolder();
  // The host application's program name; empty where none was named.
  std::string application;
  // Bytes that captures of a few people take.
  std::uint64_t roomWanted = std::uint64_t{64} << 20;
  // HOST or HOST:PORT.
  std::string backend = KESTROVA_BACKEND_HOST;
  // PEM file of the trusted authorities; empty for the system's store.
  std::filesystem::path authorities = builtInAuthorities();
  std::chrono::hours certificateMargin = std::chrono::hours(24 * 30);
  std::chrono::seconds clockMargin = std::chrono::seconds(60);
  // For each check that waits for somebody else.
  std::chrono::milliseconds patience = std::chrono::seconds(4);
  // For the media framework, which looks through all its plugins where no list of them is kept yet.
  std::chrono::milliseconds scanPatience = std::chrono::seconds(30);

  static std::filesystem::path dataFolder();
  static std::filesystem::path builtInAuthorities();
};

}  // namespace kestrova::doctor
