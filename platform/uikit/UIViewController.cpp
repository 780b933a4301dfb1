#include "platform/uikit/UIViewController.h"

#include <algorithm>

#include <QtCore/QPointer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "platform/foundation/Print.h"
#include "platform/uikit/FocusOrder.h"
#include "platform/uikit/ModalPresentation.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIStoryboardScene.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

struct UIViewController::Wrapped {
  QPointer<QWidget> widget;
};

namespace {

// Who is wrapped around which widget of a host.
std::vector<std::weak_ptr<UIViewController>>& wrappers() {
  static auto& list = *new std::vector<std::weak_ptr<UIViewController>>;
  return list;
}

}  // namespace

UIViewController::UIViewController() = default;

UIViewController::~UIViewController() {
  for (const auto& child : children_) child->parent_.reset();
}

std::shared_ptr<UIViewController> UIViewController::wrapping(QWidget& widget) {
  UIApplication::exists();
  auto controller = std::make_shared<UIViewController>();
  controller->wrapped_ = std::make_unique<Wrapped>(Wrapped{&widget});
  std::erase_if(wrappers(), [](const auto& weak) { return weak.expired(); });
  wrappers().push_back(controller);
  return controller;
}

std::shared_ptr<UIViewController> UIViewController::wrapper(const QWidget* widget) {
  for (; widget; widget = widget->parentWidget()) {
    for (const auto& weak : wrappers()) {
      auto controller = weak.lock();
      if (controller && controller->wrapped_->widget == widget) return controller;
    }
  }
  return nullptr;
}

const std::shared_ptr<UIView>& UIViewController::view() {
  if (!view_) {
    loadView();
    embedChildren();
    viewDidLoad();
  }
  return view_;
}

void UIViewController::setView(const std::shared_ptr<UIView>& view) {
  if (view_) view_->viewController_.reset();
  view_ = view;
  if (view_) view_->viewController_ = shared(this);
}

void UIViewController::loadView() {
  if (scene_ && scene_->loadView) {
    auto loaded = scene_->loadView(*this);
    if (loaded) {
      setView(loaded.value());
      // The size that screens are designed at, until the screen has one.
      view_->setFrame({{}, {375, 667}});
      view_->layoutIfNeeded();
      return;
    }
    print("Kestrova: the screen \"" + scene_->identifier +
          "\" cannot be loaded: " + loaded.error().localizedDescription);
  }
  setView(std::make_shared<UIView>());
}

void UIViewController::embedChildren() {
  if (!scene_) return;
  const auto scene = scene_;
  for (const auto& way : scene->segues) {
    if (way.kind != UIStoryboardSegue::Kind::embed) continue;
    const auto container = scene->viewNamed(*view_, way.container);
    auto destination = scene->instantiate(way.destination);
    if (!container || !destination) continue;
    addChild(destination.value());
    prepare({way.identifier, way.kind, shared(this), destination.value()}, shared(this));
    const auto inner = destination.value()->view();
    inner->fillSuperview();
    inner->setFrame({{}, container->bounds().size});
    container->addSubview(inner);
  }
}

std::shared_ptr<UIResponder> UIViewController::next() const {
  if (const auto presentation = presentedBy_.lock()) return presentation->presenter();
  if (view_) return view_->superview();
  if (wrapped_) return UIApplication::shared();
  return nullptr;
}

void UIViewController::addChild(const std::shared_ptr<UIViewController>& child) {
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): it may be an entry of a list
  // below.
  const auto held = child;
  held->removeFromParent();
  held->parent_ = shared(this);
  children_.push_back(held);
}

void UIViewController::removeFromParent() {
  const auto self = shared(this);
  const auto parent = parent_.lock();
  parent_.reset();
  if (parent) std::erase(parent->children_, self);
}

std::shared_ptr<UINavigationController> UIViewController::navigationController() const {
  for (auto above = parent(); above; above = above->parent()) {
    if (auto found = std::dynamic_pointer_cast<UINavigationController>(above)) return found;
  }
  return nullptr;
}

void UIViewController::setNavigationItem(const UINavigationItem& item) {
  if (navigationItem_ == item) return;
  navigationItem_ = item;
  if (const auto navigation = navigationController()) navigation->itemChanged();
}

const UIViewController& UIViewController::root() const {
  const UIViewController* controller = this;
  while (const auto above = controller->parent()) controller = above.get();
  return *controller;
}

std::shared_ptr<UIViewController> UIViewController::presentedViewController() const {
  const auto& presentation = root().presentation_;
  return presentation ? presentation->presented() : nullptr;
}

std::shared_ptr<UIViewController> UIViewController::presentingViewController() const {
  const auto presentation = root().presentedBy_.lock();
  return presentation ? presentation->presenter() : nullptr;
}

bool UIViewController::isBeingDismissed() const {
  const auto presentation = root().presentedBy_.lock();
  return presentation && presentation->isBeingDismissed();
}

std::shared_ptr<UIWindow> UIViewController::windowForPresenting() {
  if (wrapped_) return wrapped_->widget ? UIWindow::over(*wrapped_->widget) : nullptr;
  return view_ ? view_->window() : nullptr;
}

namespace {

// True while a modal dialog that was not opened from `window` keeps input from it.
bool isBlockedByDialog(const QWidget& window) {
  const QWidget* const modal = QApplication::activeModalWidget();
  const auto isWithin = [](const QWidget* widget, const QWidget* parent) {
    while (widget && widget != parent) widget = widget->parentWidget();
    return widget != nullptr;
  };
  if (!modal || isWithin(&window, modal)) return false;
  return modal->windowModality() == Qt::ApplicationModal || isWithin(modal, &window);
}

// Logs a presentation that the user cannot see or use yet. It continues all the same.
void reportUnusable(const QWidget& window) {
  if (!window.isVisible()) {
    print("Kestrova: the presented screen cannot be seen: the host's window is not shown");
  } else if (isBlockedByDialog(window)) {
    print("Kestrova: the presented screen cannot be used: a modal dialog of the host is open");
  }
}

}  // namespace

void UIViewController::present(const std::shared_ptr<UIViewController>& controller, bool animated,
                               std::function<void()> completion) {
  if (const auto above = parent())
    return above->present(controller, animated, std::move(completion));
  const auto self = shared(this);
  // A motion under way comes to its end first.
  const auto own = presentedBy_.lock();
  const auto moving = presentation_ && presentation_->isBeingDismissed()   ? presentation_
                      : own && own->isMoving() && !own->isBeingDismissed() ? own
                                                                           : nullptr;
  if (moving) {
    moving->whenStill([weak = std::weak_ptr<UIViewController>(self), controller, animated,
                       completion = std::move(completion)]() mutable {
      if (const auto alive = weak.lock()) {
        alive->present(controller, animated, std::move(completion));
      }
    });
    return;
  }
  if (presentation_ || controller->presentedBy_.lock() || (own && own->isBeingDismissed())) {
    print("Kestrova: nothing more is presented: a screen is being presented or dismissed already");
    return;
  }
  const auto window = windowForPresenting();
  if (!window) {
    print("Kestrova: nothing is presented: the presenting screen is in no window");
    return;
  }
  if (!own) reportUnusable(*window->widget()->window());
  presentation_ = std::make_shared<ModalPresentation>(self, controller, window, bool(wrapped_));
  controller->presentedBy_ = presentation_;
  if (wrapped_) {
    window->onHostGone = [weak = std::weak_ptr<ModalPresentation>(presentation_)] {
      if (const auto alive = weak.lock()) alive->abandon();
    };
  }
  const auto presentation = presentation_;
  presentation->show(animated, std::move(completion));
}

void UIViewController::dismiss(bool animated, std::function<void()> completion) {
  if (const auto above = parent()) return above->dismiss(animated, std::move(completion));
  // Held: it may end meanwhile.
  const auto own = presentation_ ? presentation_ : presentedBy_.lock();
  if (own) own->dismiss(animated, std::move(completion));
}

void UIViewController::endPresentation(bool animated) {
  if (const auto own = root().presentedBy_.lock()) own->dismiss(animated, {});
}

bool UIViewController::isVisibleTop() const {
  if (!isAppearing_) return false;
  const auto navigation = navigationController();
  if (!navigation) return true;
  const UIViewController* screen = this;
  while (screen->parent() != navigation) screen = screen->parent().get();
  return navigation->topViewController().get() == screen;
}

void UIViewController::performSegue(std::string_view withIdentifier,
                                    const std::shared_ptr<UIViewController>& sender) {
  const std::string identifier(withIdentifier);
  const auto self = shared(this);
  const auto scene = scene_;
  const auto way =
      scene ? std::find_if(scene->segues.begin(), scene->segues.end(),
                           [&](const auto& each) { return each.identifier == identifier; })
            : std::vector<UIStoryboardScene::Segue>::const_iterator{};
  if (!scene || way == scene->segues.end()) {
    return print("Kestrova: the screen has no segue \"" + identifier + "\"");
  }
  if (const auto above = root().presentation_) {
    above->whenGone([weak = std::weak_ptr<UIViewController>(self), identifier, sender] {
      if (const auto alive = weak.lock()) alive->performSegue(identifier, sender);
    });
    return;
  }
  if (!isVisibleTop() || isBeingDismissed()) {
    return print("Kestrova: the segue \"" + identifier + "\" is dropped: its screen is not on top");
  }
  auto destination = scene->instantiate(way->destination);
  if (!destination) {
    return print("Kestrova: the segue \"" + identifier +
                 "\" leads nowhere: " + destination.error().localizedDescription);
  }
  prepare({identifier, way->kind, self, destination.value()}, sender);
  if (const auto navigation = navigationController();
      navigation && way->kind == UIStoryboardSegue::Kind::push) {
    return navigation->pushViewController(destination.value(), true);
  }
  present(destination.value(), true);
}

std::shared_ptr<UIViewController> UIViewController::contentScreen() {
  return shared(this);
}

std::shared_ptr<UIView> UIViewController::preferredFocusView() {
  const auto order = view_ ? focusOrder(view_) : std::vector<std::shared_ptr<UIView>>();
  return order.empty() ? nullptr : order.front();
}

bool UIViewController::escape() {
  const auto self = shared(this);
  const auto inside = childrenOnDisplay();
  for (const auto& child : inside) {
    if (child->escape()) return true;
  }
  return accessibilityPerformEscape();
}

bool UIViewController::goBack() {
  const auto inside = childrenOnDisplay();
  return std::any_of(inside.begin(), inside.end(),
                     [](const auto& child) { return child->goBack(); });
}

void UIViewController::beginAppearance(bool appearing, bool animated) {
  if (isAppearing_ == appearing) return;
  const auto self = shared(this);
  isAppearing_ = appearing;
  isMoving_ = true;
  animatedAppearance_ = animated;
  if (appearing) {
    if (!wrapped_) view();
    viewWillAppear(animated);
  } else {
    viewWillDisappear(animated);
  }
  const auto inside = childrenOnDisplay();
  for (const auto& child : inside) child->beginAppearance(appearing, animated);
}

void UIViewController::endAppearance() {
  if (!isMoving_) return;
  const auto self = shared(this);
  isMoving_ = false;
  if (isAppearing_) {
    viewDidAppear(animatedAppearance_);
  } else {
    viewDidDisappear(animatedAppearance_);
  }
  const auto inside = childrenOnDisplay();
  for (const auto& child : inside) child->endAppearance();
}

}  // namespace kestrova::platform
