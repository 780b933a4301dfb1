#include "platform/uikit/UIStackView.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QWidget>

#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

namespace {

bool beginsWithSpace(QLayoutItem& part) {
  const QLayout* const inside = part.widget() ? part.widget()->layout() : part.layout();
  return inside && inside->count() > 0 && inside->itemAt(0)->spacerItem() &&
         (inside->itemAt(0)->expandingDirections() & Qt::Vertical);
}

}  // namespace

void UIStackView::layoutSubviews() {
  auto* const layout = widget() ? qobject_cast<QBoxLayout*>(widget()->layout()) : nullptr;
  const auto window = this->window();
  if (!layout || !window) return;
  const CGSize size = window->bounds().size;
  const bool isFlat = size.height < kFlat && size.width > size.height;
  const auto direction = isFlat ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
  if (layout->direction() == direction && hasDirection_) return;
  hasDirection_ = true;
  layout->setDirection(direction);
  // Parts of a row are equally wide; of a column the last takes what is free.
  for (int part = 0; part < layout->count(); ++part) {
    layout->setStretch(part, isFlat || part + 1 == layout->count() ? 1 : 0);
    QLayoutItem& item = *layout->itemAt(part);
    item.setAlignment(isFlat && beginsWithSpace(item) ? Qt::AlignVCenter : Qt::Alignment());
  }
}

}  // namespace kestrova::platform
