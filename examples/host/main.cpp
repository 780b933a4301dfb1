// A hotel's check-in kiosk, as an integrator would have it: a plain toolkit application with the
// verification's button in its own Designer form.

#include <cstdio>
#include <cstdlib>
#include <string>

#include <QtCore/QDir>
#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>

#include "examples/host/CheckInWindow.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/core/Kestrova.h"
#include "sdk/ui/KestrovaButton.h"

namespace {

constexpr QSize kSizes[] = {{375, 667}, {320, 568}, {820, 1180}, {1280, 800}};
constexpr QSize kPhone{414, 808};

// Draws the window at each size, without a display.
bool writePictures(host::CheckInWindow& window, const QString& folder) {
  if (!QDir().mkpath(folder)) return false;
  for (const QSize size : kSizes) {
    window.resize(size);
    window.show();
    for (int round = 0; round < 5; ++round) QCoreApplication::processEvents();
    const QString name = QString("host-%1x%2.png").arg(size.width()).arg(size.height());
    if (!window.grab().save(folder + "/" + name)) return false;
  }
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  const bool drawsPictures = count == 3 && std::string(arguments[1]) == "--pictures";
  if (count > 1 && !drawsPictures) {
    std::fputs("usage: kestrova-host [--pictures DIRECTORY]\n", stderr);
    return 2;
  }
  if (drawsPictures) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", "2");
  }
  QApplication application(count, arguments);
  application.setApplicationDisplayName("Hotel Calyra");
  host::CheckInWindow::applyHouseStyle();

  kestrova::Kestrova::initialize("hotel-calyra-key");
  host::CheckInWindow window;
  const auto controller = kestrova::platform::UIViewController::wrapping(window);
  kestrova::KestrovaButton::setStartFailureHandler(
      [&window](const kestrova::KestrovaError&) { window.sendToFrontDesk(); });

  if (drawsPictures) {
    if (writePictures(window, arguments[2])) return 0;
    std::fprintf(stderr, "kestrova-host: cannot write pictures into %s\n", arguments[2]);
    return 1;
  }
  window.resize(kPhone);
  window.show();
  return QApplication::exec();
}
