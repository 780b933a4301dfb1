#include "examples/host/CheckInWindow.h"

#include <algorithm>

#include <QtCore/QFile>
#include <QtGui/QFontDatabase>
#include <QtGui/QResizeEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include "ui_CheckIn.h"

namespace host {

CheckInWindow::CheckInWindow() : form_(std::make_unique<Ui::CheckIn>()) {
  form_->setupUi(this);
  connect(form_->frontDesk, &QPushButton::clicked, this, [this] { sendToFrontDesk(); });
}

CheckInWindow::~CheckInWindow() = default;

void CheckInWindow::applyHouseStyle() {
  for (const char* const face : {":/Light.ttf", ":/Regular.ttf", ":/SemiBold.ttf"}) {
    QFontDatabase::addApplicationFont(face);
  }
  QFile style(":/host.qss");
  if (style.open(QIODevice::ReadOnly)) qApp->setStyleSheet(style.readAll());
}

QPoint CheckInWindow::middleOfButton() const {
  return form_->verify->mapTo(this, form_->verify->rect().center());
}

void CheckInWindow::sendToFrontDesk() {
  form_->lead->setText("Our team at the front desk will check you in. They are expecting you.");
}

void CheckInWindow::resizeEvent(QResizeEvent* event) {
  const QSize size = event->size();
  const bool isWide = size.width() > size.height();
  form_->halves->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  form_->halves->setStretchFactor(form_->picture, isWide ? 5 : 1);
  form_->halves->setStretchFactor(form_->panel, isWide ? 4 : 0);
  setScale(size.width() < 360 ? 0 : std::min(size.width(), size.height()) < 700 ? 1 : 2);
  QWidget::resizeEvent(event);
}

void CheckInWindow::setScale(int scale) {
  if (property("scale") == scale) return;
  setProperty("scale", scale);
  for (QWidget* const widget : findChildren<QWidget*>()) {
    style()->unpolish(widget);
    style()->polish(widget);
  }
}

}  // namespace host
