#pragma once

class QPainter;

namespace kestrova::artwork {

constexpr double kCardWidth = 156;
constexpr double kCardHeight = 98;
constexpr double kCardRadius = 9;

// Sides of documents: of a card, and the page of a passport that has the photo.
enum class DocumentSide { front, back, photoPage };

// The document of all drawings, its middle in the origin. The light of a lamp covers what is
// written on it as far as `glare`, from 0 (gone) to 1 (across the middle).
void drawDocument(QPainter& painter, DocumentSide side, double glare);

}  // namespace kestrova::artwork
