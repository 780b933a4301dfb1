#include "platform/uikit/UIView.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLayout>
#include <QtWidgets/QWidget>

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/Canvas.h"
#include "platform/uikit/HostAccessibility.h"
#include "platform/uikit/HostStyle.h"
#include "platform/uikit/NSLayoutConstraint.h"
#include "platform/uikit/NativePainter.h"
#include "platform/uikit/TouchDispatcher.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIGestureRecognizer.h"
#include "platform/uikit/UIViewController.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

QRect onWholePoints(const CGRect& rect) {
  const auto whole = [](double length) { return int(std::lround(length)); };
  const QPoint start(whole(rect.minX()), whole(rect.minY()));
  return {start, QSize(whole(rect.maxX()) - start.x(), whole(rect.maxY()) - start.y())};
}

CGPoint operator+(CGPoint a, CGPoint b) {
  return {a.x + b.x, a.y + b.y};
}
CGPoint operator-(CGPoint a, CGPoint b) {
  return {a.x - b.x, a.y - b.y};
}

CGPoint point(const QPointF& point) {
  return {point.x(), point.y()};
}

std::string nameOf(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Space:
      return "Space";
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return "Return";
    case Qt::Key_Escape:
      return "Escape";
    case Qt::Key_Back:
      return "Back";
    case Qt::Key_Up:
      return "Up";
    case Qt::Key_Down:
      return "Down";
    case Qt::Key_PageUp:
      return "PageUp";
    case Qt::Key_PageDown:
      return "PageDown";
    case Qt::Key_Home:
      return "Home";
    case Qt::Key_End:
      return "End";
    case Qt::Key_Left:
      return event.modifiers() & Qt::AltModifier ? "Back" : "Left";
    case Qt::Key_Right:
      return "Right";
    default:
      return {};
  }
}

// Keys that must not repeat while held: activate, cancel, back.
constexpr std::array<std::string_view, 4> kPresses{"Space", "Return", "Escape", "Back"};

// Nothing goes through a window that covers the host to what lies below.
bool keepsKeys(const UIView* view) {
  const auto* const window = dynamic_cast<const UIWindow*>(view);
  return window && !window->isInsideForm();
}

// What an animation block has asked for.
struct Animation {
  double duration;
  std::vector<std::function<void(double)>> steps;
};

Animation* current = nullptr;

}  // namespace

// The toolkit's side of a view.
class UIView::Widget : public QWidget {
 public:
  explicit Widget(UIView& view) : view_(&view) { setFocusPolicy(Qt::NoFocus); }
  Widget(const Widget&) = delete;
  Widget& operator=(const Widget&) = delete;

  ~Widget() override {
    if (!view_) return;
    UIView& view = *std::exchange(view_, nullptr);
    const auto alive = view.weak_from_this().lock();
    view.widget_ = nullptr;
    // The toolkit deletes it with a host's window: the views below stay whole. What they are told
    // as they leave the screen may lead anywhere.
    const auto subviews = view.subviews_;
    for (const auto& subview : subviews) {
      if (subview->widget_ && subview->widget_->parentWidget() == this) {
        subview->widget_->moveTo(nullptr);
      }
    }
    view.widgetLost();
  }

  void forget() { view_ = nullptr; }
  UIView* view() const { return view_; }

  // Lengths that a constraint wants and that give way; -1 for none.
  QSize wish{-1, -1};

  // Remembers the limits of the size as our own: a host's style sheet may change them with each
  // move to another parent.
  void keepLimits() {
    least_ = minimumSize();
    most_ = maximumSize();
  }

  void moveTo(QWidget* parent) {
    keepLimits();
    for (QWidget* const below : findChildren<QWidget*>()) {
      if (auto* const ours = dynamic_cast<Widget*>(below)) ours->keepLimits();
    }
    setParent(parent);
  }

  QSize sizeHint() const override {
    return wished(layout() || !view_ ? QWidget::sizeHint() : fitting(-1));
  }
  QSize minimumSizeHint() const override {
    const QSize least =
        layout() || !view_ ? QWidget::minimumSizeHint() : QSize(0, fitting(-1).height());
    return {wish.width() < 0 ? least.width() : 0, wish.height() < 0 ? least.height() : 0};
  }
  bool hasHeightForWidth() const override {
    return layout() || !view_ ? QWidget::hasHeightForWidth() : view_->heightDependsOnWidth();
  }
  int heightForWidth(int width) const override {
    return layout() || !view_ ? QWidget::heightForWidth(width) : fitting(width).height();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (!view_) return;
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    NativePainter native{painter};
    Canvas canvas(native);
    view_->layer_->draw(canvas, view_->bounds().size, [&] { view_->draw(canvas); });
    const auto& clock = AnimationClock::shared();
    if (view_->layer_->isMoving()) view_->redrawAt(clock.now() + AnimationClock::kFrame);
  }

  void resizeEvent(QResizeEvent*) override {
    if (!view_) return;
    view_->needsLayout_ = true;
    view_->layoutPass();
  }

  bool event(QEvent* event) override {
    if (view_ && event->type() == QEvent::LayoutRequest) {
      // Without a layout of its own it is a view below that wants another size.
      if (!layout()) view_->needsLayout_ = true;
      view_->settleConstraints();
      view_->layoutPass();
    }
    if (event->type() == QEvent::Polish) keepLimits();
    const auto handle = [this, event] { return QWidget::event(event); };
    const bool used = withoutHostStyle(*this, *event, handle, least_, most_);
    if (event->type() == QEvent::StyleChange && view_ && parentWidget() &&
        !parentWidget()->layout()) {
      view_->applyFrame();
    }
    // Keys belong to the window that covers the host, not to the host's shortcuts.
    if (event->type() == QEvent::ShortcutOverride && keepsKeys(view_)) event->accept();
    return used;
  }

  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() != Qt::LeftButton) return event->ignore();
    deliver(event, &TouchDispatcher::began);
  }
  void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
  void mouseMoveEvent(QMouseEvent* event) override { deliver(event, &TouchDispatcher::moved); }
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton) deliver(event, &TouchDispatcher::ended);
  }

  void wheelEvent(QWheelEvent* event) override {
    constexpr double kPointsAStep = 60;
    const QPoint pixels = event->pixelDelta();
    const QPoint angle = event->angleDelta();
    const CGPoint delta = pixels.isNull() ? CGPoint{angle.x() / 120.0 * kPointsAStep,
                                                    angle.y() / 120.0 * kPointsAStep}
                                          : CGPoint{double(pixels.x()), double(pixels.y())};
    event->setAccepted(view_ && view_->wheelMoved(delta));
  }

  void keyPressEvent(QKeyEvent* event) override {
    const std::string key = nameOf(*event);
    const auto alive = view_ ? view_->shared_from_this() : nullptr;
    // A held arrow key does repeat, in lists and texts.
    const bool isHeld =
        event->isAutoRepeat() && std::find(kPresses.begin(), kPresses.end(), key) != kPresses.end();
    const auto window = alive ? static_cast<UIView&>(*alive).window() : nullptr;
    const bool isIgnored = isHeld || (window && window->ignoresKey(key));
    const bool used = alive && !key.empty() && (isIgnored || view_->keyPressed(key));
    event->setAccepted(used || (alive && keepsKeys(static_cast<UIView*>(alive.get()))));
  }
  void keyReleaseEvent(QKeyEvent* event) override { event->setAccepted(keepsKeys(view_)); }

  // By the desktop.
  void closeEvent(QCloseEvent* event) override {
    QWidget::closeEvent(event);
    if (auto* const window = dynamic_cast<UIWindow*>(view_)) window->close();
  }

  void focusInEvent(QFocusEvent* event) override {
    const Qt::FocusReason reason = event->reason();
    if (view_) {
      view_->isFocusedByKeyboard_ = reason == Qt::TabFocusReason ||
                                    reason == Qt::BacktabFocusReason ||
                                    reason == Qt::ShortcutFocusReason;
    }
    focusChanged();
  }
  void focusOutEvent(QFocusEvent*) override { focusChanged(); }

  bool focusNextPrevChild(bool next) override {
    const auto window = view_ ? view_->window() : nullptr;
    // Behind the ends of a window inside a form the host's order goes on.
    return (window && window->moveFocus(next)) || QWidget::focusNextPrevChild(next);
  }

 private:
  QSize fitting(int width) const {
    const double limit = 1e6;
    const CGSize size = view_->sizeThatFits({width < 0 ? limit : double(width), limit});
    return {int(std::ceil(size.width)), int(std::ceil(size.height))};
  }

  QSize wished(QSize hint) const {
    return {wish.width() < 0 ? hint.width() : wish.width(),
            wish.height() < 0 ? hint.height() : wish.height()};
  }

  void focusChanged() {
    if (!view_) return;
    view_->focusChanged();
    update();
  }

  void deliver(QMouseEvent* event, void (TouchDispatcher::*call)(CGPoint, long long milliseconds)) {
    // Held: what a touch leads to may end the window.
    const auto window = view_ ? view_->window() : nullptr;
    event->setAccepted(window != nullptr);
    if (!window) return;
    const QPointF position = mapTo(window->widget(), event->position().toPoint());
    (window->touches().*call)(point(position), static_cast<long long>(event->timestamp()));
  }

  UIView* view_;
  QSize least_{0, 0};
  QSize most_{QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
};

UIView::UIView() : UIView(CGRect{}) {}

UIView::UIView(const CGRect& frame) : UIView(std::make_unique<CALayer>()) {
  setFrame(frame);
}

UIView::UIView(std::unique_ptr<CALayer> layer) : layer_(std::move(layer)) {
  if (!UIApplication::exists()) throw std::logic_error("a view needs the application object");
  widget_ = std::make_unique<Widget>(*this).release();
  layer_->setOnChange([this] { setNeedsDisplay(); });
}

UIView::~UIView() {
  for (const auto& subview : subviews_) {
    subview->superview_ = nullptr;
    if (subview->widget_) subview->widget_->moveTo(nullptr);
    subview->notifyWindow();
  }
  if (!widget_) return;
  widget_->forget();
  // The widget may be on the way of one of its own events.
  widget_->hide();
  widget_->setParent(nullptr);
  widget_->deleteLater();
}

QWidget* UIView::widget() const {
  return widget_;
}

std::shared_ptr<UIView> UIView::of(const QWidget* widget) {
  const auto* ours = dynamic_cast<const Widget*>(widget);
  if (!ours || !ours->view()) return nullptr;
  // Null for one that is being made or ends.
  return std::static_pointer_cast<UIView>(ours->view()->weak_from_this().lock());
}

CGRect UIView::frame() const {
  if (!widget_) return frame_;
  const CGPoint origin = superview_ ? superview_->boundsOrigin_ : CGPoint{};
  const QRect native = widget_->geometry();
  if (native == onWholePoints({frame_.origin - origin, frame_.size})) return frame_;
  return {CGPoint{double(native.x()), double(native.y())} + origin,
          {double(native.width()), double(native.height())}};
}

void UIView::setFrame(const CGRect& frame) {
  frame_ = frame;
  applyFrame();
}

void UIView::applyFrame() {
  if (!widget_) return;
  const CGPoint origin = superview_ ? superview_->boundsOrigin_ : CGPoint{};
  widget_->setGeometry(onWholePoints({frame_.origin - origin, frame_.size}));
}

CGRect UIView::bounds() const {
  return {boundsOrigin_, frame().size};
}

void UIView::setBoundsOrigin(CGPoint origin) {
  if (boundsOrigin_ == origin) return;
  std::vector<CGRect> frames;
  for (const auto& subview : subviews_) frames.push_back(subview->frame());
  boundsOrigin_ = origin;
  for (std::size_t index = 0; index < frames.size(); ++index) {
    subviews_[index]->setFrame(frames[index]);
  }
}

double UIView::contentScaleFactor() const {
  return widget_ ? widget_->devicePixelRatioF() : 1;
}

CGPoint UIView::center() const {
  const CGRect rect = frame();
  return {rect.midX(), rect.midY()};
}

void UIView::setCenter(CGPoint center) {
  const CGSize size = frame().size;
  setFrame({{center.x - size.width / 2, center.y - size.height / 2}, size});
}

CGPoint UIView::convert(CGPoint point, const UIView* view) const {
  const auto toTop = [](const UIView* from, CGPoint at) {
    for (const UIView* step = from; step->superview_; step = step->superview_) {
      at = at - step->boundsOrigin_ + step->frame().origin;
    }
    return at;
  };
  const CGPoint top = toTop(this, point);
  return view ? top - toTop(view, CGPoint{}) : top;
}

std::shared_ptr<UIView> UIView::superview() const {
  return superview_ ? shared(superview_) : nullptr;
}

void UIView::addSubview(const std::shared_ptr<UIView>& view) {
  if (view->superview_ == this) return bringSubviewToFront(*view);
  place(view, subviews_.size());
}

void UIView::insertSubview(const std::shared_ptr<UIView>& view, std::size_t index) {
  place(view, index);
}

void UIView::place(const std::shared_ptr<UIView>& view, std::size_t index) {
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): it may be an entry of a list
  // below.
  const std::shared_ptr<UIView> held = view;
  const CGRect frame = held->frame();
  held->removeFromSuperview();
  index = std::min(index, subviews_.size());
  subviews_.insert(subviews_.begin() + std::ptrdiff_t(index), held);
  held->superview_ = this;
  if (held->widget_ && widget_) {
    if (held->widget_->parentWidget() != widget_) held->widget_->moveTo(widget_);
    held->setFrame(frame);
    if (index + 1 < subviews_.size() && subviews_[index + 1]->widget_) {
      held->widget_->stackUnder(subviews_[index + 1]->widget_);
    } else {
      held->widget_->raise();
    }
    held->widget_->setVisible(!held->isHidden_);
  }
  setNeedsLayout();
  held->notifyWindow();
  if (held->showsModalView()) modalSubviewChanged();
}

void UIView::removeFromSuperview() {
  if (!superview_) return;
  const auto self = shared(this);
  resignFocusWithin();
  if (!superview_) return;
  UIView& parent = *superview_;
  const CGRect last = frame();
  const bool wasModal = showsModalView();
  std::erase_if(parent.subviews_, [this](const auto& view) { return view.get() == this; });
  superview_ = nullptr;
  frame_ = last;
  if (widget_) {
    widget_->hide();
    widget_->moveTo(nullptr);
  }
  parent.setNeedsLayout();
  notifyWindow();
  if (wasModal) parent.modalSubviewChanged();
}

void UIView::bringSubviewToFront(const UIView& view) {
  const auto found = std::find_if(subviews_.begin(), subviews_.end(),
                                  [&](const auto& each) { return each.get() == &view; });
  if (found == subviews_.end()) return;
  std::rotate(found, found + 1, subviews_.end());
  if (view.widget_) view.widget_->raise();
}

bool UIView::isDescendant(const UIView& of) const {
  for (const UIView* view = this; view; view = view->superview_) {
    if (view == &of) return true;
  }
  return false;
}

UIView& UIView::top() {
  UIView* view = this;
  while (view->superview_) view = view->superview_;
  return *view;
}

const UIView& UIView::top() const {
  const UIView* view = this;
  while (view->superview_) view = view->superview_;
  return *view;
}

std::shared_ptr<UIWindow> UIView::window() const {
  const auto highest = std::const_pointer_cast<UIResponder>(top().weak_from_this().lock());
  return std::dynamic_pointer_cast<UIWindow>(highest);
}

bool UIView::isInWindowNow() const {
  return dynamic_cast<const UIWindow*>(&top()) != nullptr;
}

void UIView::notifyWindow() {
  if (isInWindow_ == isInWindowNow()) return;
  const auto self = shared(this);
  isInWindow_ = !isInWindow_;
  didMoveToWindow();
  const auto subviews = subviews_;
  for (const auto& subview : subviews) subview->notifyWindow();
}

void UIView::setHidden(bool hidden) {
  if (isHidden_ == hidden) return;
  if (hidden) resignFocusWithin();
  isHidden_ = hidden;
  if (widget_ && superview_) widget_->setVisible(!hidden);
  if (!isModal_ || !superview_) return;
  superview_->modalSubviewChanged();
  if (!hidden) postAccessibilityAnnouncement(*this, accessibilityText(*this));
}

// When the toolkit hides a focused widget, it moves the focus to the next one, which may be Close
// or Back. So the focus is taken away first.
void UIView::resignFocusWithin() {
  const auto window = superview_ ? this->window() : nullptr;
  if (!window || window->isInsideForm()) return;
  const auto focused = window->focusedView();
  if (focused && focused->isDescendant(*this)) window->resignFocus();
}

void UIView::setAccessibilityViewIsModal(bool isModal) {
  if (isModal_ == isModal) return;
  isModal_ = isModal;
  if (superview_) superview_->modalSubviewChanged();
}

const UIView* UIView::modalSubview() const {
  const auto found = std::find_if(subviews_.rbegin(), subviews_.rend(), [](const auto& each) {
    return each->isModal_ && !each->isHidden_;
  });
  return found == subviews_.rend() ? nullptr : found->get();
}

std::vector<std::shared_ptr<UIView>> UIView::reachableSubviews() const {
  const UIView* const modal = modalSubview();
  if (!modal) return subviews_;
  return {*std::find_if(subviews_.begin(), subviews_.end(),
                        [modal](const auto& each) { return each.get() == modal; })};
}

bool UIView::showsModalView() const {
  if (isHidden_) return false;
  return isModal_ || std::any_of(subviews_.begin(), subviews_.end(),
                                 [](const auto& each) { return each->showsModalView(); });
}

bool UIView::isReachable() const {
  const UIView* view = this;
  for (; view->superview_; view = view->superview_) {
    const UIView& parent = *view->superview_;
    const UIView* const modal = parent.modalSubview();
    if (view->isHidden_ || (modal && modal != view)) return false;
    if (parent.superview_ || !dynamic_cast<const UIWindow*>(&parent)) continue;
    // The last subview of a window is presented over the others.
    const auto topmost = std::find_if(parent.subviews_.rbegin(), parent.subviews_.rend(),
                                      [](const auto& each) { return !each->isHidden_; });
    if (topmost->get() != view) return false;
  }
  return view->isInWindowNow() && view->widget_ && !HostAccessibility::isCovered(*view->widget_);
}

void UIView::modalSubviewChanged() {
  if (const auto window = this->window()) window->modalityChanged();
  for (const UIView* above = this; above; above = above->superview_) {
    if (const auto controller = above->viewController_.lock()) controller->modalViewChanged();
  }
}

void UIView::setContentMode(UIViewContentMode mode) {
  contentMode_ = mode;
  setNeedsDisplay();
}

void UIView::setNeedsDisplay() {
  if (widget_) widget_->update();
}

void UIView::redrawAt(double time) {
  redraw_ = AnimationClock::shared().run(time, [this](double) -> std::optional<double> {
    setNeedsDisplay();
    return std::nullopt;
  });
}

CGSize UIView::sizeThatFits(CGSize) const {
  return {-1, -1};
}

void UIView::invalidateIntrinsicContentSize() {
  if (widget_) widget_->updateGeometry();
  if (superview_) superview_->setNeedsLayout();
}

void UIView::setAutoresizing(UIViewAutoresizing mask, CGSize designedIn) {
  if (mask == UIViewAutoresizing::none) return autoresizing_.reset();
  autoresizing_ = Autoresizing{mask, frame(), designedIn};
  if (superview_) superview_->setNeedsLayout();
}

void UIView::fillSuperview() {
  autoresizing_ =
      Autoresizing{UIViewAutoresizing::flexibleWidth | UIViewAutoresizing::flexibleHeight, {}, {}};
  if (superview_) superview_->setNeedsLayout();
}

namespace {

// An origin and a length after the superview has grown by `more`, which the flexible parts share.
std::pair<double, double> stretched(double origin, double length, double more, bool before,
                                    bool itself, bool after) {
  const int parts = int(before) + int(itself) + int(after);
  const double share = parts > 0 ? more / parts : 0;
  return {origin + (before ? share : 0), std::max(0.0, length + (itself ? share : 0))};
}

}  // namespace

void UIView::autoresize(CGSize superview) {
  if (!autoresizing_) return;
  using enum UIViewAutoresizing;
  const auto& [mask, designed, from] = *autoresizing_;
  const auto [x, width] = stretched(designed.origin.x, designed.size.width,
                                    superview.width - from.width, has(mask, flexibleLeftMargin),
                                    has(mask, flexibleWidth), has(mask, flexibleRightMargin));
  const auto [y, height] = stretched(designed.origin.y, designed.size.height,
                                     superview.height - from.height, has(mask, flexibleTopMargin),
                                     has(mask, flexibleHeight), has(mask, flexibleBottomMargin));
  setFrame({{x, y}, {width, height}});
}

void UIView::setNeedsLayout() {
  needsLayout_ = true;
  if (!widget_) return;
  QCoreApplication::postEvent(widget_, std::make_unique<QEvent>(QEvent::LayoutRequest).release());
}

void UIView::layoutIfNeeded() {
  settleConstraints();
  top().layoutTree();
}

void UIView::layoutPass() {
  if (!needsLayout_) return;
  needsLayout_ = false;
  const auto self = shared(this);
  layoutSubviews();
  const auto subviews = subviews_;
  for (const auto& subview : subviews) subview->autoresize(bounds().size);
}

void UIView::layoutTree() {
  if (!widget_) return;
  const auto self = shared(this);
  if (widget_->testAttribute(Qt::WA_PendingResizeEvent)) {
    QResizeEvent resized(widget_->size(), {});
    widget_->setAttribute(Qt::WA_PendingResizeEvent, false);
    QCoreApplication::sendEvent(widget_, &resized);
  }
  if (widget_->layout()) widget_->layout()->activate();
  layoutPass();
  const auto subviews = subviews_;
  for (const auto& subview : subviews) subview->layoutTree();
}

void UIView::addConstraint(const std::shared_ptr<NSLayoutConstraint>& constraint) {
  constraint->view_ = shared(this);
  constraints_.push_back(constraint);
  apply(*constraint);
}

void UIView::apply(const NSLayoutConstraint& constraint) {
  const auto view = constraint.view_.lock();
  if (!view || !view->widget_) return;
  const int length = std::max(0, int(std::lround(constraint.shown_)));
  // One that gives way is a wish with the length as its limit.
  const auto& least = constraint.least();
  int minimum = least ? std::min(length, int(std::lround(*least))) : length;
  if (constraint.attribute() == NSLayoutConstraint::Attribute::height) {
    if (least) minimum = std::min(minimum, int(std::floor(view->maxConstraintHeight())));
    view->widget_->setMinimumHeight(minimum);
    view->widget_->setMaximumHeight(length);
    if (least) view->widget_->wish.setHeight(length);
  } else {
    view->widget_->setMinimumWidth(minimum);
    view->widget_->setMaximumWidth(length);
    if (least) view->widget_->wish.setWidth(length);
  }
  view->widget_->keepLimits();
  view->widget_->updateGeometry();
}

double UIView::maxConstraintHeight() const {
  return superview_ ? superview_->maxConstraintHeight() : std::numeric_limits<int>::max();
}

void UIView::reapplyConstraints() {
  for (const auto& constraint : constraints_) apply(*constraint);
  for (const auto& subview : subviews_) subview->reapplyConstraints();
}

void NSLayoutConstraint::setConstant(double constant) {
  constant_ = constant;
  if (const auto view = view_.lock()) view->setNeedsLayout();
}

void UIView::settleConstraints() {
  for (const auto& constraint : constraints_) {
    const double target = constraint->constant_;
    if (constraint->target_ == target) continue;
    constraint->target_ = target;
    const unsigned motion = ++constraint->motion_;
    if (!current || current->duration <= 0) {
      constraint->shown_ = target;
      apply(*constraint);
      continue;
    }
    current->steps.push_back([weak = std::weak_ptr<NSLayoutConstraint>(constraint),
                              from = constraint->shown_, target, motion](double share) {
      const auto alive = weak.lock();
      // A later change has taken over.
      if (!alive || alive->motion_ != motion) return;
      alive->shown_ = share < 1 ? from + (target - from) * share : target;
      apply(*alive);
      if (const auto view = alive->view_.lock()) view->top().layoutTree();
    });
  }
  for (const auto& subview : subviews_) subview->settleConstraints();
}

void UIView::animate(double withDuration, const std::function<void()>& animations,
                     std::function<void()> completion) {
  Animation animation{withDuration, {}};
  Animation* const outer = std::exchange(current, &animation);
  animations();
  current = outer;
  if (animation.steps.empty()) {
    if (completion) completion();
    return;
  }
  // Kept by itself until the last step.
  const auto token = std::make_shared<AnimationClock::Token>();
  *token = AnimationClock::shared().ease(withDuration,
                                         [token, steps = std::move(animation.steps),
                                          completion = std::move(completion)](double share) {
                                           for (const auto& step : steps) step(share);
                                           if (share < 1) return;
                                           if (completion) completion();
                                           token->reset();
                                         });
}

std::shared_ptr<UIResponder> UIView::next() const {
  if (auto controller = viewController_.lock()) return controller;
  return superview();
}

void UIView::addGestureRecognizer(const std::shared_ptr<UIGestureRecognizer>& recognizer) {
  recognizer->view_ = shared(this);
  gestureRecognizers_.push_back(recognizer);
}

void UIView::removeGestureRecognizer(const UIGestureRecognizer& recognizer) {
  const auto found = std::find_if(gestureRecognizers_.begin(), gestureRecognizers_.end(),
                                  [&](const auto& each) { return each.get() == &recognizer; });
  if (found == gestureRecognizers_.end()) return;
  (*found)->view_.reset();
  gestureRecognizers_.erase(found);
}

std::shared_ptr<UIView> UIView::hitTest(CGPoint point) {
  if (isHidden_ || !isUserInteractionEnabled_ || !bounds().contains(point)) return nullptr;
  const UIView* const modal = modalSubview();
  for (auto each = subviews_.rbegin(); each != subviews_.rend(); ++each) {
    const UIView& subview = **each;
    if (modal && modal != &subview) continue;
    const CGPoint inside = point - subview.frame().origin + subview.boundsOrigin_;
    if (auto hit = (*each)->hitTest(inside)) return hit;
  }
  return shared(this);
}

bool UIView::endEditing(bool force) {
  bool ended = true;
  const auto subviews = subviews_;
  for (const auto& subview : subviews) ended = subview->endEditing(force) && ended;
  return ended;
}

void UIView::setFocusable(bool focusable) {
  isFocusable_ = focusable;
  // A click leaves the focus where it is, as a tap leaves the keyboard.
  if (widget_) widget_->setFocusPolicy(focusable ? Qt::TabFocus : Qt::NoFocus);
}

bool UIView::isFocused() const {
  return widget_ && widget_->hasFocus();
}

bool UIView::isFocusedByKeyboard() const {
  return isFocused() && isFocusedByKeyboard_;
}

void UIView::becomeFocused() {
  const auto* const control = dynamic_cast<const UIControl*>(this);
  if (!widget_ || !isReachable() || (control && !control->isEnabled())) return;
  widget_->setFocus(Qt::TabFocusReason);
}

bool UIView::keyPressed(const std::string&) {
  return false;
}

CGRect UIView::focusRect() const {
  return {{}, bounds().size};
}

}  // namespace kestrova::platform
