// A bare window of the toolkit with one label; ends after its first frame.

#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>

namespace {

class Label : public QLabel {
 public:
  using QLabel::QLabel;

 protected:
  void paintEvent(QPaintEvent* event) override {
    QLabel::paintEvent(event);
    QCoreApplication::exit(0);
  }
};

}  // namespace

int main(int count, char** arguments) {
  QApplication application(count, arguments);
  Label label("Verify your identity");
  label.resize(375, 667);
  label.show();
  return QApplication::exec();
}
