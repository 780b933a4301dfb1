#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kestrova::platform {

// Writes one line to the system log (syslog, priority "error"). The host's syslog identity and
// options are left as they are. Any thread.
void NSLog(std::string_view message);

// Sends what NSLog writes to `sink` instead of the system log, for tests; an empty one ends that.
void redirectNSLog(std::function<void(const std::string&)> sink);

}  // namespace kestrova::platform
