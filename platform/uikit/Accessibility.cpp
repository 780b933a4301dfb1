#include <algorithm>
#include <array>
#include <utility>

#include <QtGui/QAccessible>
#include <QtWidgets/QAccessibleWidget>
#include <QtWidgets/QLineEdit>

#include "platform/uikit/AccessibleView.h"
#include "platform/uikit/HostAccessibility.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIControl.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

struct RoleName {
  UIAccessibilityRole role;
  QAccessible::Role native;
  const char* name;
};

constexpr std::array<RoleName, 12> kRoles{{
    {UIAccessibilityRole::none, QAccessible::Grouping, "group"},
    {UIAccessibilityRole::staticText, QAccessible::StaticText, "text"},
    {UIAccessibilityRole::header, QAccessible::Heading, "header"},
    {UIAccessibilityRole::image, QAccessible::Graphic, "image"},
    {UIAccessibilityRole::button, QAccessible::Button, "button"},
    {UIAccessibilityRole::link, QAccessible::Link, "link"},
    {UIAccessibilityRole::textField, QAccessible::EditableText, "text field"},
    {UIAccessibilityRole::list, QAccessible::List, "list"},
    {UIAccessibilityRole::listItem, QAccessible::ListItem, "list item"},
    {UIAccessibilityRole::busy, QAccessible::Animation, "busy"},
    {UIAccessibilityRole::alert, QAccessible::AlertMessage, "alert"},
    {UIAccessibilityRole::dialog, QAccessible::Dialog, "dialog"},
}};

bool isOneObject(UIAccessibilityRole role) {
  return role == UIAccessibilityRole::button || role == UIAccessibilityRole::link ||
         role == UIAccessibilityRole::image || role == UIAccessibilityRole::textField;
}

bool isWorthTelling(const UIView& view) {
  if (view.isHidden() || !view.widget()) return false;
  if (view.accessibilityRole() != UIAccessibilityRole::none || view.isFocusable()) return true;
  const auto subviews = view.reachableSubviews();
  return std::any_of(subviews.begin(), subviews.end(),
                     [](const auto& subview) { return isWorthTelling(*subview); });
}

// The widget that stands for a view: of a text field the line edit, which has the focus.
QWidget* standIn(const UIView& view) {
  QWidget* const widget = view.widget();
  if (!widget || !dynamic_cast<const UITextField*>(&view)) return widget;
  return widget->findChild<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly);
}

bool liesWithin(const CGRect& inner, const CGRect& outer) {
  return inner.size.height > 0 && inner.size.height < outer.size.height &&
         inner.minX() >= outer.minX() && inner.minY() >= outer.minY() &&
         inner.maxX() <= outer.maxX() && inner.maxY() <= outer.maxY();
}

// In the order of the eye: bars that lie over a screen before the screen.
std::vector<std::shared_ptr<UIView>> inReadingOrder(
    const std::vector<std::shared_ptr<UIView>>& views) {
  std::vector<std::shared_ptr<UIView>> order;
  for (const auto& view : views) {
    const auto below = std::find_if(order.begin(), order.end(), [&view](const auto& earlier) {
      return liesWithin(view->frame(), earlier->frame());
    });
    order.insert(below, view);
  }
  return order;
}

QList<QWidget*> childrenOf(const UIView& view) {
  QList<QWidget*> children;
  if (isOneObject(view.accessibilityRole())) return children;
  // Of a window what is presented last, which covers the rest.
  const bool isWindow = dynamic_cast<const UIWindow*>(&view) != nullptr;
  for (const auto& each : isWindow ? view.subviews() : inReadingOrder(view.reachableSubviews())) {
    if (!isWorthTelling(*each)) continue;
    if (isWindow) children.clear();
    children.push_back(standIn(*each));
  }
  return children;
}

class ViewObject : public QAccessibleWidget {
 public:
  explicit ViewObject(QWidget& widget) : QAccessibleWidget(&widget) {}

  virtual std::shared_ptr<UIView> view() const { return UIView::of(widget()); }

  QAccessible::Role role() const override {
    const auto of = view();
    if (!of) return QAccessible::NoRole;
    if (const auto* const window = dynamic_cast<const UIWindow*>(of.get())) {
      if (widget()->isWindow()) return QAccessible::Window;
      // A covering window has the focus during a motion and is not spoken; the dialogs in it are.
      return window->isInsideForm() ? QAccessible::Grouping : QAccessible::Client;
    }
    const auto role = of->accessibilityRole();
    const auto* const found = std::find_if(kRoles.begin(), kRoles.end(),
                                           [role](const auto& each) { return each.role == role; });
    return found->native;
  }

  QString text(QAccessible::Text kind) const override {
    const auto of = view();
    if (of && kind == QAccessible::Value) return QString::fromStdString(of->accessibilityValue());
    if (of && kind == QAccessible::Description && !of->accessibilityHint().empty()) {
      return QString::fromStdString(of->accessibilityHint());
    }
    if (!of || kind != QAccessible::Name) return QAccessibleWidget::text(kind);
    const std::string label = of->accessibilityLabel();
    return label.empty() ? QAccessibleWidget::text(kind) : QString::fromStdString(label);
  }

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    const auto of = view();
    if (!of) return state;
    if (const auto* const control = dynamic_cast<const UIControl*>(of.get())) {
      state.disabled = !control->isEnabled();
    }
    if (!of->isReachable()) state.invisible = true;
    state.focusable = of->isFocusable() && !state.disabled && !state.invisible;
    state.selectable = of->accessibilityRole() == UIAccessibilityRole::listItem;
    const auto isExpanded = of->isAccessibilityExpanded();
    state.expandable = isExpanded.has_value();
    state.expanded = isExpanded == true;
    state.collapsed = isExpanded == false;
    state.selected = of->isAccessibilitySelected();
    state.busy = of->accessibilityRole() == UIAccessibilityRole::busy;
    const auto role = of->accessibilityRole();
    state.modal = role == UIAccessibilityRole::dialog || role == UIAccessibilityRole::alert;
    return state;
  }

  QAccessibleInterface* parent() const override {
    const auto of = view();
    const auto above = of ? of->superview() : nullptr;
    return above ? QAccessible::queryAccessibleInterface(above->widget())
                 : QAccessibleWidget::parent();
  }

  int childCount() const override { return int(children().size()); }

  QAccessibleInterface* child(int index) const override {
    return QAccessible::queryAccessibleInterface(children().value(index));
  }

  int indexOfChild(const QAccessibleInterface* child) const override {
    const auto* const widget = child ? qobject_cast<QWidget*>(child->object()) : nullptr;
    return int(children().indexOf(widget));
  }

  QStringList actionNames() const override {
    const auto of = view();
    if (!of || !of->isReachable()) return {};
    QStringList names = QAccessibleWidget::actionNames();
    const auto role = of->accessibilityRole();
    const bool isPressed =
        role == UIAccessibilityRole::button || role == UIAccessibilityRole::link ||
        role == UIAccessibilityRole::textField || role == UIAccessibilityRole::listItem;
    if (isPressed && !state().disabled) names.prepend(pressAction());
    return names;
  }

  void doAction(const QString& name) override {
    const auto of = view();
    // Assistive technology may keep an object whose view is covered by now.
    if (!of || !of->isReachable()) return;
    if (name == pressAction()) {
      of->accessibilityActivate();
    } else if (name == setFocusAction()) {
      if (!state().disabled) of->becomeFocused();
    } else {
      QAccessibleWidget::doAction(name);
    }
  }

 private:
  QList<QWidget*> children() const {
    const auto of = view();
    return of ? childrenOf(*of) : QList<QWidget*>();
  }
};

// A text field's, with its text; stands on the line edit.
class FieldObject : public ViewObject,
                    public QAccessibleTextInterface,
                    public QAccessibleEditableTextInterface {
 public:
  explicit FieldObject(QLineEdit& edit) : ViewObject(edit), edit_(edit) {}

  std::shared_ptr<UIView> view() const override { return UIView::of(edit_.parentWidget()); }

  QAccessible::State state() const override {
    QAccessible::State state = ViewObject::state();
    state.editable = !state.disabled;
    state.selectableText = true;
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
    if (type == QAccessible::EditableTextInterface) {
      return static_cast<QAccessibleEditableTextInterface*>(this);
    }
    return ViewObject::interface_cast(type);
  }

  using ViewObject::text;
  QString text(int start, int end) const override { return edit_.text().mid(start, end - start); }
  int characterCount() const override { return int(edit_.text().size()); }
  int cursorPosition() const override { return edit_.cursorPosition(); }
  void setCursorPosition(int position) override { edit_.setCursorPosition(position); }

  int selectionCount() const override { return edit_.hasSelectedText() ? 1 : 0; }
  void selection(int, int* start, int* end) const override {
    *start = std::max(0, edit_.selectionStart());
    *end = *start + edit_.selectionLength();
  }
  void addSelection(int start, int end) override { setSelection(0, start, end); }
  void removeSelection(int) override { edit_.deselect(); }
  void setSelection(int, int start, int end) override { edit_.setSelection(start, end - start); }

  QRect characterRect(int offset) const override {
    const QFontMetrics metrics = edit_.fontMetrics();
    const QString all = edit_.text();
    const QRect cursor = edit_.inputMethodQuery(Qt::ImCursorRectangle).toRect();
    const int x = cursor.center().x() + metrics.horizontalAdvance(all.left(offset)) -
                  metrics.horizontalAdvance(all.left(edit_.cursorPosition()));
    const QRect place(x, cursor.top(), metrics.horizontalAdvance(all.mid(offset, 1)),
                      cursor.height());
    return place.translated(edit_.mapToGlobal(QPoint()));
  }
  int offsetAtPoint(const QPoint& point) const override {
    return edit_.cursorPositionAt(edit_.mapFromGlobal(point));
  }
  void scrollToSubstring(int start, int) override { edit_.setCursorPosition(start); }
  QString attributes(int, int* start, int* end) const override {
    *start = 0;
    *end = characterCount();
    return {};
  }

  void deleteText(int start, int end) override { replaceText(start, end, {}); }
  void insertText(int offset, const QString& text) override { replaceText(offset, offset, text); }
  void replaceText(int start, int end, const QString& text) override {
    const auto field = std::dynamic_pointer_cast<UITextField>(view());
    if (!field || !field->beginTyping()) return;
    edit_.setSelection(start, end - start);
    edit_.insert(text);
  }

 private:
  QLineEdit& edit_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
  auto* const widget = qobject_cast<QWidget*>(object);
  if (!widget || !UIView::of(widget)) return HostAccessibility::standIn(object);
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the toolkit takes it over.
  return new ViewObject(*widget);
}

void tell(const UIView& view, QAccessible::Event kind) {
  // A view that is still being made is not known to anybody.
  if (!QAccessible::isActive() || view.weak_from_this().expired()) return;
  QWidget* const widget = standIn(view);
  if (!widget) return;
  QAccessibleEvent event(widget, kind);
  QAccessible::updateAccessibility(&event);
}

std::string nameOf(QAccessible::Role role) {
  if (role == QAccessible::Window || role == QAccessible::Client) return "window";
  const auto* const found = std::find_if(kRoles.begin(), kRoles.end(),
                                         [role](const auto& each) { return each.native == role; });
  return found == kRoles.end() ? "object" : found->name;
}

std::string quoted(const QString& text) {
  return " \"" + text.toStdString() + "\"";
}

void write(QAccessibleInterface& object, int level, std::string& lines) {
  const auto state = object.state();
  lines.append(std::size_t(level) * 2, ' ').append(nameOf(object.role()));
  const QString name = object.text(QAccessible::Name);
  if (!name.isEmpty()) lines += quoted(name);
  const QString value = object.text(QAccessible::Value);
  if (!value.isEmpty()) lines += " value" + quoted(value);
  if (state.disabled) lines += " disabled";
  if (state.selected) lines += " selected";
  if (state.expandable) lines += state.expanded ? " expanded" : " collapsed";
  if (state.focusable) lines += " focusable";
  if (state.focused) lines += " focused";
  lines += '\n';
  for (int index = 0; index < object.childCount(); ++index) {
    if (auto* const child = object.child(index)) write(*child, level + 1, lines);
  }
}

}  // namespace

void AccessibleView::install() {
  QAccessible::installFactory(make);
}

void AccessibleView::registerEditor(QWidget& lineEdit) {
  // The toolkit has made one of its own as the line edit was made.
  if (auto* const former = QAccessible::queryAccessibleInterface(&lineEdit)) {
    QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(former));
  }
  // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the toolkit takes it over.
  QAccessible::registerAccessibleInterface(new FieldObject(static_cast<QLineEdit&>(lineEdit)));
}  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)

void AccessibleView::nameChanged(const UIView& view) {
  tell(view, QAccessible::NameChanged);
}

void AccessibleView::focusGained(const UIView& view) {
  tell(view, QAccessible::Focus);
}

void AccessibleView::stateChanged(const UIView& view) {
  if (!QAccessible::isActive() || view.weak_from_this().expired() || !standIn(view)) return;
  QAccessible::State changed;
  changed.disabled = true;
  QAccessibleStateChangeEvent event(standIn(view), changed);
  QAccessible::updateAccessibility(&event);
}

std::string accessibilityTree(const UIView& view) {
  std::string lines;
  if (QWidget* const widget = standIn(view)) {
    if (auto* const object = QAccessible::queryAccessibleInterface(widget)) {
      write(*object, 0, lines);
    }
  }
  return lines;
}

}  // namespace kestrova::platform
