#pragma once

#include <string>

namespace kestrova::platform {

// A QuickTime file without a track, which players open and show nothing of.
std::string emptyMovie();

}  // namespace kestrova::platform
