#pragma once

class QPainter;

namespace kestrova::artwork {

// The head of all drawings with its shoulders: about 84 points wide and 104 high around the origin,
// the shoulders reaching down to 120. `turn` is in radians about the upright axis, positive to the
// viewer's right, within 0.7.
void drawHead(QPainter& painter, double turn);

// The same head as small as on a card, seen from the front: 20 points high above the shoulders,
// the origin between the two.
void drawPortrait(QPainter& painter);

}  // namespace kestrova::artwork
