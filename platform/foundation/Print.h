#pragma once

#include <string_view>

namespace kestrova::platform {

// Writes one line to standard output, whole, whichever threads print at the same time, and flushes
// it. Where standard output is closed, full or a pipe that nobody reads, the line is lost and
// nothing else happens.
void print(std::string_view line);

}  // namespace kestrova::platform
