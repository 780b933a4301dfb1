#include "platform/uikit/UIKeyboard.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <QtCore/QRectF>
#include <QtGui/QGuiApplication>
#include <QtGui/QInputMethod>
#include <QtWidgets/QWidget>

#include "platform/foundation/NotificationCenter.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

UIKeyboard& UIKeyboard::shared() {
  static UIKeyboard keyboard;
  return keyboard;
}

void UIKeyboard::watch() {
  if (isWatching_ || !qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return;
  isWatching_ = true;
  const auto* const method = QGuiApplication::inputMethod();
  const auto changed = [this, method] {
    const QRectF place = method->keyboardRectangle();
    inputMethodChanged(method->isVisible(),
                       {{place.x(), place.y()}, {place.width(), place.height()}});
  };
  QObject::connect(method, &QInputMethod::visibleChanged, method, changed);
  QObject::connect(method, &QInputMethod::keyboardRectangleChanged, method, changed);
  // The next application has an input method of its own.
  qAddPostRoutine([] { shared() = UIKeyboard(); });
}

void UIKeyboard::inputMethodChanged(bool visible, const CGRect& rectangle) {
  isVisible_ = visible && rectangle.size.width > 0 && rectangle.size.height > 0;
  rectangle_ = rectangle;
  if (isPosting_) return;
  isPosting_ = true;
  // An observer may hide the keyboard again, or end the editing that it is for.
  while (isVisible_ != isShown_ || (isShown_ && shownAt_ != rectangle_)) {
    isShown_ = isVisible_;
    if (isShown_) shownAt_ = rectangle_;
    post(isShown_ ? UIKeyboardWillShowNotification : UIKeyboardWillHideNotification);
  }
  isPosting_ = false;
}

double UIKeyboard::coveredHeight(const UIView& view) const {
  const QWidget* const widget = view.widget();
  if (!isShown_ || !widget) return 0;
  const QRect place(widget->mapTo(widget->window(), QPoint(0, 0)), widget->size());
  const QRectF covered(shownAt_.minX(), shownAt_.minY(), shownAt_.size.width, shownAt_.size.height);
  if (!covered.intersects(place)) return 0;
  return std::ceil(std::min(place.y() + place.height() - covered.y(), double(place.height())));
}

void UIKeyboard::post(std::string_view name) const {
  Notification notification;
  notification.name = name;
  notification.userInfo.emplace(UIKeyboardFrameBeginUserInfoKey, shownAt_);
  NotificationCenter::defaultCenter().post(notification);
}

}  // namespace kestrova::platform
