#pragma once

class QPainter;

namespace kestrova::platform {

// The toolkit's painter behind a Canvas. For the .cpp files of the interface layer alone.
struct NativePainter {
  QPainter& painter;
};

}  // namespace kestrova::platform
