#include "platform/uikit/ViewPlaceholder.h"

#include <QtCore/QEvent>

#include "platform/uikit/UIWindow.h"

namespace kestrova::platform {

ViewPlaceholder::ViewPlaceholder(const std::function<std::shared_ptr<UIView>()>& make,
                                 QWidget* parent)
    : QWidget(parent), view_(make()) {
  if (!view_) return;
  window_ = UIWindow::inside(*this);
  view_->fillSuperview();
  window_->addSubview(view_);
  setSizePolicy(view_->widget()->sizePolicy());
  window_->widget()->installEventFilter(this);
}

ViewPlaceholder::~ViewPlaceholder() = default;

QWidget* ViewPlaceholder::viewWidget() const {
  return view_ ? view_->widget() : nullptr;
}

QSize ViewPlaceholder::sizeHint() const {
  const QWidget* const widget = viewWidget();
  return widget ? widget->sizeHint() : QWidget::sizeHint();
}

QSize ViewPlaceholder::minimumSizeHint() const {
  const QWidget* const widget = viewWidget();
  return widget ? widget->minimumSizeHint() : QWidget::minimumSizeHint();
}

bool ViewPlaceholder::hasHeightForWidth() const {
  const QWidget* const widget = viewWidget();
  return widget && widget->hasHeightForWidth();
}

int ViewPlaceholder::heightForWidth(int width) const {
  const QWidget* const widget = viewWidget();
  return widget ? widget->heightForWidth(width) : -1;
}

bool ViewPlaceholder::eventFilter(QObject* object, QEvent* event) {
  // The view wants another size.
  if (event->type() == QEvent::LayoutRequest) updateGeometry();
  return QWidget::eventFilter(object, event);
}

bool ViewPlaceholder::event(QEvent* event) {
  const bool used = QWidget::event(event);
  // A host's style sheet paints no ground behind the view's round corners.
  if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange) {
    setAttribute(Qt::WA_StyledBackground, false);
  }
  return used;
}

}  // namespace kestrova::platform
