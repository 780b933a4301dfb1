#include "platform/uikit/UIAccessibility.h"

#include <array>
#include <utility>

#include <QtCore/QPointer>
#include <QtGui/QAccessible>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

// The toolkit of this version has no announcement event. Screen readers speak an object of the role
// notification when it is shown, so each announcement is one; it is in no view's tree.
class Announcement final : public QAccessibleInterface {
 public:
  Announcement(QWidget& window, QString text) : window_(&window), text_(std::move(text)) {}

  bool isValid() const override { return window_ != nullptr; }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return parent() ? parent()->window() : nullptr; }
  QAccessibleInterface* parent() const override {
    return window_ ? QAccessible::queryAccessibleInterface(window_) : nullptr;
  }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessible::Role role() const override { return QAccessible::Notification; }
  QAccessible::State state() const override { return {}; }
  QRect rect() const override { return parent() ? parent()->rect() : QRect(); }
  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? text_ : QString();
  }
  void setText(QAccessible::Text, const QString&) override {}

 private:
  QPointer<QWidget> window_;
  QString text_;
};

// Keeps the last announcements: a screen reader asks for the text some time after the event.
void keep(QAccessible::Id announcement) {
  static std::array<QAccessible::Id, 4> last{};
  static std::size_t next = 0;
  const auto former = std::exchange(last[next], announcement);
  next = (next + 1) % last.size();
  // Null if it was deleted with an earlier application object.
  if (former) QAccessible::deleteAccessibleInterface(former);
}

void send(QWidget& widget, QAccessible::Event kind) {
  QAccessibleEvent event(&widget, kind);
  QAccessible::updateAccessibility(&event);
}

void collectText(const UIView& view, UIAccessibilityRole role, std::string& text) {
  if (view.isHidden() || dynamic_cast<const UIControl*>(&view)) return;
  const std::string label = view.accessibilityLabel();
  if (view.accessibilityRole() == role && !label.empty()) {
    if (!text.empty()) text += text.back() == '.' ? " " : ". ";
    text += label;
  }
  for (const auto& subview : view.reachableSubviews()) collectText(*subview, role, text);
}

}  // namespace

std::string accessibilityText(const UIView& view) {
  std::string text;
  collectText(view, UIAccessibilityRole::staticText, text);
  if (text.empty()) collectText(view, UIAccessibilityRole::busy, text);
  return text;
}

void postAccessibilityScreenWillChange(const UIWindow& window) {
  if (QAccessible::isActive() && window.widget() && window.widget()->hasFocus()) {
    send(*window.widget(), QAccessible::Focus);
  }
}

void postAccessibilityScreenChanged(const UIView& view) {
  if (!QAccessible::isActive()) return;
  std::shared_ptr<const UIView> held;
  const UIView* dialog = &view;
  while (dialog && dialog->accessibilityRole() != UIAccessibilityRole::dialog) {
    held = dialog->superview();
    dialog = held.get();
  }
  if (!dialog || !dialog->isReachable()) return;
  send(*dialog->widget(), QAccessible::NameChanged);
  const QWidget* const focused = QApplication::focusWidget();
  if (!focused || !dialog->widget()->isAncestorOf(focused)) {
    send(*dialog->widget(), QAccessible::Focus);
  }
}

void postAccessibilityAnnouncement(const UIView& view, const std::string& text) {
  if (text.empty() || !QAccessible::isActive() || !view.isReachable()) return;
  QWidget& window = *view.window()->widget();
  auto announcement = std::make_unique<Announcement>(window, QString::fromStdString(text));
  auto* const object = announcement.get();
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the toolkit takes ownership.
  keep(QAccessible::registerAccessibleInterface(announcement.release()));
  QAccessibleEvent event(object, QAccessible::ObjectShow);
  QAccessible::updateAccessibility(&event);
}

}  // namespace kestrova::platform
