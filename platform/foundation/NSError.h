#pragma once

#include <string>
#include <string_view>

#include "platform/foundation/Export.h"

namespace kestrova::platform {

// What a platform operation reports when it fails.
struct KESTROVA_EXPORT NSError {
  std::string domain;
  int code = 0;
  // One line for people: what was tried and why it failed.
  std::string localizedDescription;

  // From an `errno` value: domain "NSPOSIXErrorDomain", description "<what>: <reason>".
  static NSError posix(int errorNumber, std::string_view what);

  friend bool operator==(const NSError&, const NSError&) = default;
};

}  // namespace kestrova::platform
