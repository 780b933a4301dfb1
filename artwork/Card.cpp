#include "artwork/Card.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "artwork/Head.h"
#include "artwork/Motion.h"
#include "artwork/Strokes.h"

namespace kestrova::artwork {

namespace {

void drawPhoto(QPainter& painter, const QRectF& photo) {
  setStyle(painter, kInk, kTint);
  painter.drawRoundedRect(photo, 4, 4);
  painter.save();
  painter.translate(photo.center().x(), photo.bottom() - 19);
  drawPortrait(painter);
  painter.restore();
}

// A line of characters for machines.
void drawMachineLine(QPainter& painter, double y) {
  setLines(painter, kInk);
  for (double x = -64; x < 60; x += 12) painter.drawLine(QPointF(x, y), QPointF(x + 5, y));
}

void drawFront(QPainter& painter) {
  drawPhoto(painter, {-64, -23, 40, 50});
  setLines(painter, kInk);
  painter.drawLine(QPointF(-64, -35), QPointF(-34, -35));
  painter.drawLine(QPointF(-8, -18), QPointF(60, -18));
  painter.drawLine(QPointF(-8, -5), QPointF(40, -5));
  painter.drawLine(QPointF(-8, 8), QPointF(52, 8));
  painter.drawLine(QPointF(-8, 21), QPointF(12, 21));
}

void drawBack(QPainter& painter) {
  setStyle(painter, kInk, kDeepTint);
  painter.drawRect(QRectF(-kCardWidth / 2 - 4, -37, kCardWidth + 8, 20));
  setStyle(painter, kInk, kGround);
  painter.drawRoundedRect(QRectF(-64, -6, 76, 20), 4, 4);
  QPainterPath signature(QPointF(-54, 7));
  signature.cubicTo(-48, -8, -44, -4, -46, 6);
  signature.cubicTo(-40, -4, -36, 2, -34, 6);
  signature.cubicTo(-28, 0, -22, 8, -8, 3);
  setLines(painter, kInk);
  painter.drawPath(signature);
  painter.drawLine(QPointF(26, 0), QPointF(60, 0));
  painter.drawLine(QPointF(26, 11), QPointF(48, 11));
  drawMachineLine(painter, 26);
  drawMachineLine(painter, 36);
}

void drawPhotoPage(QPainter& painter) {
  drawPhoto(painter, {-64, -38, 40, 50});
  setLines(painter, kInk);
  painter.drawLine(QPointF(-10, -34), QPointF(28, -34));
  painter.drawLine(QPointF(-10, -21), QPointF(60, -21));
  painter.drawLine(QPointF(-10, -8), QPointF(46, -8));
  painter.drawLine(QPointF(-10, 5), QPointF(24, 5));
  drawMachineLine(painter, 25);
  drawMachineLine(painter, 36);
}

void drawContents(QPainter& painter, DocumentSide side) {
  switch (side) {
    case DocumentSide::front:
      return drawFront(painter);
    case DocumentSide::back:
      return drawBack(painter);
    case DocumentSide::photoPage:
      return drawPhotoPage(painter);
  }
}

// The opposite page of an open passport, above the fold, and the pages below the one with the
// photo.
void drawPassport(QPainter& painter) {
  constexpr double kHalf = kCardWidth / 2;
  constexpr double kFold = -kCardHeight / 2;
  setStyle(painter, kInk, kGround);
  for (const double below : {6.0, 3.0}) {
    painter.drawRoundedRect(
        QRectF(-kHalf + below, kFold + below, kCardWidth - 2 * below, kCardHeight), kCardRadius,
        kCardRadius);
  }
  QPainterPath page(QPointF(-kHalf, kFold + kCardRadius));
  page.lineTo(-kHalf + 7, kFold - 22);
  page.quadTo(-kHalf + 9, kFold - 28, -kHalf + 16, kFold - 28);
  page.lineTo(kHalf - 16, kFold - 28);
  page.quadTo(kHalf - 9, kFold - 28, kHalf - 7, kFold - 22);
  page.lineTo(kHalf, kFold + kCardRadius);
  painter.drawPath(page);
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

void drawDocument(QPainter& painter, DocumentSide side, double glare) {
  const bool isPage = side == DocumentSide::photoPage;
  if (isPage) drawPassport(painter);
  const QRectF outline(-kCardWidth / 2, -kCardHeight / 2, kCardWidth, kCardHeight);
  QPainterPath shape;
  shape.addRoundedRect(outline, kCardRadius, kCardRadius);
  painter.fillPath(shape, QColor(kGround));
  painter.save();
  painter.setClipPath(shape);
  drawContents(painter, side);
  if (glare > 0) drawGlare(painter, glare);
  painter.restore();
  setLines(painter, kInk);
  painter.drawPath(shape);
}

}  // namespace kestrova::artwork
