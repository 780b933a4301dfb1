#pragma once

#include "platform/foundation/JSONValue.h"
#include "sdk/Platform.h"

namespace kestrova {

// Keeps the answer's "next_step" in the verification state; one line where it has none.
void storeNextStep(const JSONDictionary& answer);

}  // namespace kestrova
