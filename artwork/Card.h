#pragma once

class QPainter;

namespace kestrova::artwork {

constexpr double kCardWidth = 156;
constexpr double kCardHeight = 98;
constexpr double kCardRadius = 9;

// Sides of documents: of a card, and the page of a passport that has the photo.
enum class DocumentSide { front, back, photoPage };

// The document in all drawings, centred on the origin. `glare` is how far a lamp's reflection
// covers the text: from 0 (none) to 1 (across the middle).
void drawDocument(QPainter& painter, DocumentSide side, double glare);

}  // namespace kestrova::artwork
