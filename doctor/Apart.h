#pragma once

#include <string_view>

#include "doctor/Checks.h"

namespace kestrova::doctor {

// Runs the check in another process of the same program, so that one that dies or hangs is a
// finding too. Returns when the machine's patience is over at the latest.
Findings runApart(const Check& check, const Machine& machine);

// What that process does: runs the check and writes its findings to standard output.
int serve(const Check& check, const Machine& machine);

}  // namespace kestrova::doctor
