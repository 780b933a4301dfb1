#pragma once

#include <memory>

#include "platform/foundation/Result.h"
#include "sdk/Platform.h"

namespace kestrova::platform {
class UIViewController;
}

namespace kestrova {

// The first screen of the flow, anew from the bundle's storyboard, whose screens are all loaded
// once to verify them. An error names everything that is missing or does not fit. Main thread, in a
// process with an interface.
Result<std::shared_ptr<UIViewController>> makeFlow();

// Makes the classes that the SDK's storyboard and nib name known to the platform, once a process.
void registerFlowClasses();

}  // namespace kestrova
