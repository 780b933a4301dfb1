#include "artwork/Strokes.h"

#include <QtGui/QPainter>
#include <QtGui/QPen>

namespace kestrova::artwork {

QPen stroke(Color color, double width) {
  return {QColor(color), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

QPen curveStroke(Color color) {
  return {QColor(color), kLine, Qt::SolidLine, Qt::RoundCap, Qt::BevelJoin};
}

void setStyle(QPainter& painter, Color color, Color fill, double width) {
  painter.setPen(stroke(color, width));
  painter.setBrush(QColor(fill));
}

void setLines(QPainter& painter, Color color, double width) {
  painter.setPen(stroke(color, width));
  painter.setBrush(Qt::NoBrush);
}

}  // namespace kestrova::artwork
