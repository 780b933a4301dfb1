#pragma once

#include <chrono>
#include <functional>

namespace kestrova::platform {

using DispatchBlock = std::function<void()>;
using DispatchClock = std::chrono::steady_clock;

}  // namespace kestrova::platform
