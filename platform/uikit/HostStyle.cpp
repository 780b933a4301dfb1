#include "platform/uikit/HostStyle.h"

#include <QtCore/QEvent>
#include <QtWidgets/QWidget>

namespace kestrova::platform {

bool withoutHostStyle(QWidget& widget, const QEvent& event, const std::function<bool()>& handle,
                      const QSize& least, const QSize& most) {
  const bool isFirst = event.type() == QEvent::Polish;
  if (!isFirst && event.type() != QEvent::StyleChange) return handle();
  const QRect place = widget.geometry();
  const bool used = handle();
  widget.setMinimumSize(least);
  widget.setMaximumSize(most);
  // At a change of the sheet the place is the sheet's already.
  if (isFirst) widget.setGeometry(place);
  widget.setAttribute(Qt::WA_StyledBackground, false);
  return used;
}

bool withoutHostStyle(QWidget& widget, const QEvent& event, const std::function<bool()>& handle) {
  return withoutHostStyle(widget, event, handle, {0, 0}, {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX});
}

}  // namespace kestrova::platform
