#pragma once

#include <string>
#include <vector>

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
  double width;
  double height;
  unsigned ground;
  unsigned band;
  bool hasPortrait;
  std::vector<SpecimenField> fields;
  // For machines, in letters of one width.
  std::vector<const char*> machineLines;
};

void drawSpecimen(QPainter& painter, const SpecimenDocument& document, const std::string& typeface);

}  // namespace kestrova::artwork
