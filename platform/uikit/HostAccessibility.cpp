#include "platform/uikit/HostAccessibility.h"

#include <algorithm>
#include <vector>

#include <QtCore/QTimer>
#include <QtGui/QAccessible>
#include <QtGui/QAction>
#include <QtWidgets/QAccessibleWidget>
#include <QtWidgets/QWidget>

#include "platform/uikit/UIView.h"

namespace kestrova::platform {

namespace {

struct Cover {
  const HostAccessibility* owner;
  QWidget* window;
  QWidget* cover;
};

// The active covers, oldest first; rarely more than one.
std::vector<Cover>& covers() {
  static auto& list = *new std::vector<Cover>;
  return list;
}

std::vector<QAccessibleInterface*>& standIns() {
  static auto& list = *new std::vector<QAccessibleInterface*>;
  return list;
}

const QWidget* topmostCover(const QWidget& window) {
  const auto found = std::find_if(covers().rbegin(), covers().rend(),
                                  [&](const Cover& each) { return each.window == &window; });
  return found == covers().rend() ? nullptr : found->cover;
}

bool isInside(const QWidget* widget, const QWidget& outer) {
  while (widget && widget != &outer) widget = widget->parentWidget();
  return widget != nullptr;
}

// A menu belongs to the window that opens it.
const QWidget& windowOf(const QWidget& widget) {
  const QWidget* window = widget.window();
  while (window->windowType() == Qt::Popup && window->parentWidget()) {
    window = window->parentWidget()->window();
  }
  return *window;
}

class StandIn : public QAccessibleWidget {
 public:
  StandIn(QWidget& widget, QAccessible::Role role) : QAccessibleWidget(&widget, role) {
    standIns().push_back(this);
  }
  ~StandIn() override { std::erase(standIns(), this); }
  StandIn(const StandIn&) = delete;
  StandIn& operator=(const StandIn&) = delete;

  QWidget& shown() const { return *widget(); }
};

// Stands in for a hidden widget: no text, no children, no actions.
class Nothing final : public StandIn {
 public:
  explicit Nothing(QWidget& widget) : StandIn(widget, QAccessible::NoRole) {}

  int childCount() const override { return 0; }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  QString text(QAccessible::Text) const override { return {}; }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.invisible = true;
    state.disabled = true;
    return state;
  }
  void* interface_cast(QAccessible::InterfaceType) override { return nullptr; }
};

// The host's window, with the cover as its only child.
class CoveredWindow final : public StandIn {
 public:
  explicit CoveredWindow(QWidget& window) : StandIn(window, QAccessible::Window) {}

  int childCount() const override { return topmostCover(shown()) ? 1 : 0; }
  QAccessibleInterface* child(int index) const override {
    auto* const cover = const_cast<QWidget*>(topmostCover(shown()));
    return index == 0 && cover ? QAccessible::queryAccessibleInterface(cover) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    return child && child->object() == topmostCover(shown()) ? 0 : -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    auto* const cover = child(0);
    return cover && cover->rect().contains(x, y) ? cover : nullptr;
  }
};

void discard(QAccessibleInterface* object) {
  if (object) QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(object));
}

// Objects of our own views stay: UIView::isReachable() makes them inert.
bool isOurs(const QWidget& widget) {
  return UIView::of(&widget) || UIView::of(widget.parentWidget());
}

// Discards the toolkit's accessible objects, so that it calls standIn() for new ones.
void discardObjects(QWidget& window) {
  for (QWidget* const widget : window.findChildren<QWidget*>()) {
    if (!isOurs(*widget) && HostAccessibility::isCovered(*widget)) {
      discard(QAccessible::queryAccessibleInterface(widget));
    }
  }
  // Menu items.
  for (QAction* const action : window.findChildren<QAction*>()) {
    discard(QAccessible::queryAccessibleInterface(action));
  }
  if (!isOurs(window)) discard(QAccessible::queryAccessibleInterface(&window));
}

}  // namespace

HostAccessibility::HostAccessibility(QWidget& cover) {
  covers().push_back({this, cover.window(), &cover});
  // Deferred, because an action of one of these objects may be presenting the cover.
  QTimer::singleShot(0, &cover, [&cover] {
    if (topmostCover(*cover.window()) == &cover) discardObjects(*cover.window());
  });
}

HostAccessibility::~HostAccessibility() {
  std::erase_if(covers(), [this](const Cover& each) { return each.owner == this; });
  const auto all = standIns();
  for (auto* const each : all) {
    const auto* const widget = static_cast<const QWidget*>(each->object());
    if (!widget || !topmostCover(windowOf(*widget))) discard(each);
  }
}

bool HostAccessibility::isCovered(const QWidget& widget) {
  if (covers().empty()) return false;
  const QWidget& window = windowOf(widget);
  const QWidget* const cover = topmostCover(window);
  return cover && &widget != &window && !isInside(&widget, *cover);
}

QAccessibleInterface* HostAccessibility::standIn(QObject* object) {
  auto* const widget = qobject_cast<QWidget*>(object);
  if (covers().empty() || !widget) return nullptr;
  // NOLINTBEGIN(cppcoreguidelines-owning-memory): the toolkit takes it over.
  if (isCovered(*widget)) return new Nothing(*widget);
  return topmostCover(*widget) ? new CoveredWindow(*widget) : nullptr;
  // NOLINTEND(cppcoreguidelines-owning-memory)
}

}  // namespace kestrova::platform
