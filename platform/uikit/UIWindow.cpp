#include "platform/uikit/UIWindow.h"

#include <algorithm>
#include <string>
#include <utility>

#include <QtCore/QEvent>
#include <QtCore/QPointer>
#include <QtGui/QFocusEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "platform/foundation/NotificationCenter.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/FocusOrder.h"
#include "platform/uikit/FocusRing.h"
#include "platform/uikit/HostAccessibility.h"
#include "platform/uikit/TouchDispatcher.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIViewController.h"

namespace kestrova::platform {

// Follows the size of the widget that the window covers or fills.
class UIWindow::HostWatch : public QObject {
 public:
  HostWatch(UIWindow& window, QWidget& host) : window_(window), host_(&host) {
    host.installEventFilter(this);
    window_.widget()->setParent(&host);
    follow();
    window_.widget()->raise();
    window_.widget()->show();
  }

  QWidget* host() const { return host_; }

  bool eventFilter(QObject* object, QEvent* event) override {
    if (object == host_ && event->type() == QEvent::Resize) follow();
    if (object == host_ && event->type() == QEvent::ChildAdded && window_.kind_ == Kind::over) {
      if (window_.widget()) window_.widget()->raise();
    }
    return QObject::eventFilter(object, event);
  }

 private:
  void follow() {
    if (window_.widget()) {
      window_.setFrame({{}, {double(host_->width()), double(host_->height())}});
    }
  }

  UIWindow& window_;
  QPointer<QWidget> host_;
};

// Reports that the window's widget, or the top-level widget around it, was shown, hidden or
// minimised.
class UIWindow::VisibilityWatch : public QObject {
 public:
  explicit VisibilityWatch(UIWindow& window) : window_(window) {
    window.widget()->installEventFilter(this);
  }

  bool eventFilter(QObject* object, QEvent* event) override {
    const auto type = event->type();
    // The host may have moved the widget into another window.
    if (type == QEvent::Show && object == window_.widget()) {
      window_.widget()->window()->installEventFilter(this);
    }
    if (type == QEvent::Show || type == QEvent::WindowStateChange) window_.visibilityChanged();
    // A window that is being destroyed is hidden first; nobody may change its widgets then.
    if (type == QEvent::Hide && window_.widget()) {
      QMetaObject::invokeMethod(
          this, [this] { window_.visibilityChanged(); }, Qt::QueuedConnection);
    }
    return QObject::eventFilter(object, event);
  }

 private:
  UIWindow& window_;
};

void UIWindow::visibilityChanged() {
  const bool isSeen = widget() && widget()->isVisible() && !widget()->window()->isMinimized();
  if (std::exchange(isSeen_, isSeen) == isSeen) return;
  NotificationCenter::defaultCenter().post(
      {std::string(isSeen ? UIWindowDidBecomeVisibleNotification
                          : UIWindowDidBecomeHiddenNotification),
       this,
       {}});
}

UIWindow::UIWindow(Kind kind) : kind_(kind), touches_(std::make_unique<TouchDispatcher>(*this)) {
  UIApplication::exists();
  // Whatever a host's language is: the screens are drawn that way.
  widget()->setLayoutDirection(Qt::LeftToRight);
  visibilityWatch_ = std::make_unique<VisibilityWatch>(*this);
}

UIWindow::~UIWindow() = default;

std::shared_ptr<UIWindow> UIWindow::make(CGSize size) {
  auto window = std::make_shared<UIWindow>(Kind::own);
  window->setBackgroundColor(UIColor::white());
  window->setFrame({{}, size});
  window->focusRing_ = std::make_unique<FocusRing>(*window);
  return window;
}

std::shared_ptr<UIWindow> UIWindow::over(QWidget& host) {
  auto window = std::make_shared<UIWindow>(Kind::over);
  // Nothing goes through to the host: no button of a mouse, wheel, menu or finger.
  window->widget()->setAttribute(Qt::WA_NoMousePropagation);
  window->watch_ = std::make_unique<HostWatch>(*window, *host.window());
  window->hiddenHost_ = std::make_unique<HostAccessibility>(*window->widget());
  window->focusRing_ = std::make_unique<FocusRing>(*window);
  return window;
}

std::shared_ptr<UIWindow> UIWindow::inside(QWidget& placeholder) {
  auto window = std::make_shared<UIWindow>(Kind::inside);
  window->watch_ = std::make_unique<HostWatch>(*window, placeholder);
  window->focusRing_ = std::make_unique<FocusRing>(*window);
  return window;
}

void UIWindow::setRootViewController(const std::shared_ptr<UIViewController>& controller) {
  const bool visible = widget() && widget()->isVisible();
  if (root_) {
    if (root_->presentedViewController()) root_->dismiss(false);
    if (visible) root_->beginAppearance(false, false);
    root_->view()->removeFromSuperview();
    if (visible) root_->endAppearance();
  }
  root_ = controller;
  if (!root_) return;
  const auto view = root_->view();
  view->setFrame({{}, bounds().size});
  view->fillSuperview();
  insertSubview(view, 0);
  view->layoutIfNeeded();
  if (!visible) return;
  root_->beginAppearance(true, false);
  root_->endAppearance();
}

void UIWindow::makeKeyAndVisible() {
  if (!widget() || widget()->isVisible()) return;
  layoutIfNeeded();
  if (root_) root_->beginAppearance(true, false);
  widget()->show();
  if (root_) root_->endAppearance();
}

void UIWindow::close() {
  const auto self = shared(this);
  const bool visible = widget() && widget()->isVisible();
  if (root_ && visible) root_->beginAppearance(false, false);
  if (widget()) widget()->hide();
  hiddenHost_.reset();
  if (root_ && visible) root_->endAppearance();
}

std::shared_ptr<UIViewController> UIWindow::topViewController() const {
  auto controller = root_ ? root_ : presentedForHost_.lock();
  while (controller && controller->presentedViewController()) {
    controller = controller->presentedViewController();
  }
  return controller;
}

std::shared_ptr<UIResponder> UIWindow::next() const {
  if (watch_) {
    if (auto wrapper = UIViewController::wrapper(watch_->host())) return wrapper;
  }
  return UIApplication::shared();
}

void UIWindow::widgetLost() {
  const auto self = shared(this);
  hiddenHost_.reset();
  const auto gone = onHostGone;
  if (gone) gone();
}

namespace {

void reveal(const std::shared_ptr<UIView>& view) {
  for (auto above = view->superview(); above; above = above->superview()) {
    const auto scrollView = std::dynamic_pointer_cast<UIScrollView>(above);
    if (!scrollView) continue;
    const CGRect bounds = view->bounds();
    const CGPoint origin = view->convert(bounds.origin, scrollView.get());
    scrollView->scrollRectToVisible({origin, bounds.size}, true);
  }
}

}  // namespace

bool UIWindow::moveFocus(bool forward) {
  if (isMoving()) return true;
  // What is presented last covers the rest.
  const auto top = std::find_if(subviews().rbegin(), subviews().rend(),
                                [](const auto& each) { return !each->isHidden(); });
  const auto order =
      top == subviews().rend() ? std::vector<std::shared_ptr<UIView>>() : focusOrder(*top);
  const auto focused = std::find(order.begin(), order.end(), focusedView());
  if (kind_ == Kind::inside) {
    // The host's own order goes on behind the ends.
    const bool leaves = order.empty() || (focused != order.end() &&
                                          focused == (forward ? order.end() - 1 : order.begin()));
    if (leaves) return false;
  }
  if (order.empty()) return kind_ != Kind::inside;
  const std::size_t count = order.size();
  std::size_t target = forward ? 0 : count - 1;
  if (focused != order.end()) {
    const std::size_t at = std::size_t(focused - order.begin());
    target = (at + (forward ? 1 : count - 1)) % count;
  }
  order[target]->becomeFocused();
  reveal(order[target]);
  return true;
}

std::shared_ptr<UIView> UIWindow::focusedView() const {
  if (!widget()) return nullptr;
  const QWidget* focused = widget()->window()->focusWidget();
  if (!focused || !widget()->isAncestorOf(focused)) return nullptr;
  auto view = UIView::of(focused);
  for (; !view && focused; focused = focused->parentWidget()) view = UIView::of(focused);
  return view.get() == this ? nullptr : view;
}

void UIWindow::resignFocus() {
  if (widget()) widget()->setFocus(Qt::OtherFocusReason);
}

std::shared_ptr<const void> UIWindow::beginMotion(const std::shared_ptr<UIView>& area) {
  postAccessibilityScreenWillChange(*this);
  resignFocus();
  touches_->cancelIn(*area);
  std::erase_if(motions_, [](const auto& each) { return each.expired(); });
  auto motion = std::make_shared<const Motion>(Motion{area});
  motions_.push_back(motion);
  return motion;
}

bool UIWindow::isMoving() const {
  return std::any_of(motions_.begin(), motions_.end(),
                     [](const auto& each) { return !each.expired(); });
}

void UIWindow::contentChanged(const std::shared_ptr<UIView>& area) {
  changedArea_ = area;
  changedUntil_ = AnimationClock::shared().now() + kDoubleTapInterval;
}

void UIWindow::screenAppeared(const std::shared_ptr<UIView>& area,
                              const std::weak_ptr<UIView>& last) {
  if (isMoving() || !area->isReachable()) return;
  contentChanged(area);
  lastFocused_ = last;
  settleFocus();
  postAccessibilityScreenChanged(*area);
}

bool UIWindow::ignoresTouches(const UIView& view) const {
  return std::any_of(motions_.begin(), motions_.end(), [&view](const auto& each) {
    const auto motion = each.lock();
    const auto area = motion ? motion->area.lock() : nullptr;
    return area && view.isDescendant(*area);
  });
}

bool UIWindow::ignoresTaps(const UIView& view) const {
  if (AnimationClock::shared().now() >= changedUntil_) return false;
  const auto area = changedArea_.lock();
  return area && view.isDescendant(*area);
}

bool UIWindow::ignoresKey(std::string_view key) const {
  if (isMoving()) return true;
  if (key != "Return" && key != "Space") return false;
  const auto focused = focusedView();
  return focused && ignoresTaps(*focused);
}

void UIWindow::focus(const std::shared_ptr<UIView>& view) {
  if (!view->widget()) return;
  const bool byKeyboard = FocusRing::isKeyboardInUse();
  view->widget()->setFocus(byKeyboard ? Qt::TabFocusReason : Qt::OtherFocusReason);
  if (byKeyboard) reveal(view);
}

void UIWindow::focusPreferredView() {
  const auto top = topViewController();
  const auto view = top && !isMoving() ? top->contentScreen()->preferredFocusView() : nullptr;
  if (view && view->isReachable()) focus(view);
}

void UIWindow::settleFocus() {
  if (isMoving() || focusedView()) return;
  const auto last = lastFocused_.lock();
  lastFocused_.reset();
  const auto* const control = dynamic_cast<const UIControl*>(last.get());
  const bool canReturn = last && last->isReachable() && (!control || control->isEnabled());
  if (canReturn) return focus(last);
  focusPreferredView();
}

void UIWindow::modalityChanged() {
  touches_->cancelUnreachable();
  if (const auto focused = focusedView()) {
    if (focused->isReachable()) return;
    lastFocused_ = focused;
    return resignFocus();
  }
  // In a host's form the focus may be on a widget of the host.
  if (!widget() || isInsideForm()) return;
  // Deferred, because the code that hides the modal view may open another screen.
  QMetaObject::invokeMethod(
      widget(),
      [weak = std::weak_ptr<UIWindow>(shared(this))] {
        if (const auto alive = weak.lock()) alive->settleFocus();
      },
      Qt::QueuedConnection);
}

bool UIWindow::keyPressed(const std::string& key) {
  if (key != "Escape" && key != "Back") return false;
  if (isMoving()) return true;
  // From the innermost screen on top outwards.
  const auto top = topViewController();
  if (!top) return false;
  return key == "Escape" ? top->escape() : top->goBack();
}

}  // namespace kestrova::platform
