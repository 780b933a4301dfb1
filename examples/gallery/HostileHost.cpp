#include "examples/gallery/HostileHost.h"

#include <QtGui/QFont>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyleFactory>

namespace kestrova::gallery {

void makeHostile(QApplication& application) {
  application.setStyle(QStyleFactory::create("Windows"));
  QPalette dark(QColor(20, 24, 30), QColor(30, 30, 34));
  dark.setColor(QPalette::Base, QColor(10, 10, 12));
  dark.setColor(QPalette::Text, Qt::green);
  dark.setColor(QPalette::Highlight, Qt::magenta);
  QApplication::setPalette(dark);
  QApplication::setFont(QFont("Courier", 22, QFont::Bold));
  application.setStyleSheet(
      "* { background: red; color: lime; font: 30px Courier; padding: 12px; margin: 9px;"
      "    border: 3px solid yellow; min-height: 60px }");
}

}  // namespace kestrova::gallery
