#include "platform/uikit/Canvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "platform/graphics/QtBridge.h"
#include "platform/graphics/UIImage.h"
#include "platform/uikit/NativePainter.h"
#include "platform/uikit/UIBezierPath.h"

namespace kestrova::platform {

namespace {

QRectF native(const CGRect& rect) {
  return {rect.minX(), rect.minY(), rect.size.width, rect.size.height};
}

QPointF native(CGPoint point) {
  return {point.x, point.y};
}

// A radius larger than half a side makes that side round.
double fitting(double radius, const CGRect& rect) {
  return std::clamp(radius, 0.0, std::min(rect.size.width, rect.size.height) / 2);
}

QPainterPath native(const CGPath& path) {
  QPainterPath result;
  for (const auto& element : path.elements()) {
    if (const auto* move = std::get_if<CGPath::Move>(&element)) result.moveTo(native(move->to));
    if (const auto* line = std::get_if<CGPath::Line>(&element)) result.lineTo(native(line->to));
    if (const auto* ellipse = std::get_if<CGPath::Ellipse>(&element)) {
      const QRectF rect = native(ellipse->rect);
      result.arcMoveTo(rect, 90);
      result.arcTo(rect, 90, -360);
    }
  }
  return result;
}

// The first `end` of the path's length, as short lines: the toolkit takes much longer to cut
// curves.
QPainterPath first(const QPainterPath& path, double end) {
  if (end >= 1) return path;
  constexpr double kFiner = 8;
  const auto lines = path.toSubpathPolygons(QTransform::fromScale(kFiner, kFiner));
  double left = 0;
  for (const auto& line : lines) {
    for (qsizetype at = 1; at < line.size(); ++at) left += QLineF(line[at - 1], line[at]).length();
  }
  left *= end;
  QPainterPath part;
  for (const auto& line : lines) {
    if (left <= 0) break;
    part.moveTo(line.first() / kFiner);
    for (qsizetype at = 1; at < line.size() && left > 0; ++at) {
      const QLineF step(line[at - 1], line[at]);
      const double length = step.length();
      part.lineTo((length > left ? step.pointAt(left / length) : step.p2()) / kFiner);
      left -= length;
    }
  }
  return part;
}

}  // namespace

void Canvas::fill(const CGRect& rect, const UIColor& color, double cornerRadius) {
  QPainter& painter = painter_.painter;
  if (cornerRadius <= 0) {
    painter.fillRect(native(rect), QtBridge::color(color));
    return;
  }
  const double radius = fitting(cornerRadius, rect);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QtBridge::color(color));
  painter.drawRoundedRect(native(rect), radius, radius);
}

void Canvas::stroke(const CGRect& rect, const UIColor& color, double lineWidth,
                    double cornerRadius) {
  QPainter& painter = painter_.painter;
  const CGRect line = rect.insetBy(lineWidth / 2, lineWidth / 2);
  const double radius = fitting(cornerRadius - lineWidth / 2, line);
  QPen pen(QtBridge::color(color), lineWidth);
  pen.setJoinStyle(Qt::MiterJoin);
  painter.setPen(pen);
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(native(line), radius, radius);
}

void Canvas::fillGradient(const CGRect& rect, const std::vector<UIColor>& colors,
                          double cornerRadius) {
  if (colors.empty()) return;
  if (colors.size() == 1) return fill(rect, colors.front(), cornerRadius);
  QLinearGradient gradient(rect.minX(), rect.minY(), rect.minX(), rect.maxY());
  for (std::size_t index = 0; index < colors.size(); ++index) {
    gradient.setColorAt(double(index) / double(colors.size() - 1), QtBridge::color(colors[index]));
  }
  const double radius = fitting(cornerRadius, rect);
  painter_.painter.setPen(Qt::NoPen);
  painter_.painter.setBrush(gradient);
  painter_.painter.drawRoundedRect(native(rect), radius, radius);
}

void Canvas::fill(const CGPath& path, const UIColor& color) {
  painter_.painter.setPen(Qt::NoPen);
  painter_.painter.setBrush(QtBridge::color(color));
  painter_.painter.drawPath(native(path));
}

void Canvas::stroke(const CGPath& path, const UIColor& color, double lineWidth, double end) {
  const QPen pen(QtBridge::color(color), lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
  painter_.painter.setPen(pen);
  painter_.painter.setBrush(Qt::NoBrush);
  painter_.painter.drawPath(first(native(path), end));
}

void Canvas::draw(const UIImage& image, const CGRect& rect) {
  QtBridge::paint(image, painter_.painter, rect);
}

void Canvas::draw(const NSLayoutManager& text, CGPoint origin) {
  QtBridge::paint(text, painter_.painter, origin);
}

void Canvas::shadow(const CGRect& rect, double cornerRadius, double blur, const UIColor& color) {
  // Rings that get fainter outwards, as a blur would make them.
  QPainter& painter = painter_.painter;
  const int rings = std::max(1, int(std::ceil(blur)));
  painter.save();
  QPainterPath outside;
  outside.addRect(native(rect.insetBy(-2 * blur, -2 * blur)));
  QPainterPath inside;
  inside.addRoundedRect(native(rect), cornerRadius, cornerRadius);
  painter.setClipPath(outside.subtracted(inside));
  painter.setPen(Qt::NoPen);
  for (int ring = rings; ring > 0; --ring) {
    const double grow = blur * ring / rings;
    painter.setBrush(QtBridge::color(color.withAlphaComponent(color.alphaComponent() * 2.0 / rings *
                                                              (1 - (ring - 0.5) / rings))));
    painter.drawRoundedRect(native(rect.insetBy(-grow, -grow)), cornerRadius + grow,
                            cornerRadius + grow);
  }
  painter.restore();
}

void Canvas::save() {
  painter_.painter.save();
}

void Canvas::restore() {
  painter_.painter.restore();
}

void Canvas::translate(double x, double y) {
  painter_.painter.translate(x, y);
}

void Canvas::rotate(double radians, CGPoint center) {
  painter_.painter.translate(center.x, center.y);
  painter_.painter.rotate(radians * 180 / std::numbers::pi);
  painter_.painter.translate(-center.x, -center.y);
}

void Canvas::clip(const CGRect& rect, double cornerRadius) {
  if (cornerRadius <= 0) {
    painter_.painter.setClipRect(native(rect), Qt::IntersectClip);
    return;
  }
  const double radius = fitting(cornerRadius, rect);
  QPainterPath path;
  path.addRoundedRect(native(rect), radius, radius);
  painter_.painter.setClipPath(path, Qt::IntersectClip);
}

void Canvas::setOpacity(double opacity) {
  painter_.painter.setOpacity(painter_.painter.opacity() * opacity);
}

}  // namespace kestrova::platform
