#pragma once

#include <QtWidgets/QWidget>

namespace host {

// The hotel above its bay in the evening, with its name.
class EveningPicture : public QWidget {
 public:
  using QWidget::QWidget;

  QSize sizeHint() const override { return {320, 168}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace host
