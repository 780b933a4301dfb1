#pragma once

#include "doctor/Checks.h"

namespace kestrova::doctor {

// Runs the check in a process of its own, so that one that dies or hangs is a finding too. Returns
// when the check's patience is over at the latest. To be called while there is one thread.
Findings runApart(const Check& check, const Machine& machine);

}  // namespace kestrova::doctor
