#pragma once

#include "artwork/Colors.h"

class QPainter;
class QPen;

namespace kestrova::artwork {

// The line of all drawings, in points.
constexpr double kLine = 2;

// Round ends and joins.
QPen stroke(Color color, double width = kLine);

// For curves of many short lines, on which Qt's round joins leave dots.
QPen curveStroke(Color color);

// Lines in `color` around an area of `fill`.
void setStyle(QPainter& painter, Color color, Color fill, double width = kLine);

// Lines alone.
void setLines(QPainter& painter, Color color, double width = kLine);

}  // namespace kestrova::artwork
