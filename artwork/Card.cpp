#include "artwork/Card.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "artwork/Head.h"
#include "artwork/Motion.h"
#include "artwork/Strokes.h"

namespace kestrova::artwork {

namespace {

void drawContents(QPainter& painter) {
  const QRectF photo(-64, -23, 40, 50);
  setStyle(painter, kInk, kTint);
  painter.drawRoundedRect(photo, 4, 4);
  painter.save();
  painter.translate(photo.center().x(), photo.bottom() - 19);
  drawPortrait(painter);
  painter.restore();
  setLines(painter, kInk);
  painter.drawLine(QPointF(-64, -35), QPointF(-34, -35));
  painter.drawLine(QPointF(-8, -18), QPointF(60, -18));
  painter.drawLine(QPointF(-8, -5), QPointF(40, -5));
  painter.drawLine(QPointF(-8, 8), QPointF(52, 8));
  painter.drawLine(QPointF(-8, 21), QPointF(12, 21));
}

void drawGlare(QPainter& painter, double glare) {
  const double x = mix(150, -6, glare);
  setStyle(painter, kDeepTint, kGround, 1.5);
  const auto band = [&painter, x](double from, double to) {
    painter.drawPolygon(QPolygonF(
        {{x + from + 30, -60}, {x + to + 30, -60}, {x + to - 30, 60}, {x + from - 30, 60}}));
  };
  band(-22, 16);
  band(24, 34);
}

}  // namespace

void drawCard(QPainter& painter, double glare) {
  const QRectF outline(-kCardWidth / 2, -kCardHeight / 2, kCardWidth, kCardHeight);
  QPainterPath shape;
  shape.addRoundedRect(outline, kCardRadius, kCardRadius);
  painter.fillPath(shape, QColor(kGround));
  drawContents(painter);
  if (glare > 0) {
    painter.save();
    painter.setClipPath(shape);
    drawGlare(painter, glare);
    painter.restore();
  }
  setLines(painter, kInk);
  painter.drawPath(shape);
}

}  // namespace kestrova::artwork
