#include "platform/uikit/UIStackView.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QWidget>

#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

void UIStackView::layoutSubviews() {
  auto* const layout = widget() ? qobject_cast<QBoxLayout*>(widget()->layout()) : nullptr;
  const auto window = this->window();
  if (!layout || !window) return;
  const CGSize size = window->bounds().size;
  const bool isFlat = size.height < kFlat && size.width > size.height;
  const auto direction = isFlat ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
  if (layout->direction() != direction) layout->setDirection(direction);
}

}  // namespace kestrova::platform
