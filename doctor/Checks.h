#pragma once

#include <chrono>
#include <span>

#include "doctor/Finding.h"
#include "doctor/Machine.h"

namespace kestrova::doctor {

struct Check {
  const char* name;
  Findings (*run)(const Machine& machine);
  // May end the process or hang, by a library, a device or a file system: to be run in a process of
  // its own.
  bool isRisky;
  // How long it may take.
  std::chrono::milliseconds Machine::*patience = &Machine::patience;
};

// In the order in which they are run; none leaves anything behind. One that is not risky takes no
// longer than that.
std::span<const Check> checks();

// The resource bundle and its typefaces.
Findings checkBundle(const Machine& machine);
// The display platform, its screens and the system's typefaces.
Findings checkDisplay(const Machine& machine);
// On-screen keyboards and other input methods.
Findings checkInput(const Machine& machine);
// Cameras, who may open them and who holds them. Opens devices to ask, takes no picture.
Findings checkCameras(const Machine& machine);
// Encoder, container and camera elements of the media framework. Changes the environment.
Findings checkMedia(const Machine& machine);
// Where pictures and movies are kept.
Findings checkDocuments(const Machine& machine);
// Name, certificate and clock. Sends one HEAD request without any data.
Findings checkBackend(const Machine& machine);

}  // namespace kestrova::doctor
