#pragma once

#include <filesystem>

#include "platform/foundation/Result.h"

namespace kestrova::platform {

// Sets the dates at which a QuickTime file says it was made, which the framework takes from the
// clock, to none. An error where the file cannot be read or written.
Result<Done> clearMovieDates(const std::filesystem::path& path);

}  // namespace kestrova::platform
