#include "platform/foundation/Print.h"

#include <cstdio>

namespace kestrova::platform {

void print(std::string_view line) {
  flockfile(stdout);
  // A host's own output goes through the same stream, so the order of lines is kept.
  static_cast<void>(fwrite_unlocked(line.data(), 1, line.size(), stdout));
  putc_unlocked('\n', stdout);
  static_cast<void>(fflush_unlocked(stdout));
  funlockfile(stdout);
}

}  // namespace kestrova::platform
