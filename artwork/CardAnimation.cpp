#include "artwork/CardAnimation.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "artwork/Motion.h"
#include "artwork/Strokes.h"

namespace kestrova::artwork {

namespace {

constexpr int kWidth = 280;
constexpr int kHeight = 180;
constexpr double kMargin = 13;  // between card and frame
// Frame 0 shows how it should be; then the card leaves, waits, comes back, the corners come on.
constexpr std::size_t kAway = 11;
constexpr std::size_t kBack = 27;
constexpr std::size_t kFrames = 39;
constexpr double kCorner = 3;  // frames from one corner to the next

// 0 where the card lies straight in the frame, 1 where it is farthest.
double distance(std::size_t frame) {
  const auto at = static_cast<double>(frame);
  return frame <= kAway ? easeInOut(share(at, 0, kAway)) : 1 - easeInOut(share(at, kAway, kBack));
}

// How far a corner is on; the upper left one is the first, then clockwise.
double light(std::size_t frame, int corner) {
  const auto at = static_cast<double>(frame);
  if (frame < kBack) return 1 - share(at, 0, 3);
  const double begin = kBack - 2 + kCorner * corner;
  return share(at, begin, begin + 3);
}

// The fingers behind the card.
void drawPalm(QPainter& painter) {
  QPainterPath palm(QPointF(-10, 40));
  palm.cubicTo(-12, 60, -10, 84, -4, 130);
  palm.lineTo(58, 130);
  palm.cubicTo(56, 90, 51, 66, 44, 40);
  setStyle(painter, kInk, kGround);
  painter.drawPath(palm);
}

void drawThumb(QPainter& painter) {
  painter.save();
  painter.translate(18, 43);
  painter.rotate(-9);
  QPainterPath thumb(QPointF(-14, 40));
  thumb.quadTo(-12, 22, -12, 0);
  thumb.cubicTo(-12, -17, 12, -17, 12, 0);
  thumb.lineTo(12, 24);
  setStyle(painter, kInk, kGround);
  painter.drawPath(thumb);
  QPainterPath nail(QPointF(-6, -1));
  nail.lineTo(-6, 3);
  nail.quadTo(-6, 7, 0, 7);
  nail.quadTo(6, 7, 6, 3);
  nail.lineTo(6, -1);
  painter.drawPath(nail);
  painter.restore();
}

// The upper left corner of the frame; `light` makes it blue and lets it snap to its place.
void drawCorner(QPainter& painter, double light) {
  constexpr double kLength = 20;
  constexpr double kRadius = 12;
  const double away = light > 0 ? 4 * (1 - light) : 0;
  const double x = -kCardWidth / 2 - kMargin - away;
  const double y = -kCardHeight / 2 - kMargin - away;
  QPainterPath corner(QPointF(x, y + kRadius + kLength));
  corner.lineTo(x, y + kRadius);
  corner.quadTo(x, y, x + kRadius, y);
  corner.lineTo(x + kRadius + kLength, y);
  setLines(painter, light > 0 ? kBlue : kInk, light > 0 ? 4 : kLine);
  painter.drawPath(corner);
}

}  // namespace

Animation::Format CardAnimation::format() const {
  return {kWidth,
          kHeight,
          kTint,
          {{kInk, kTint},
           {kInk, kGround},
           {kInk, kDeepTint},
           {kTint, kGround},
           {kDeepTint, kGround},
           {kDeepTint, kTint},
           {kBlue, kTint},
           {kBlue, kGround},
           {kBlue, kInk}}};
}

std::size_t CardAnimation::frameCount() const {
  return kFrames;
}

int CardAnimation::delay(std::size_t frame) const {
  if (frame == 0) return 500;
  if (frame == kAway) return 150;
  return frame < kBack ? 15 : 10;
}

void CardAnimation::draw(QPainter& painter, std::size_t frame) const {
  const double away = distance(frame);
  painter.translate(kWidth / 2.0, 80);
  const auto drawFrame = [&] {
    for (int corner = 0; corner < 4; ++corner) {
      painter.save();
      painter.scale(corner == 1 || corner == 2 ? -1 : 1, corner > 1 ? -1 : 1);
      drawCorner(painter, light(frame, corner));
      painter.restore();
    }
  };
  const bool isPage = side_ == DocumentSide::photoPage;
  if (!isPage) drawFrame();
  painter.save();
  painter.translate(22 * away, 10 * away);
  painter.rotate(9 * away);
  drawPalm(painter);
  drawDocument(painter, side_, away);
  drawThumb(painter);
  painter.restore();
  // Over the opposite page, which reaches out of the frame.
  if (isPage) drawFrame();
}

}  // namespace kestrova::artwork
