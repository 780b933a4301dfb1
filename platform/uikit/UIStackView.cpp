#include "platform/uikit/UIStackView.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QWidget>

#include "platform/uikit/UIKeyboard.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

// Points.
constexpr double kNarrow = 360;
constexpr double kNarrowMargin = 20;
constexpr double kMaxColumns = 840;
constexpr int kBetweenColumns = 24;
// Relative widths of the two columns.
constexpr int kLeftColumn = 2;
constexpr int kRightColumn = 3;

// Scale factor of vertical distances at a visible height.
double density(double height) {
  constexpr double kLow = 400;
  constexpr double kVeryLow = 200;
  if (height < kVeryLow) return 0.25;
  return height < kLow ? 0.5 : 1;
}

// The toolkit's own item never lets a layout with height-for-width be lower than its preferred
// height.
class Item : public QWidgetItem {
 public:
  using QWidgetItem::QWidgetItem;
  int minimumHeightForWidth(int width) const override {
    const QLayout* const layout = wid->layout();
    return layout ? layout->totalMinimumHeightForWidth(width) : heightForWidth(width);
  }
};

struct Part {
  QWidget* widget;
  Qt::Alignment alignment;
};

std::vector<Part> takeParts(QLayout& layout) {
  std::vector<Part> parts;
  while (const auto item = std::unique_ptr<QLayoutItem>(layout.takeAt(0))) {
    if (item->layout()) {
      const auto inner = takeParts(*item->layout());
      parts.insert(parts.end(), inner.begin(), inner.end());
    } else if (item->widget()) {
      parts.push_back({item->widget(), item->alignment()});
    }
  }
  return parts;
}

QBoxLayout& addBox(QBoxLayout& to, QBoxLayout::Direction direction, int spacing, int stretch) {
  auto box = std::make_unique<QBoxLayout>(direction);
  box->setSpacing(spacing);
  QBoxLayout& added = *box;
  to.addLayout(box.release(), stretch);
  return added;
}

void add(QBoxLayout& to, const Part& part, int stretch = 0) {
  auto item = std::make_unique<Item>(part.widget);
  item->setAlignment(part.alignment);
  to.addItem(item.release());
  to.setStretch(to.count() - 1, stretch);
}

void arrange(QBoxLayout& layout, bool isFlat, bool centersRow) {
  using enum QBoxLayout::Direction;
  auto parts = takeParts(layout);
  const int spacing = layout.spacing();
  if (!isFlat || parts.size() < 2) {
    for (Part& part : parts) add(layout, {part.widget, part.alignment & ~Qt::AlignVCenter});
    return;
  }
  QBoxLayout& row = addBox(layout, LeftToRight, kBetweenColumns, 1);
  if (centersRow) parts[0].alignment = parts[1].alignment = Qt::AlignVCenter;
  add(row, parts[0], kLeftColumn);
  if (!centersRow) {
    QBoxLayout& column = addBox(row, TopToBottom, spacing, kRightColumn);
    for (std::size_t index = 1; index < parts.size(); ++index) add(column, parts[index]);
    return;
  }
  add(row, parts[1], kRightColumn);
  for (std::size_t index = 2; index < parts.size(); ++index) {
    QBoxLayout& below = addBox(layout, LeftToRight, 0, 0);
    below.addStretch(kLeftColumn);
    below.addSpacing(kBetweenColumns);
    add(below, parts[index], kRightColumn);
  }
}

}  // namespace

void UIStackView::setCentersRow(bool centers) {
  centersRow_ = centers;
  setNeedsLayout();
}

void UIStackView::layoutSubviews() {
  auto* const layout = widget() ? qobject_cast<QBoxLayout*>(widget()->layout()) : nullptr;
  const auto window = this->window();
  if (!layout || !window) return;
  const CGSize size = window->bounds().size;
  const bool isFlat = size.height < kFlat && size.width > size.height;
  const bool isFirst = !design_;
  if (isFirst) {
    const QMargins margins = layout->contentsMargins();
    design_ = Design{{double(margins.top()), double(margins.left()), double(margins.bottom()),
                      double(margins.right())},
                     layout->spacing()};
  }

  const double factor = density(size.height - UIKeyboard::shared().coveredHeight(*window));
  const auto vertical = [&](double length) { return int(std::lround(length * factor)); };
  const auto side = [&](double length) {
    if (size.width < kNarrow) length = std::min(length, kNarrowMargin);
    if (isFlat) length = std::max(length, (bounds().size.width - kMaxColumns) / 2);
    return int(std::lround(length));
  };
  const UIEdgeInsets& margins = design_->margins;
  const QMargins wanted(side(margins.left), vertical(margins.top), side(margins.right),
                        vertical(margins.bottom));
  if (layout->contentsMargins() != wanted) layout->setContentsMargins(wanted);
  const int spacing = vertical(design_->spacing);
  const bool isOther = layout->spacing() != spacing || isFlat_ != isFlat || isFirst;
  isFlat_ = isFlat;
  if (!isOther) return;
  layout->setSpacing(spacing);
  arrange(*layout, isFlat, centersRow_);
}

}  // namespace kestrova::platform
