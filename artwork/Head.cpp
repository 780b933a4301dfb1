#include "artwork/Head.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPen>

#include "artwork/Colors.h"
#include "artwork/Motion.h"
#include "artwork/Strokes.h"

namespace kestrova::artwork {

namespace {

constexpr double kHalfPi = std::numbers::pi / 2;
constexpr double kWidth = 38;   // of half the head
constexpr double kCrown = -50;  // highest and lowest point
constexpr double kChin = 50;
constexpr int kSteps = 48;

// Half the head's width at a height: round above, tapering to the chin below.
double radius(double y) {
  if (y < 0) return kWidth * std::pow(1 - std::pow(y / kCrown, 2.3), 1 / 2.3);
  const double down = y / kChin;
  return kWidth * std::sqrt(std::max(0.0, 1 - std::pow(down, 2.3))) * (1 - 0.16 * down * down);
}

// Where a point of the face is seen: `angle` from the middle of the face, `out` above the skin.
QPointF onFace(double angle, double y, double turn, double out = 0) {
  return {(radius(y) + out) * std::sin(angle + turn), y};
}

// The height at which the hair begins; the same on both sides of a parting left of the middle.
double hairline(double angle) {
  const double side = share(std::abs(angle), 0.75, 1.30);
  const double nape = share(std::abs(angle), 1.45, 2.1);
  const double fringe = -21 - 7 * std::cos(2.6 * (angle + 0.35));
  return mix(mix(fringe, 1, easeInOut(side)), 19, easeInOut(nape));
}

// Along the outline of one side from the crown to `end`, close steps at the crown.
QPointF onOutline(int side, double end, double share, double swell = 0) {
  const double y = mix(kCrown, end, 1 - std::cos(kHalfPi * share));
  const double grown = 1 + swell * easeInOut(artwork::share(end - y, 0, 34));
  return QPointF(side * radius(y), y) * grown;
}

QPainterPath skull() {
  QPainterPath path(QPointF(0, kCrown));
  for (int i = 1; i <= kSteps; ++i) {
    const double y = -kChin * std::cos(std::numbers::pi * i / kSteps);
    path.lineTo(radius(y), y);
  }
  for (int i = kSteps - 1; i > 0; --i) {
    const double y = -kChin * std::cos(std::numbers::pi * i / kSteps);
    path.lineTo(-radius(y), y);
  }
  path.closeSubpath();
  return path;
}

// From the hairline up to the crown, where it stands a little above the skull.
QPainterPath hair(double turn) {
  constexpr double kSwell = 0.09;
  const double left = hairline(-kHalfPi - turn);
  const double right = hairline(kHalfPi - turn);
  QPainterPath path(QPointF(-radius(left), left));
  for (int i = 1; i <= kSteps; ++i) {
    const double seen = mix(-kHalfPi, kHalfPi, double(i) / kSteps);
    path.lineTo(onFace(seen, hairline(seen - turn), 0));
  }
  for (int i = kSteps; i > 0; --i) path.lineTo(onOutline(1, right, double(i) / kSteps, kSwell));
  for (int i = 0; i < kSteps; ++i) path.lineTo(onOutline(-1, left, double(i) / kSteps, kSwell));
  path.closeSubpath();
  return path;
}

// The ear of a side (1 right, -1 left); seen from the side it is broad, from the front narrow.
void drawEar(QPainter& painter, int side, double turn) {
  const QPointF middle = onFace(side * kHalfPi, 5, turn, 2);
  painter.drawEllipse(middle, 5 - 4 * side * std::sin(turn), 10);
}

// The part of the ear that comes in front of the cheek as its side turns to the viewer.
void drawNearEar(QPainter& painter, double turn) {
  if (turn == 0) return;
  const int side = turn > 0 ? -1 : 1;
  const double seen = onFace(kHalfPi, 5, turn, 2).x() - mix(-3, 12, share(std::abs(turn), 0, 0.4));
  painter.save();
  painter.setClipRect(side > 0 ? QRectF(seen, -10, 60, 40) : QRectF(-seen - 60, -10, 60, 40));
  drawEar(painter, side, turn);
  painter.restore();
}

void drawFace(QPainter& painter, double turn) {
  for (int side : {-1, 1}) {
    const QPointF eye = onFace(side * 0.42, 1, turn);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(kInk));
    painter.drawEllipse(eye, 3 * std::cos(side * 0.42 + turn), 3.2);
    setLines(painter, kInk);
    QPainterPath brow(onFace(side * 0.24, -11, turn));
    brow.quadTo(onFace(side * 0.44, -14.5, turn), onFace(side * 0.64, -11, turn));
    painter.drawPath(brow);
  }
  QPainterPath nose(onFace(0, 2, turn, 1));
  nose.quadTo(onFace(0, 10, turn, 5), onFace(0, 15, turn, 8));
  nose.quadTo(onFace(0, 18, turn, 7), onFace(0, 18, turn, 1));
  painter.drawPath(nose);
  QPainterPath mouth(onFace(-0.36, 28, turn));
  mouth.quadTo(onFace(0, 35, turn, 2), onFace(0.36, 28, turn));
  painter.drawPath(mouth);
}

void drawShoulders(QPainter& painter) {
  QPainterPath body(QPointF(-14, 36));
  body.lineTo(-14, 60);
  body.cubicTo(-14, 70, -40, 70, -54, 78);
  body.cubicTo(-68, 86, -74, 104, -76, 124);
  body.lineTo(76, 124);
  body.cubicTo(74, 104, 68, 86, 54, 78);
  body.cubicTo(40, 70, 14, 70, 14, 60);
  body.lineTo(14, 36);
  setStyle(painter, kInk, kGround);
  painter.drawPath(body);
  QPainterPath collar(QPointF(-25, 69.5));
  collar.cubicTo(-18, 92, 18, 92, 25, 69.5);
  painter.setBrush(Qt::NoBrush);
  painter.drawPath(collar);
}

}  // namespace

void drawHead(QPainter& painter, double turn) {
  drawShoulders(painter);
  painter.save();
  painter.translate(5 * std::sin(turn), 0);
  setStyle(painter, kInk, kGround);
  for (int side : {-1, 1}) drawEar(painter, side, turn);
  painter.setPen(curveStroke(kInk));
  painter.drawPath(skull());
  painter.setBrush(QColor(kDeepTint));
  painter.drawPath(hair(turn));
  setStyle(painter, kInk, kGround);
  drawNearEar(painter, turn);
  drawFace(painter, turn);
  painter.restore();
}

void drawPortrait(QPainter& painter) {
  QPainterPath shoulders(QPointF(-15, 18));
  shoulders.cubicTo(-14, 8, -8, 4, 0, 4);
  shoulders.cubicTo(8, 4, 14, 8, 15, 18);
  setStyle(painter, kInk, kGround);
  painter.drawPath(shoulders);
  QPainterPath face(QPointF(0, 1));
  face.cubicTo(-5, 1, -8.5, -5, -8.5, -11);
  face.cubicTo(-8.5, -16.5, -4.8, -20, 0, -20);
  face.cubicTo(4.8, -20, 8.5, -16.5, 8.5, -11);
  face.cubicTo(8.5, -5, 5, 1, 0, 1);
  painter.drawPath(face);
  QPainterPath cap(QPointF(-8.5, -10));
  cap.cubicTo(-6.5, -12.5, -6, -14.5, -3, -14.5);
  cap.cubicTo(0.5, -14.5, 4, -13, 8.5, -10);
  cap.cubicTo(9.2, -17, 5, -21, 0, -21);
  cap.cubicTo(-5, -21, -9.2, -17, -8.5, -10);
  setStyle(painter, kInk, kDeepTint);
  painter.drawPath(cap);
}

}  // namespace kestrova::artwork
