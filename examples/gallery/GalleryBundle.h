#pragma once

#include "platform/foundation/Bundle.h"
#include "sdk/Platform.h"

namespace kestrova::gallery {

// The gallery's own resources; empty where they are missing.
Bundle galleryBundle();

}  // namespace kestrova::gallery
