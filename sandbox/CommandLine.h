#pragma once

#include <string>
#include <variant>
#include <vector>

#include "sandbox/Outcome.h"
#include "sandbox/Sandbox.h"

namespace kestrova::sandbox {

// What the command line asks for: a run, or a text to print (help, version).
using Command = std::variant<Options, std::string>;

// `arguments` without the program's name.
Outcome<Command> readCommandLine(const std::vector<std::string>& arguments);

}  // namespace kestrova::sandbox
