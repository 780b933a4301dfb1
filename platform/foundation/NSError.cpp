#include "platform/foundation/NSError.h"

#include <system_error>

namespace kestrova::platform {

NSError NSError::posix(int errorNumber, std::string_view what) {
  std::string description(what);
  description += ": ";
  description += std::generic_category().message(errorNumber);
  return {"NSPOSIXErrorDomain", errorNumber, std::move(description)};
}

}  // namespace kestrova::platform
