#pragma once

#include <vector>

#include <QtCore/QSizeF>
#include <QtCore/QString>

class QPainter;

namespace kestrova::artwork {

struct SpecimenField {
  const char* label;
  const char* value;
};

// One side of a document, drawn around the origin.
struct SpecimenDocument {
  const char* title;
  const char* kind;
  QSizeF size;
  unsigned ground;
  unsigned band;
  bool hasPortrait;
  std::vector<SpecimenField> fields;
  // For machines, in letters of one width.
  std::vector<const char*> machineLines;
};

// `family` is the typeface.
void drawSpecimen(QPainter& painter, const SpecimenDocument& document, const QString& family);

}  // namespace kestrova::artwork
