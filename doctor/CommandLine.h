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
  // The check that is served to another process of this program; empty for none.
  std::string probe;
};

// To be printed instead of a run.
struct Message {
  std::string text;
  bool isError = false;
};

std::variant<Command, Message> readCommandLine(const std::vector<std::string>& arguments);

}  // namespace kestrova::doctor
