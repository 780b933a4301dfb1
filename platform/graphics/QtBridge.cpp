#include "platform/graphics/QtBridge.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>

#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QRawFont>

#include "platform/graphics/CTFontManager.h"
#include "platform/graphics/UIColor.h"
#include "platform/graphics/UIFont.h"
#include "platform/graphics/UIImage.h"

namespace kestrova::platform {

namespace {

// How Qt finds a face that it was given.
struct Face {
  QString family;
  QString style;
  int weight = QFont::Normal;
};

// The faces that the running application knows; those of an earlier one are lost with it.
std::map<std::string, Face>& faces() {
  static std::map<std::string, Face> known;
  return known;
}

const Face* registeredFace(const std::string& name) {
  auto& known = faces();
  if (known.empty()) qAddPostRoutine([] { faces().clear(); });
  const auto found = known.find(name);
  if (found != known.end()) return &found->second;
  const auto font = registeredFont(name);
  if (!font) return nullptr;
  const QByteArray file(font->file().data(), static_cast<qsizetype>(font->file().size()));
  if (QFontDatabase::addApplicationFontFromData(file) < 0) return nullptr;
  constexpr double kAnySize = 12;
  const QRawFont raw(file, kAnySize);
  return &known.try_emplace(name, Face{raw.familyName(), raw.styleName(), raw.weight()})
              .first->second;
}

// Between the anchors by proportion.
QFont::Weight qtWeight(double weight) {
  struct Anchor {
    double weight;
    double qt;
  };
  constexpr std::array<Anchor, 9> kAnchors{{{-0.8, 100},
                                            {-0.6, 200},
                                            {-0.4, 300},
                                            {0, 400},
                                            {0.23, 500},
                                            {0.3, 600},
                                            {0.4, 700},
                                            {0.56, 800},
                                            {0.62, 900}}};
  if (!(weight > kAnchors.front().weight)) return QFont::Thin;
  const auto* const above = std::ranges::find_if(
      kAnchors, [weight](const Anchor& anchor) { return anchor.weight >= weight; });
  if (above == kAnchors.end()) return QFont::Black;
  const auto& below = *(above - 1);
  const double part = (weight - below.weight) / (above->weight - below.weight);
  return static_cast<QFont::Weight>(std::lround(below.qt + part * (above->qt - below.qt)));
}

QImage asQImage(const CGImage& image) {
  return {reinterpret_cast<const uchar*>(image.pixels().data()), static_cast<int>(image.width()),
          static_cast<int>(image.height()), QImage::Format_ARGB32_Premultiplied};
}

}  // namespace

QColor QtBridge::color(const UIColor& color) {
  const auto shown = color.sRGB();
  return QColor::fromRgbF(
      static_cast<float>(shown.redComponent()), static_cast<float>(shown.greenComponent()),
      static_cast<float>(shown.blueComponent()), static_cast<float>(shown.alphaComponent()));
}

QFont QtBridge::font(const UIFont& font) {
  QFont result;
  const auto* const face = font.fontName().empty() ? nullptr : registeredFace(font.fontName());
  if (face) {
    result = QFont(face->family);
    result.setStyleName(face->style);
    result.setWeight(static_cast<QFont::Weight>(face->weight));
  } else {
    // Not the application's font, which a host may have replaced.
    result = QFont(QFontDatabase::systemFont(QFontDatabase::GeneralFont).families());
    result.setWeight(qtWeight(font.weight()));
  }
  constexpr double kMaximumSize = 10'000;
  result.setPixelSize(
      static_cast<int>(std::lround(std::clamp(font.pointSize(), 1.0, kMaximumSize))));
  result.setHintingPreference(QFont::PreferNoHinting);
  return result;
}

void QtBridge::paint(const UIImage& image, QPainter& painter, const CGRect& rect) {
  const QRectF place(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
  const auto transform = painter.deviceTransform();
  const auto device = transform.mapRect(place);
  const double left = std::round(device.left());
  const double top = std::round(device.top());
  const double width = std::round(device.right()) - left;
  const double height = std::round(device.bottom()) - top;
  if (!(width >= 1 && height >= 1 &&
        CGImage::isAllowed(static_cast<std::size_t>(width), static_cast<std::size_t>(height))))
    return;
  // Small bitmaps, animations among them, are made larger as they are drawn: smooth, and in less
  // time than a rendition.
  const auto bitmap = image.uprightBitmap();
  if (bitmap && double(bitmap->width()) < width && double(bitmap->height()) < height) {
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, asQImage(*bitmap));
    painter.restore();
    return;
  }
  const auto pixels =
      image.rendition(static_cast<std::size_t>(width), static_cast<std::size_t>(height));
  if (!pixels) return;
  auto picture = asQImage(*pixels.value());
  painter.save();
  if (transform.type() <= QTransform::TxScale) {
    // In the device's pixels: besides its own transform a painter may have that of a widget.
    painter.setTransform(transform.inverted() * painter.transform());
    painter.drawImage(QPointF(left, top), picture);
  } else {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, picture);
  }
  painter.restore();
}

}  // namespace kestrova::platform
