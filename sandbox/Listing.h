#pragma once

#include <string>

#include "sandbox/ScenarioSet.h"
#include "sandbox/Store.h"

namespace kestrova::sandbox {

// Everything that the store holds, as plain text: each authentication with its requests, then those
// that belong to none.
std::string listing(const Store& store, const ScenarioSet& scenarios);

}  // namespace kestrova::sandbox
