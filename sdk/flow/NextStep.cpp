#include "sdk/flow/NextStep.h"

#include "platform/foundation/Print.h"
#include "sdk/core/Kestrova.h"

namespace kestrova {

void storeNextStep(const JSONDictionary& answer) {
  if (const auto* next = textForKey(answer, "next_step")) {
    Kestrova::next_step = *next;
  } else {
    print("next_step not found");
  }
}

}  // namespace kestrova
