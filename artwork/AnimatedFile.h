#pragma once

#include <string>

#include "artwork/Animation.h"

namespace kestrova::artwork {

// Draws every frame and writes them to a GIF file that loops for ever; each frame after the first
// holds only the part that changed. Throws std::runtime_error with the file's name where it cannot
// be written.
void writeGIF(const Animation& animation, const std::string& file);

}  // namespace kestrova::artwork
