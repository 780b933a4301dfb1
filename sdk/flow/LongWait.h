#pragma once

#include <memory>

#include "platform/uikit/AnimationClock.h"
#include "sdk/Platform.h"

namespace kestrova::platform {
class UILabel;
}

namespace kestrova {

// Seconds without a response after which the user is told what to do.
inline constexpr double kLongWait = 15;

// Shows that advice in the label after kLongWait, unless the token goes first. Main thread.
[[nodiscard]] AnimationClock::Token sayAfterLongWait(const std::weak_ptr<UILabel>& label);

}  // namespace kestrova
