#pragma once

#include <string>

namespace kestrova::artwork {

enum class CardSide { front, back };

// Writes a PNG file, transparent but for the outline in which a card is to be photographed: 300 by
// 400 points at three pixels each. Throws std::runtime_error that names the file where it cannot be
// written.
void writeCameraOutline(CardSide side, const std::string& file);

}  // namespace kestrova::artwork
