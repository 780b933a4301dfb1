#include "platform/uikit/TableAccessibility.h"

#include <memory>
#include <vector>

#include <QtGui/QAccessible>
#include <QtWidgets/QAccessibleWidget>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "platform/uikit/UITableView.h"

namespace kestrova::platform {

namespace {

std::shared_ptr<UITableView> tableOf(const QWidget* widget) {
  return std::dynamic_pointer_cast<UITableView>(UIView::of(widget));
}

// The toolkit takes the object over, which the analysis cannot see.
template <typename Object>
QAccessible::Id handOver(std::unique_ptr<Object> object) {
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks)
  return QAccessible::registerAccessibleInterface(object.release());
}

// A row, whether a cell shows it or not.
class Row final : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  Row(QWidget& widget, std::size_t row) : widget_(&widget), row_(row) {}

  // The toolkit logs a warning for each use of an invalid object, and assistive technology keeps
  // references to removed rows for a while: such a row stays valid and reports itself invisible.
  bool isValid() const override { return true; }
  bool exists() const {
    const auto table = tableOf(widget_);
    return table && row_ < table->accessibilityRowCount();
  }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return parent()->window(); }
  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(widget_);
  }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessible::Role role() const override { return QAccessible::ListItem; }

  QString text(QAccessible::Text kind) const override {
    if (kind != QAccessible::Name || !exists()) return {};
    return QString::fromStdString(tableOf(widget_)->accessibilityRowLabel(row_));
  }
  void setText(QAccessible::Text, const QString&) override {}

  QRect rect() const override {
    if (!exists()) return {};
    const auto table = tableOf(widget_);
    const CGRect rect = table->accessibilityRowRect(row_);
    const CGPoint origin = table->contentOffset();
    const QRectF local(rect.minX() - origin.x, rect.minY() - origin.y, rect.size.width,
                       rect.size.height);
    return {widget_->mapToGlobal(local.toRect().topLeft()), local.toRect().size()};
  }

  QAccessible::State state() const override {
    QAccessible::State state;
    if (!exists()) {
      state.invisible = true;
      return state;
    }
    const auto table = tableOf(widget_);
    state.selectable = true;
    state.focusable = true;
    state.selected = table->isAccessibilityRowSelected(row_);
    state.focused = table->accessibilityFocusedRow() == row_;
    state.invisible = !widget_->isVisible();
    state.offscreen = (rect() & QRect(widget_->mapToGlobal(QPoint()), widget_->size())).isEmpty();
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                : nullptr;
  }
  QStringList actionNames() const override {
    return exists() ? QStringList{pressAction()} : QStringList();
  }
  void doAction(const QString& name) override {
    if (name != pressAction() || !exists()) return;
    const auto table = tableOf(widget_);
    if (table->isReachable()) table->accessibilityActivateRow(row_);
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

 private:
  QWidget* widget_;
  std::size_t row_;
};

class Table final : public QAccessibleWidget {
 public:
  explicit Table(QWidget& widget) : QAccessibleWidget(&widget, QAccessible::List) {}
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;
  ~Table() override {
    for (const auto id : rows_) QAccessible::deleteAccessibleInterface(id);
  }

  QString text(QAccessible::Text kind) const override {
    const auto table = tableOf(widget());
    return kind == QAccessible::Name && table ? QString::fromStdString(table->accessibilityLabel())
                                              : QString();
  }
  int childCount() const override {
    const auto table = tableOf(widget());
    return table ? int(table->accessibilityRowCount()) : 0;
  }
  QAccessibleInterface* child(int index) const override {
    if (index < 0 || index >= childCount()) return nullptr;
    while (rows_.size() <= std::size_t(index)) {
      rows_.push_back(handOver(std::make_unique<Row>(*widget(), rows_.size())));
    }
    return QAccessible::accessibleInterface(rows_[std::size_t(index)]);
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      if (QAccessible::accessibleInterface(rows_[row]) == child) return int(row);
    }
    return -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    for (int row = 0; row < childCount(); ++row) {
      QAccessibleInterface* item = child(row);
      if (!item->state().offscreen && item->rect().contains(x, y)) return item;
    }
    return nullptr;
  }
  QAccessibleInterface* focusChild() const override {
    const auto table = tableOf(widget());
    const auto row = table ? table->accessibilityFocusedRow() : std::nullopt;
    return row ? child(int(*row)) : nullptr;
  }

 private:
  // As far as anybody has asked; a row keeps its object when what it shows changes.
  mutable std::vector<QAccessible::Id> rows_;
};

void tell(UITableView& table, QAccessible::Event kind, std::size_t row) {
  if (!QAccessible::isActive() || !table.widget() || row >= table.accessibilityRowCount()) return;
  QAccessibleEvent event(table.widget(), kind);
  event.setChild(int(row));
  QAccessible::updateAccessibility(&event);
}

}  // namespace

void TableAccessibility::attach(UITableView& table) {
  handOver(std::make_unique<Table>(*table.widget()));
}

void TableAccessibility::rowsChanged(UITableView& table) {
  if (!QAccessible::isActive() || !table.widget()) return;
  QAccessibleTableModelChangeEvent event(table.widget(),
                                         QAccessibleTableModelChangeEvent::ModelReset);
  QAccessible::updateAccessibility(&event);
}

void TableAccessibility::selectionChanged(UITableView& table, std::size_t row) {
  tell(table, QAccessible::Selection, row);
}

void TableAccessibility::focusChanged(UITableView& table, std::size_t row) {
  tell(table, QAccessible::Focus, row);
}

void TableAccessibility::focusLost(UITableView& table) {
  QWidget* const focused = QApplication::focusWidget();
  if (!QAccessible::isActive() || !table.widget() || !focused) return;
  QAccessibleEvent event(focused, QAccessible::Focus);
  QAccessible::updateAccessibility(&event);
}

}  // namespace kestrova::platform
