#include "platform/foundation/Print.h"

#include <cstdio>
#include <string>

namespace kestrova::platform {

void print(std::string_view line) {
  std::string whole(line);
  whole += '\n';
  // One call of the stream that the host's own output goes through: the line stays in one piece,
  // and in its place among the host's.
  static_cast<void>(std::fwrite(whole.data(), 1, whole.size(), stdout));
  static_cast<void>(std::fflush(stdout));
}

}  // namespace kestrova::platform
