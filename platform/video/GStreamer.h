#pragma once

#include "platform/foundation/Result.h"

namespace kestrova::platform {

// Starts the media framework of the process where nobody has yet. It takes some milliseconds, so it
// is called when the first camera or movie needs it, not before, and off the main thread. An error
// where the framework does not start; then each call tries anew. Any thread.
Result<Done> startGStreamer();

}  // namespace kestrova::platform
