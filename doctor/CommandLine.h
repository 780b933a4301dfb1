#pragma once

#include <string>
#include <variant>
#include <vector>

#include "doctor/Machine.h"

namespace kestrova::doctor {

struct Command {
  Machine machine;
  // Names of checks; empty for all.
  std::vector<std::string> only;
  bool isJSON = false;
};

// To be printed instead of a run.
struct Message {
  std::string text;
  bool isError = false;
};

std::variant<Command, Message> readCommandLine(const std::vector<std::string>& arguments);

}  // namespace kestrova::doctor
