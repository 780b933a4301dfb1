#pragma once

#include <QtCore/QPointer>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "platform/uikit/UIView.h"

namespace kestrova::test {

// A finger or the mouse on a view's window, at times that the test gives: each event comes as the
// toolkit would send it, to the widget on which the touch began as long as that can be seen.
class Finger {
 public:
  // Presses at a point of the view's widget.
  Finger(const platform::UIView& view, platform::CGPoint point)
      : view_(view.widget()), point_(at(point)) {
    send(QEvent::MouseButtonPress, Qt::LeftButton);
  }

  Finger& to(platform::CGPoint point, int milliseconds = 20) {
    point_ = at(point);
    time_ += unsigned(milliseconds);
    send(QEvent::MouseMove, Qt::LeftButton);
    return *this;
  }

  void release(int milliseconds = 0) {
    time_ += unsigned(milliseconds);
    send(QEvent::MouseButtonRelease, Qt::NoButton);
  }

 private:
  static QPointF at(platform::CGPoint point) { return {point.x, point.y}; }

  void send(QEvent::Type type, Qt::MouseButtons buttons) {
    if (!view_) return;
    if (!touched_ || !touched_->isVisible()) {
      QWidget* const top = view_->window();
      QWidget* const child = top->childAt(view_->mapTo(top, point_.toPoint()));
      touched_ = child ? child : top;
    }
    const QPointF global = view_->mapToGlobal(point_);
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, touched_->mapFromGlobal(global), global, button, buttons, {});
    event.setTimestamp(time_);
    QApplication::sendEvent(touched_, &event);
  }

  QPointer<QWidget> view_;
  QPointer<QWidget> touched_;
  QPointF point_;
  quint64 time_ = 1000;
};

}  // namespace kestrova::test
