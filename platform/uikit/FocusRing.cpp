#include "platform/uikit/FocusRing.h"

#include <QtCore/QPointer>
#include <QtGui/QFocusEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "platform/uikit/HostStyle.h"
#include "platform/uikit/UIView.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

constexpr int kGap = 2;
constexpr int kLine = 2;
const QColor kBlue = QColor::fromRgbF(0.0F, 0.34F, 1.0F);

// The view that the focused widget stands for: its own, or that of the nearest widget above.
std::shared_ptr<UIView> focusedView(const QWidget& window) {
  for (QWidget* widget = QApplication::focusWidget(); widget; widget = widget->parentWidget()) {
    if (!window.isAncestorOf(widget)) return nullptr;
    if (auto view = UIView::of(widget)) return view;
  }
  return nullptr;
}

enum class Input { none, keyboard, pointer };
Input lastInput = Input::none;
int rings = 0;

bool byKeyboard(Qt::FocusReason reason) {
  return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
         reason == Qt::ShortcutFocusReason;
}

}  // namespace

// A widget over all views that lets everything through.
class FocusRing::Ring : public QWidget {
 public:
  explicit Ring(UIWindow& window) : QWidget(window.widget()), window_(window.widget()) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    setVisible(false);
    qApp->installEventFilter(this);
    ++rings;
  }
  Ring(const Ring&) = delete;
  Ring& operator=(const Ring&) = delete;
  // Without a ring nothing observes the input.
  ~Ring() override {
    if (--rings == 0) lastInput = Input::none;
  }

  bool eventFilter(QObject* object, QEvent* event) override {
    switch (event->type()) {
      case QEvent::KeyPress:
        lastInput = Input::keyboard;
        break;
      case QEvent::FocusIn: {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        // Focus that returns from another window or a menu leaves the ring unchanged.
        const bool returns =
            reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
        if (!returns) isWanted_ = lastInput != Input::pointer && byKeyboard(reason);
        later();
        break;
      }
      case QEvent::FocusOut:
        later();
        break;
      case QEvent::MouseButtonPress:
      case QEvent::TouchBegin:
        lastInput = Input::pointer;
        isWanted_ = false;
        if (isVisible()) later();
        break;
      case QEvent::Move:
      case QEvent::Resize:
      case QEvent::Hide:
        if (isVisible() && object != this) later();
        break;
      default:
        break;
    }
    return false;
  }

 protected:
  bool event(QEvent* event) override {
    if (event->type() == QEvent::User) follow();
    return withoutHostStyle(*this, *event, [this, event] { return QWidget::event(event); });
  }

  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kBlue, kLine));
    const double half = kLine / 2.0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), radius_, radius_);
  }

 private:
  // After the event that moves things.
  void later() {
    QCoreApplication::postEvent(this, std::make_unique<QEvent>(QEvent::User).release());
  }

  void follow() {
    const auto view = isWanted_ && window_ ? focusedView(*window_) : nullptr;
    if (!view || !view->widget()->isVisible()) return hide();
    const CGRect shape = view->focusRect();
    if (shape.size == CGSize{}) return hide();
    const CGPoint origin = view->convert(shape.origin, nullptr);
    const int margin = kGap + kLine;
    const double most = std::min(shape.size.width, shape.size.height) / 2;
    const QRect around = QRectF(origin.x, origin.y, shape.size.width, shape.size.height)
                             .toRect()
                             .adjusted(-margin, -margin, margin, margin);
    // A view that fills its window, as in a host's form, has the ring on its edge.
    const QRect seen = around & window_->rect();
    const double half = kLine / 2.0;
    radius_ = std::min(view->layer().cornerRadius(), most) + (seen == around ? kGap + half : -half);
    setGeometry(seen);
    show();
    raise();
    update();
  }

  QPointer<QWidget> window_;
  bool isWanted_ = false;
  double radius_ = 0;
};

// The toolkit deletes the ring with the window's widget.
struct FocusRing::Owned {
  explicit Owned(UIWindow& window) : ring(std::make_unique<Ring>(window).release()) {}
  ~Owned() { const std::unique_ptr<Ring> last(ring); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;

  QPointer<Ring> ring;
};

FocusRing::FocusRing(UIWindow& window) : owned_(std::make_unique<Owned>(window)) {}

FocusRing::~FocusRing() = default;

bool FocusRing::isKeyboardInUse() {
  return lastInput == Input::keyboard;
}

}  // namespace kestrova::platform
