#pragma once

#include <span>

#include "doctor/Finding.h"
#include "doctor/Machine.h"

namespace kestrova::doctor {

struct Check {
  const char* name;
  Findings (*run)(const Machine& machine);
  // Starts a library that may end the process or hang: to be run in a process of its own.
  bool isRisky;
};

// In the order in which they are run. None takes much longer than the machine's patience, and none
// leaves anything behind.
std::span<const Check> checks();

// The resource bundle and its typefaces.
Findings checkBundle(const Machine& machine);
// The display platform, its screens and the system's typefaces.
Findings checkDisplay(const Machine& machine);
// On-screen keyboards and other input methods.
Findings checkInput(const Machine& machine);
// Cameras, who may open them and who holds them. Opens devices to ask, takes no picture.
Findings checkCameras(const Machine& machine);
// Encoder, container and camera elements of the media framework.
Findings checkMedia(const Machine& machine);
// Where pictures and movies are kept.
Findings checkDocuments(const Machine& machine);
// Name, certificate and clock. Sends one HEAD request without any data.
Findings checkBackend(const Machine& machine);

}  // namespace kestrova::doctor
