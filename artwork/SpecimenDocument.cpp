#include "artwork/SpecimenDocument.h"

#include <cmath>

#include <QtGui/QFont>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "artwork/Head.h"
#include "artwork/Strokes.h"

namespace kestrova::artwork {

namespace {

constexpr double kRadius = 34;
constexpr double kMargin = 56;
constexpr double kBand = 108;

QFont font(const QString& family, int pixels, QFont::Weight weight, double spacing = 0) {
  QFont font(family);
  font.setPixelSize(pixels);
  font.setWeight(weight);
  font.setLetterSpacing(QFont::AbsoluteSpacing, spacing);
  return font;
}

// The fine waves of security printing.
void drawWaves(QPainter& painter, const QRectF& area, QColor color) {
  constexpr double kApart = 15;
  constexpr double kStep = 12;
  color.setAlphaF(0.16F);
  painter.setPen(QPen(color, 1.6));
  painter.setBrush(Qt::NoBrush);
  for (double y = area.top(); y < area.bottom() + 40; y += kApart) {
    QPainterPath wave(QPointF(area.left(), y));
    for (double x = area.left(); x <= area.right(); x += kStep) {
      wave.lineTo(x, y + 17 * std::sin(x / 92 + y / 61) + 7 * std::sin(x / 37 - y / 83));
    }
    painter.drawPath(wave);
  }
}

void drawPhoto(QPainter& painter, const QRectF& place) {
  painter.save();
  QPainterPath frame;
  frame.addRoundedRect(place, 14, 14);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor::fromRgb(kTint));
  painter.drawPath(frame);
  painter.setClipPath(frame);
  painter.translate(place.center() + QPointF(0, -0.06 * place.height()));
  const double scale = place.width() / 150;
  painter.scale(scale, scale);
  drawHead(painter, 0);
  painter.restore();
}

void drawMark(QPainter& painter, const QRectF& area, const QString& family) {
  painter.save();
  painter.translate(area.center());
  painter.rotate(-std::atan2(area.height(), area.width()) * 180 / M_PI * 0.72);
  painter.setFont(font(family, 168, QFont::Black, 26));
  painter.setPen(QColor(0xB4, 0x23, 0x18, 74));
  painter.drawText(QRectF(-900, -150, 1800, 300), Qt::AlignCenter, "SPECIMEN");
  painter.restore();
}

}  // namespace

void drawSpecimen(QPainter& painter, const SpecimenDocument& document,
                  const std::string& typeface) {
  const QString family = QString::fromStdString(typeface);
  const QRectF area(-document.width / 2, -document.height / 2, document.width, document.height);
  const QColor band = QColor::fromRgb(document.band);
  painter.save();
  // The shadow on the desk.
  painter.setPen(Qt::NoPen);
  for (int ring = 14; ring > 0; --ring) {
    painter.setBrush(QColor(0x10, 0x18, 0x28, 5));
    painter.drawRoundedRect(area.translated(0, 10).adjusted(-ring, -ring, ring, ring),
                            kRadius + ring, kRadius + ring);
  }
  QPainterPath card;
  card.addRoundedRect(area, kRadius, kRadius);
  painter.fillPath(card, QColor::fromRgb(document.ground));
  painter.setClipPath(card);
  drawWaves(painter, area, band);
  painter.fillRect(QRectF(area.topLeft(), QSizeF(area.width(), kBand)), band);

  painter.setPen(Qt::white);
  const QRectF head(area.left() + kMargin, area.top(), area.width() - 2 * kMargin, kBand);
  painter.setFont(font(family, 40, QFont::Bold, 2));
  painter.drawText(head, Qt::AlignLeft | Qt::AlignVCenter, document.title);
  painter.setFont(font(family, 34, QFont::Medium, 1));
  painter.drawText(head, Qt::AlignRight | Qt::AlignVCenter, document.kind);

  constexpr double kPhotoWidth = 300;
  constexpr double kPhotoHeight = 386;
  double left = area.left() + kMargin;
  const double top = area.top() + kBand + 44;
  if (document.hasPortrait) {
    drawPhoto(painter, {left, top, kPhotoWidth, kPhotoHeight});
    left += kPhotoWidth + 52;
  }
  constexpr double kRow = 96;
  const double column = (area.right() - kMargin - left) / 2;
  for (std::size_t index = 0; index < document.fields.size(); ++index) {
    const QRectF place(left + double(index % 2) * column, top + double(index / 2) * kRow,
                       column - 16, kRow);
    painter.setFont(font(family, 24, QFont::Medium));
    painter.setPen(QColor(0x66, 0x70, 0x85));
    painter.drawText(place, Qt::AlignLeft | Qt::AlignTop, document.fields[index].label);
    painter.setFont(font(family, 36, QFont::DemiBold));
    painter.setPen(QColor::fromRgb(kInk));
    painter.drawText(place.adjusted(0, 30, 0, 0), Qt::AlignLeft | Qt::AlignTop,
                     document.fields[index].value);
  }

  constexpr double kMachineRow = 58;
  const double machine = double(document.machineLines.size()) * kMachineRow;
  QFont letters("monospace");
  letters.setStyleHint(QFont::Monospace);
  letters.setPixelSize(44);
  painter.setFont(letters);
  painter.setPen(QColor::fromRgb(kInk));
  double y = area.bottom() - machine - 26;
  if (machine > 0) {
    painter.fillRect(QRectF(area.left(), y - 14, area.width(), machine + 60),
                     QColor(255, 255, 255, 190));
  }
  for (const char* line : document.machineLines) {
    // Stretched to the document's width, whatever the typeface of one width is.
    painter.save();
    const double wide = QFontMetricsF(letters).horizontalAdvance(line);
    painter.translate(area.left() + kMargin, y);
    painter.scale((area.width() - 2 * kMargin) / wide, 1);
    painter.drawText(QRectF(0, 0, wide + 20, kMachineRow), Qt::AlignLeft | Qt::AlignVCenter, line);
    painter.restore();
    y += kMachineRow;
  }
  drawMark(painter, area, family);
  painter.restore();
}

}  // namespace kestrova::artwork
