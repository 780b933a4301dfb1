#pragma once

#include <optional>
#include <span>
#include <string>

#include "examples/enduser/DemoCameras.h"
#include "examples/enduser/EndUser.h"

namespace host {

// What the command line asks for.
struct Options {
  static const char* const kUsage;

  // None where it cannot be understood, with a line about it on standard error.
  static std::optional<Options> parse(std::span<char*> arguments);

  kestrova::DemoCameras cameras;
  // A sandbox elsewhere than at its usual port and store; empty for that.
  std::string port;
  std::string authority;
  // Nobody is at the window: a scripted end user goes through one verification.
  bool isScripted = false;
  kestrova::EndUser::Person person;
  // Where pictures are written; empty for none. Of the whole flow where it is scripted, else of the
  // window alone.
  std::string pictures;
};

}  // namespace host
