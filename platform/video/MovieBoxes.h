#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "platform/foundation/Result.h"

namespace kestrova::platform {

// A QuickTime file without a track: players open it and show nothing.
std::string emptyMovie();

// Completes a QuickTime file that the framework wrote: removes its creation dates, and makes the
// track begin `delay` units of the movie's time after the movie. Returns an error if the file
// cannot be read or written.
Result<Done> completeMovie(const std::filesystem::path& path, std::uint32_t delay);

}  // namespace kestrova::platform
