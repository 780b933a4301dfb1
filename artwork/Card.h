#pragma once

class QPainter;

namespace kestrova::artwork {

constexpr double kCardWidth = 156;
constexpr double kCardHeight = 98;
constexpr double kCardRadius = 9;

// The card of all drawings, its middle in the origin. The light of a lamp covers what is written on
// it as far as `glare`, from 0 (gone) to 1 (across the middle).
void drawCard(QPainter& painter, double glare);

}  // namespace kestrova::artwork
