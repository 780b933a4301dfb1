#include "artwork/RoundFlag.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QStringBuilder>
#include <QtGui/QPaintDevice>
#include <QtGui/QPaintEngine>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtSvg/QSvgRenderer>

namespace kestrova::artwork {

namespace {

constexpr int kSide = 512;
constexpr double kRadius = kSide / 2.0;

struct Area {
  QPainterPath path;
  QColor color;
};

// Keeps what is painted instead of painting it.
class AreaEngine : public QPaintEngine {
 public:
  explicit AreaEngine(std::vector<Area>& areas) : QPaintEngine(AllFeatures), areas_(areas) {}

  bool begin(QPaintDevice* /*device*/) override { return true; }
  bool end() override { return true; }
  Type type() const override { return User; }
  void drawPixmap(const QRectF& /*to*/, const QPixmap& /*map*/, const QRectF& /*from*/) override {
    refuse();
  }

  void updateState(const QPaintEngineState& now) override {
    transform_ = now.transform();
    pen_ = now.pen();
    brush_ = now.brush();
    opacity_ = now.opacity();
  }

  void drawPath(const QPainterPath& path) override {
    if (pen_.style() != Qt::NoPen || opacity_ != 1) refuse();
    if (brush_.style() == Qt::NoBrush) return;
    if (brush_.style() != Qt::SolidPattern || brush_.color().alpha() != 255) refuse();
    areas_.push_back({transform_.map(path), brush_.color()});
  }

  void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override {
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points, points + count)));
    if (mode == OddEvenMode) path.setFillRule(Qt::OddEvenFill);
    if (mode == WindingMode || mode == ConvexMode) path.setFillRule(Qt::WindingFill);
    if (mode == PolylineMode) refuse();
    drawPath(path);
  }

  bool hasRefused() const { return hasRefused_; }

 private:
  // Exceptions may not pass through the renderer.
  void refuse() { hasRefused_ = true; }

  std::vector<Area>& areas_;
  QTransform transform_;
  QPen pen_;
  QBrush brush_;
  double opacity_ = 1;
  bool hasRefused_ = false;
};

class AreaDevice : public QPaintDevice {
 public:
  QPaintEngine* paintEngine() const override { return &engine_; }
  bool hasRefused() const { return engine_.hasRefused(); }
  const std::vector<Area>& areas() const { return areas_; }

 protected:
  int metric(PaintDeviceMetric metric) const override {
    if (metric == PdmWidth || metric == PdmHeight) return kSide;
    if (metric == PdmDevicePixelRatio) return 1;
    if (metric == PdmDevicePixelRatioScaled) return static_cast<int>(devicePixelRatioFScale());
    return metric == PdmDepth ? 32 : 72;
  }

 private:
  std::vector<Area> areas_;
  mutable AreaEngine engine_{areas_};
};

// The part within the circle; a path that lies within is left as it is.
QPainterPath cut(const QPainterPath& path) {
  const QRectF box = path.controlPointRect().translated(-kRadius, -kRadius);
  const double farthest = std::hypot(std::max(std::abs(box.left()), std::abs(box.right())),
                                     std::max(std::abs(box.top()), std::abs(box.bottom())));
  if (farthest <= kRadius) return path;
  QPainterPath circle;
  circle.addEllipse(QRectF(0, 0, kSide, kSide));
  return path.intersected(circle);
}

QString data(const QPainterPath& path) {
  QString text;
  const auto put = [&text](QStringView command, const QPainterPath::Element& to) {
    const auto number = [](double value) {
      return QString::number(std::round(value * 10) / 10, 'g', 6);
    };
    text += command % number(to.x) % u' ' % number(to.y);
  };
  for (int i = 0; i < path.elementCount(); ++i) {
    const auto element = path.elementAt(i);
    if (element.isMoveTo()) put(i == 0 ? u"M" : u"ZM", element);
    if (element.isLineTo()) put(u"L", element);
    if (element.isCurveTo()) put(u"C", element);
    if (element.type == QPainterPath::CurveToDataElement) put(u" ", element);
  }
  return text + u'Z';
}

// Without the circle in its mask, which Qt would paint as a part of the flag.
QByteArray withoutMask(const std::string& source) {
  QFile file(QString::fromStdString(source));
  if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("cannot read " + source);
  const QByteArray text = file.readAll();
  const QByteArray endTag("</mask>");
  const auto begin = text.indexOf("<mask");
  const auto end = text.indexOf(endTag, begin);
  if (begin < 0 || end < 0) throw std::runtime_error("no mask in " + source);
  return text.left(begin) + text.mid(end + endTag.size());
}

}  // namespace

std::string roundFlag(const std::string& source) {
  QSvgRenderer renderer(withoutMask(source));
  if (!renderer.isValid()) throw std::runtime_error("no SVG drawing: " + source);
  AreaDevice device;
  QPainter painter(&device);
  renderer.render(&painter, QRectF(0, 0, kSide, kSide));
  painter.end();
  if (device.hasRefused()) throw std::runtime_error("not of plain areas alone: " + source);
  QString text = QStringLiteral(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"512\" height=\"512\""
      " viewBox=\"0 0 512 512\">");
  for (const Area& area : device.areas()) {
    const QPainterPath path = cut(area.path);
    if (path.isEmpty()) continue;
    text += QStringLiteral("<path fill=\"") % area.color.name();
    if (path.fillRule() == Qt::OddEvenFill) text += QStringLiteral("\" fill-rule=\"evenodd");
    text += QStringLiteral("\" d=\"") % data(path) % QStringLiteral("\"/>");
  }
  return (text + QStringLiteral("</svg>\n")).toStdString();
}

}  // namespace kestrova::artwork
