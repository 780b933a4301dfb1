#pragma once

namespace kestrova::platform {}

// The SDK writes the platform layer's names without a prefix.
namespace kestrova {
using namespace platform;
}
