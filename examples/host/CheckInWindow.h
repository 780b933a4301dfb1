#pragma once

#include <memory>

#include <QtWidgets/QWidget>

namespace Ui {
class CheckIn;
}

namespace host {

// The kiosk's one screen: the guest's booking and how far the check-in has come. Upright the
// picture stands above the text, on a wide window at its left.
class CheckInWindow : public QWidget {
 public:
  CheckInWindow();
  ~CheckInWindow() override;
  CheckInWindow(const CheckInWindow&) = delete;
  CheckInWindow& operator=(const CheckInWindow&) = delete;

  // The hotel's style sheet and typeface, for the whole application.
  static void applyHouseStyle();

  // Where a finger would tap to be verified.
  QPoint middleOfButton() const;
  // What guests read where the kiosk cannot help them.
  void sendToFrontDesk();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  // Sizes of type: 0 small, 1 usual, 2 large. By the style sheet.
  void setScale(int scale);

  std::unique_ptr<Ui::CheckIn> form_;
};

}  // namespace host
