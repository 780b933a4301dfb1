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
#include "platform/uikit/FocusRing.h"
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
    if (type == QEvent::Show || type == QEvent::Hide || type == QEvent::WindowStateChange) {
      window_.visibilityChanged();
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
  const auto gone = onHostGone;
  if (gone) gone();
}

namespace {

// Whether something else lies over the middle of the view, as an overlay does. Of one that is
// scrolled out of sight it is the scroll view that counts.
bool isCovered(const UIView& view) {
  const auto window = view.window();
  const CGSize size = view.bounds().size;
  const CGPoint middle{view.bounds().origin.x + size.width / 2,
                       view.bounds().origin.y + size.height / 2};
  for (auto above = view.superview(); above; above = above->superview()) {
    const auto* const scrollView = dynamic_cast<const UIScrollView*>(above.get());
    if (scrollView && !scrollView->bounds().contains(view.convert(middle, scrollView))) {
      return isCovered(*scrollView);
    }
  }
  const auto hit = window ? window->hitTest(view.convert(middle, nullptr)) : nullptr;
  return hit && !hit->isDescendant(view) && !view.isDescendant(*hit);
}

// The subtree's focusable views in the order of the eye: as they lie in the tree.
void collectFocusable(const std::shared_ptr<UIView>& view,
                      std::vector<std::shared_ptr<UIView>>& found) {
  if (view->isHidden() || !view->isUserInteractionEnabled()) return;
  if (view->isFocusable() && !isCovered(*view)) {
    const auto* control = dynamic_cast<const UIControl*>(view.get());
    if (!control || control->isEnabled()) found.push_back(view);
  }
  for (const auto& subview : view->reachableSubviews()) collectFocusable(subview, found);
}

bool holdsFocus(const UIView& view) {
  const QWidget* focused = QApplication::focusWidget();
  return focused && view.widget() &&
         (view.widget() == focused || view.widget()->isAncestorOf(focused));
}

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
  // What is presented last covers the rest.
  std::vector<std::shared_ptr<UIView>> order;
  for (auto top = subviews().rbegin(); top != subviews().rend(); ++top) {
    if ((*top)->isHidden()) continue;
    collectFocusable(*top, order);
    break;
  }
  if (kind_ == Kind::inside) {
    // The host's own order goes on behind the ends.
    const auto focused = std::find_if(order.begin(), order.end(),
                                      [](const auto& view) { return holdsFocus(*view); });
    const bool leaves = order.empty() || (focused != order.end() &&
                                          focused == (forward ? order.end() - 1 : order.begin()));
    if (leaves) return false;
  }
  if (order.empty()) return kind_ != Kind::inside;
  const auto focused =
      std::find_if(order.begin(), order.end(), [](const auto& view) { return holdsFocus(*view); });
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

void UIWindow::dropUnreachableFocus() {
  if (!widget()) return;
  const QWidget* focused = widget()->window()->focusWidget();
  while (focused && focused != widget() && !UIView::of(focused)) focused = focused->parentWidget();
  const auto view = UIView::of(focused);
  if (!view || view.get() == this || view->window().get() != this || view->isReachable()) return;
  widget()->setFocus(Qt::OtherFocusReason);
}

bool UIWindow::keyPressed(const std::string& key) {
  if (key != "Escape" && key != "Back") return false;
  // From the innermost screen on top outwards.
  const auto top = topViewController();
  if (!top) return false;
  return key == "Escape" ? top->escape() : top->goBack();
}

}  // namespace kestrova::platform
