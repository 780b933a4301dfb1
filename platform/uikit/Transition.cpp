#include "platform/uikit/Transition.h"

#include <cmath>
#include <vector>

#include <QtCore/QPointer>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>
#include <QtWidgets/QWidget>

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/HostStyle.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

namespace {

bool wantsLessMotion() {
  return QApplication::style()->styleHint(QStyle::SH_Widget_Animation_Duration) == 0;
}

double durationOf(Transition::Kind kind) {
  switch (kind) {
    case Transition::Kind::push:
    case Transition::Kind::pop:
      return Transition::kPushDuration;
    case Transition::Kind::rise:
    case Transition::Kind::sink:
      return Transition::kSheetDuration;
    default:
      return Transition::kFadeDuration;
  }
}

// Fast first, then slower.
double easedOut(double share) {
  return 1 - std::pow(1 - share, 3);
}

}  // namespace

struct Snapshot::Picture {
  QPixmap pixmap;
};

// As many as one motion needs.
struct SnapshotMemory::Pictures {
  static constexpr std::size_t kMost = 2;
  std::vector<QPixmap> pixmaps;
};

SnapshotMemory::SnapshotMemory() : spare_(std::make_unique<Pictures>()) {}
SnapshotMemory::~SnapshotMemory() = default;

Snapshot::Snapshot() : picture_(std::make_unique<Picture>()) {}

Snapshot::~Snapshot() {
  const auto memory = memory_.lock();
  if (!memory || picture_->pixmap.isNull()) return;
  auto& pixmaps = memory->spare_->pixmaps;
  if (pixmaps.size() < SnapshotMemory::Pictures::kMost) {
    pixmaps.push_back(std::move(picture_->pixmap));
  }
}

namespace {

void render(QWidget& widget, const CGRect& rect, Qt::GlobalColor ground, QPixmap& pixmap) {
  const QRect area = QRectF(rect.minX(), rect.minY(), rect.size.width, rect.size.height).toRect();
  const QSize size = area.size() * widget.devicePixelRatioF();
  if (pixmap.size() != size) pixmap = QPixmap(size);
  pixmap.setDevicePixelRatio(widget.devicePixelRatioF());
  pixmap.fill(ground);
  widget.render(&pixmap, {}, area, QWidget::DrawChildren);
}

}  // namespace

std::shared_ptr<const Snapshot> Snapshot::of(const UIView& view, const CGRect& rect) {
  auto snapshot = std::make_shared<Snapshot>();
  if (view.widget()) render(*view.widget(), rect, Qt::transparent, snapshot->picture_->pixmap);
  return snapshot;
}

std::shared_ptr<const Snapshot> Snapshot::opaque(const UIView& view, const CGRect& rect,
                                                 const std::shared_ptr<SnapshotMemory>& memory) {
  auto snapshot = std::make_shared<Snapshot>();
  auto& pixmap = snapshot->picture_->pixmap;
  if (memory && !memory->spare_->pixmaps.empty()) {
    pixmap = std::move(memory->spare_->pixmaps.back());
    memory->spare_->pixmaps.pop_back();
  }
  snapshot->memory_ = memory;
  if (view.widget()) render(*view.widget(), rect, Qt::white, pixmap);
  return snapshot;
}

class Transition::Cover : public QWidget {
 public:
  Cover(QWidget& over, QRect rect, double cornerRadius, Kind kind,
        std::shared_ptr<const Snapshot> from, std::shared_ptr<const Snapshot> to)
      : QWidget(&over), kind_(kind), from_(std::move(from)), to_(std::move(to)) {
    setGeometry(rect);
    // Nothing below shows: a push and a pop draw every pixel.
    setAttribute(Qt::WA_OpaquePaintEvent,
                 cornerRadius <= 0 && (kind == Kind::push || kind == Kind::pop));
    if (cornerRadius > 0) shape_.addRoundedRect(QRectF(this->rect()), cornerRadius, cornerRadius);
    raise();
    show();
  }

  void setShare(double share) {
    share_ = share;
    update();
  }

 protected:
  bool event(QEvent* event) override {
    return withoutHostStyle(*this, *event, [this, event] { return QWidget::event(event); });
  }

  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    if (!shape_.isEmpty()) {
      painter.setRenderHint(QPainter::Antialiasing);
      painter.setClipPath(shape_);
    }
    const double width = this->width();
    const double height = this->height();
    switch (kind_) {
      case Kind::push:
        draw(painter, from_, {-width / 3 * share_, 0}, 1);
        draw(painter, to_, {width * (1 - share_), 0}, 1);
        break;
      case Kind::pop:
        draw(painter, to_, {-width / 3 * (1 - share_), 0}, 1);
        draw(painter, from_, {width * share_, 0}, 1);
        break;
      case Kind::rise:
        draw(painter, to_, {0, height * (1 - share_)}, 1);
        break;
      case Kind::sink:
        draw(painter, from_, {0, height * share_}, 1);
        break;
      case Kind::fadeIn:
        draw(painter, from_, {}, 1);
        draw(painter, to_, {}, share_);
        break;
      case Kind::fadeOut:
        draw(painter, to_, {}, 1);
        draw(painter, from_, {}, 1 - share_);
        break;
    }
  }

  // Nothing goes through to the screens below.
  void mousePressEvent(QMouseEvent* event) override { event->accept(); }
  void mouseReleaseEvent(QMouseEvent* event) override { event->accept(); }
  void mouseDoubleClickEvent(QMouseEvent* event) override { event->accept(); }

 private:
  static void draw(QPainter& painter, const std::shared_ptr<const Snapshot>& snapshot, QPointF at,
                   double opacity) {
    if (!snapshot) return;
    painter.setOpacity(opacity);
    painter.drawPixmap(at, snapshot->picture().pixmap);
  }

  Kind kind_;
  std::shared_ptr<const Snapshot> from_;
  std::shared_ptr<const Snapshot> to_;
  QPainterPath shape_;
  double share_ = 0;
};

// The toolkit deletes the cover with the widget it lies on.
struct Transition::Owned {
  Owned() = default;
  ~Owned() { end(); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;

  void end() { const std::unique_ptr<Cover> last(cover); }

  QPointer<Cover> cover;
};

Transition::Transition() : owned_(std::make_unique<Owned>()) {}

std::shared_ptr<Transition> Transition::run(UIView& over, const CGRect& rect, double cornerRadius,
                                            Kind kind, std::shared_ptr<const Snapshot> from,
                                            std::shared_ptr<const Snapshot> to,
                                            std::function<void(double)> step,
                                            std::function<void()> completion) {
  if (wantsLessMotion()) {
    const bool leaves = kind == Kind::sink || kind == Kind::pop || kind == Kind::fadeOut;
    kind = leaves ? Kind::fadeOut : Kind::fadeIn;
  }
  std::shared_ptr<Transition> transition(new Transition);
  transition->completion_ = std::move(completion);
  const QRect place = QRectF(rect.minX(), rect.minY(), rect.size.width, rect.size.height).toRect();
  transition->owned_->cover = std::make_unique<Cover>(*over.widget(), place, cornerRadius, kind,
                                                      std::move(from), std::move(to))
                                  .release();
  if (step) step(0);
  const double duration = durationOf(kind);
  const double start = AnimationClock::shared().now();
  transition->motion_ =
      AnimationClock::shared().run(start + AnimationClock::kFrame,
                                   [weak = std::weak_ptr<Transition>(transition), start, duration,
                                    step = std::move(step)](double now) -> std::optional<double> {
                                     const auto alive = weak.lock();
                                     if (!alive) return std::nullopt;
                                     const double share = std::min((now - start) / duration, 1.0);
                                     if (share < 1) {
                                       if (alive->owned_->cover)
                                         alive->owned_->cover->setShare(easedOut(share));
                                       if (step) step(easedOut(share));
                                       return now + AnimationClock::kFrame;
                                     }
                                     if (step) step(1);
                                     alive->finish();
                                     return std::nullopt;
                                   });
  return transition;
}

Transition::~Transition() = default;

void Transition::finish() {
  owned_->end();
  motion_.reset();
  if (const auto completion = std::exchange(completion_, nullptr)) completion();
}

}  // namespace kestrova::platform
