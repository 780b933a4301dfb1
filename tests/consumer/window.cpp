#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>

#include "platform/uikit/UIViewController.h"
#include "sdk/core/Kestrova.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  kestrova::Kestrova::initialize("your API key");
  QPushButton button("Verify");
  button.resize(375, 667);
  const auto screen = kestrova::platform::UIViewController::wrapping(button);
  QObject::connect(&button, &QPushButton::clicked,
                   [&] { kestrova::Kestrova::startVerification(screen); });
  button.show();
  // What a person would do, for a test.
  if (argc > 1) {
    QTimer::singleShot(0, &button, &QPushButton::click);
    QTimer::singleShot(500, &button, [&] {
      QApplication::exit(screen->presentedViewController() && button.grab().save(argv[1]) ? 0 : 1);
    });
  }
  return QApplication::exec();
}
