#pragma once

#include <memory>

#include "platform/uikit/AnimationClock.h"
#include "sdk/Platform.h"

namespace kestrova::platform {
class UILabel;
}

namespace kestrova {

// Seconds without a response until the user gets advice.
inline constexpr double kLongWait = 15;

// Shows that advice in the label after kLongWait. Releasing the token cancels it. Main thread.
[[nodiscard]] AnimationClock::Token sayAfterLongWait(const std::weak_ptr<UILabel>& label);

}  // namespace kestrova
