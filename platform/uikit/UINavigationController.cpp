#include "platform/uikit/UINavigationController.h"

#include <algorithm>

#include <QtWidgets/QWidget>

#include "platform/uikit/ModalPresentation.h"
#include "platform/uikit/Transition.h"
#include "platform/uikit/UINavigationBar.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

// The root of a navigation controller: its bar keeps its height.
class NavigationView : public UIView {
 public:
  void setParts(const std::shared_ptr<UIView>& content, const std::shared_ptr<UIView>& bar) {
    content->fillSuperview();
    addSubview(content);
    addSubview(bar);
    bar_ = bar;
  }

  void layoutSubviews() override {
    const auto bar = bar_.lock();
    if (bar) bar->setFrame({{}, {bounds().size.width, UINavigationBar::kHeight}});
  }

 private:
  std::weak_ptr<UIView> bar_;
};

bool isShown(const UIView& view) {
  const auto window = view.window();
  return window && window->widget() && window->widget()->isVisible();
}

}  // namespace

UINavigationController::UINavigationController() : memory_(std::make_shared<SnapshotMemory>()) {}

UINavigationController::~UINavigationController() = default;

void UINavigationController::setViewControllers(
    const std::vector<std::shared_ptr<UIViewController>>& controllers) {
  for (const auto& each : stack_) each->removeFromParent();
  stack_ = controllers;
  for (const auto& each : stack_) addChild(each);
}

std::shared_ptr<UIViewController> UINavigationController::topViewController() const {
  return stack_.empty() ? nullptr : stack_.back();
}

std::vector<std::shared_ptr<UIViewController>> UINavigationController::childrenOnDisplay() const {
  if (stack_.empty()) return {};
  return {stack_.back()};
}

void UINavigationController::loadView() {
  const auto root = std::make_shared<NavigationView>();
  content_ = std::make_shared<UIView>();
  bar_ = std::make_shared<UINavigationBar>(
      [weak = std::weak_ptr<UINavigationController>(shared(this))] {
        if (const auto alive = weak.lock()) alive->goBack();
      });
  root->setParts(content_, bar_);
  setView(root);
}

void UINavigationController::viewDidLoad() {
  const auto top = topViewController();
  if (!top) return;
  if (const auto asked = delegate.lock()) {
    asked->navigationControllerWillShow(*this, *top, false);
  }
  place(top);
  itemChanged();
}

void UINavigationController::place(const std::shared_ptr<UIViewController>& controller) {
  const auto view = controller->view();
  view->fillSuperview();
  view->setFrame({{}, content_->bounds().size});
  content_->addSubview(view);
  view->layoutIfNeeded();
}

void UINavigationController::itemChanged() {
  const auto top = topViewController();
  if (bar_ && top) bar_->show(top->navigationItem(), stack_.size() > 1 && !isTopBusy());
}

void UINavigationController::modalViewChanged() {
  itemChanged();
}

bool UINavigationController::isTopBusy() const {
  const auto top = topViewController();
  return top && top->viewIfLoaded() && top->viewIfLoaded()->showsModalView();
}

void UINavigationController::pushViewController(const std::shared_ptr<UIViewController>& controller,
                                                bool animated) {
  if (std::find(stack_.begin(), stack_.end(), controller) != stack_.end()) return;
  finishMotion();
  const auto from = topViewController();
  addChild(controller);
  stack_.push_back(controller);
  exchange(from, controller, true, animated);
}

std::shared_ptr<UIViewController> UINavigationController::popViewController(bool animated) {
  finishMotion();
  if (stack_.size() < 2) return nullptr;
  auto from = stack_.back();
  stack_.pop_back();
  exchange(from, stack_.back(), false, animated);
  return from;
}

std::shared_ptr<UIViewController> UINavigationController::contentScreen() {
  const auto top = topViewController();
  return top ? top->contentScreen() : UIViewController::contentScreen();
}

bool UINavigationController::goBack() {
  if (UIViewController::goBack()) return true;
  const auto top = topViewController();
  if (!top || stack_.size() < 2 || top->navigationItem().hidesBackButton) return false;
  if (isTopBusy()) return false;
  return popViewController(true) != nullptr;
}

void UINavigationController::exchange(const std::shared_ptr<UIViewController>& from,
                                      const std::shared_ptr<UIViewController>& to, bool forward,
                                      bool animated) {
  if (!viewIfLoaded()) return;
  const auto self = shared(this);
  if (const auto asked = delegate.lock()) asked->navigationControllerWillShow(*this, *to, animated);
  const bool moves = animated && from && isAppearing() && isShown(*content_);
  const CGRect whole{{}, content_->bounds().size};
  // Before the old screen strips what it shows.
  const auto old = moves ? Snapshot::opaque(*content_, whole, memory_) : nullptr;
  // A screen that is presented above keeps the focus and the keys.
  if (isAppearing() && viewIfLoaded()->isReachable()) {
    motion_ = viewIfLoaded()->window()->beginMotion(viewIfLoaded());
  }
  if (from && isAppearing()) from->beginAppearance(false, animated);
  // Who is told may have put another screen on top.
  if (topViewController() != to) return leave(from);
  place(to);
  if (isAppearing()) to->beginAppearance(true, animated);
  if (topViewController() != to) return leave(from);
  itemChanged();
  content_->layoutIfNeeded();

  auto end = [weak = std::weak_ptr<UINavigationController>(self), from, to, animated] {
    const auto alive = weak.lock();
    if (!alive) return;
    const auto finished = std::exchange(alive->transition_, nullptr);
    to->view()->setHidden(false);
    alive->leave(from);
    alive->motion_.reset();
    to->endAppearance();
    if (const auto asked = alive->delegate.lock()) {
      asked->navigationControllerDidShow(*alive, *to, animated);
    }
    const auto window = alive->viewIfLoaded()->window();
    if (window && alive->isAppearing()) window->screenAppeared(alive->viewIfLoaded());
  };
  if (!moves) return end();
  if (from) from->view()->setHidden(true);
  const auto fresh = Snapshot::opaque(*content_, whole, memory_);
  to->view()->setHidden(true);
  transition_ = Transition::run(*content_, whole, ModalPresentation::cornerRadiusOf(*content_),
                                forward ? Transition::Kind::push : Transition::Kind::pop, old,
                                fresh, {}, std::move(end));
}

// What has come in its place is there.
void UINavigationController::leave(const std::shared_ptr<UIViewController>& screen) {
  if (!screen) return;
  screen->view()->removeFromSuperview();
  screen->view()->setHidden(false);
  screen->endAppearance();
  const bool isInStack = std::find(stack_.begin(), stack_.end(), screen) != stack_.end();
  if (!isInStack) screen->removeFromParent();
}

void UINavigationController::viewDidDisappear(bool animated) {
  UIViewController::viewDidDisappear(animated);
  finishMotion();
}

void UINavigationController::finishMotion() {
  // Whoever is told of the end may begin another.
  while (const auto moving = transition_) moving->finish();
}

}  // namespace kestrova::platform
