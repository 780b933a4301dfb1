#include "platform/uikit/ScrollIndicator.h"

#include <algorithm>

#include <QtCore/QPointer>
#include <QtGui/QPainter>
#include <QtWidgets/QWidget>

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/HostStyle.h"

namespace kestrova::platform {

namespace {

constexpr double kThickness = 3;
constexpr double kMargin = 3;
constexpr double kShortest = 36;
// Seconds.
constexpr double kRest = 0.8;
constexpr double kFade = 0.25;
const QColor kInk = QColor(0x10, 0x18, 0x28, 0x66);

}  // namespace

class ScrollIndicator::Bar : public QWidget {
 public:
  explicit Bar(QWidget& scrollView) : QWidget(&scrollView) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
  }

  void appear(const QRect& place, bool stays) {
    opacity_ = 1;
    fade_.reset();
    setGeometry(place);
    show();
    raise();
    update();
    if (stays) return;
    auto& clock = AnimationClock::shared();
    const double start = clock.now() + kRest;
    fade_ = clock.run(start, [this, start](double now) -> std::optional<double> {
      opacity_ = 1 - (now - start) / kFade;
      if (opacity_ <= 0) {
        hide();
        return std::nullopt;
      }
      update();
      return now + AnimationClock::kFrame;
    });
  }

 protected:
  bool event(QEvent* event) override {
    return withoutHostStyle(*this, *event, [this, event] { return QWidget::event(event); });
  }

  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(std::min(1.0, opacity_));
    painter.setPen(Qt::NoPen);
    painter.setBrush(kInk);
    painter.drawRoundedRect(rect(), kThickness / 2, kThickness / 2);
  }

 private:
  double opacity_ = 0;
  AnimationClock::Token fade_;
};

// The toolkit deletes the bar with the scroll view's widget.
struct ScrollIndicator::Owned {
  QPointer<Bar> bar;
};

ScrollIndicator::ScrollIndicator(QWidget& scrollView) : owned_(std::make_unique<Owned>()) {
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the toolkit takes it over.
  owned_->bar = new Bar(scrollView);
}

ScrollIndicator::~ScrollIndicator() {
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): unless the toolkit was first.
  delete owned_->bar;
}

void ScrollIndicator::hide() {
  if (owned_->bar) owned_->bar->hide();
}

void ScrollIndicator::show(const CGRect& track, double above, double shown, bool stays) {
  const double way = track.size.height - 2 * kMargin;
  if (!owned_->bar || shown >= 1 || way < kShortest) return;
  const double length = std::max(kShortest, way * shown);
  const double y = track.minY() + kMargin + (way - length) * std::min(1.0, above / (1 - shown));
  owned_->bar->appear(QRectF(track.maxX() - kMargin - kThickness, y, kThickness, length).toRect(),
                      stays);
}

}  // namespace kestrova::platform
