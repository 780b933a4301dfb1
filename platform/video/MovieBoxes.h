#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "platform/foundation/Result.h"

namespace kestrova::platform {

// A QuickTime file without a track, which players open and show nothing of.
std::string emptyMovie();

// Completes a QuickTime file of the framework's: removes the dates at which it was made, and lets
// the track begin `delay` units of the movie's time after the movie. Returns an error if the file
// cannot be read or written.
Result<Done> completeMovie(const std::filesystem::path& path, std::uint32_t delay);

}  // namespace kestrova::platform
