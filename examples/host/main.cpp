// A hotel's check-in kiosk, as an integrator would have it: a plain toolkit application with the
// verification's button in its own Designer form.

#include <cstdio>
#include <memory>
#include <string>

#include <QtCore/QDir>
#include <QtGui/QPixmap>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include "examples/enduser/CountingTransport.h"
#include "examples/host/CheckInWindow.h"
#include "examples/host/Options.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/backend/BackendTransport.h"
#include "sdk/core/Kestrova.h"
#include "sdk/ui/KestrovaButton.h"

namespace {

using kestrova::BackendTransport;
using kestrova::CountingTransport;
using kestrova::EndUser;

constexpr QSize kSizes[] = {{375, 667}, {320, 568}, {820, 1180}, {1280, 800}};
constexpr QSize kPhone{414, 808};

// Draws the window at each size, without a display.
bool writePictures(host::CheckInWindow& window, const QString& folder) {
  for (const QSize size : kSizes) {
    window.resize(size);
    window.show();
    for (int round = 0; round < 5; ++round) QCoreApplication::processEvents();
    const QString name = QString("host-%1x%2.png").arg(size.width()).arg(size.height());
    if (!window.grab().save(folder + "/" + name)) return false;
  }
  return true;
}

std::shared_ptr<CountingTransport> connect(const host::Options& options) {
  auto configuration = BackendTransport::defaultConfiguration();
  if (!options.port.empty()) {
    configuration.connectTo = KESTROVA_BACKEND_HOST ":127.0.0.1:" + options.port;
  }
  if (!options.authority.empty()) configuration.trustedAuthorities = options.authority;
  auto transport = std::make_shared<CountingTransport>(std::move(configuration));
  BackendTransport::replace(transport);
  return transport;
}

// Taps the button in the window's form and goes through the flow. Nothing, or what went wrong.
std::string runScript(host::CheckInWindow& window,
                      const std::shared_ptr<kestrova::UIViewController>& controller,
                      const host::Options& options, const CountingTransport& transport) {
  EndUser user(controller, options.person);
  int number = 0;
  bool areWritten = true;
  const auto look = [&](const std::string& name) {
    if (options.pictures.empty()) return;
    const QString file = QString("%1/%2-%3.png")
                             .arg(options.pictures.c_str())
                             .arg(++number, 2, 10, QChar('0'))
                             .arg(name.c_str());
    areWritten = window.grab().save(file) && areWritten;
  };
  user.look = look;
  window.show();
  if (!QTest::qWaitForWindowExposed(&window)) return "the window never came up";
  window.activateWindow();
  look("host");
  const QPoint middle = window.middleOfButton();
  QWidget* const target = window.childAt(middle);
  QTest::mouseClick(target, Qt::LeftButton, {}, target->mapFrom(&window, middle));
  if (const auto vain = user.verify()) return "the end user waited in vain for " + *vain;
  look("host-again");
  if (!areWritten) return "cannot write pictures into " + options.pictures;

  // What is still under way goes on behind the host's screen.
  constexpr std::size_t kOfPassport = 10;
  constexpr std::size_t kOfBack = 2;
  const bool hasBack = options.person.document != "PASSPORT";
  const std::size_t requests = kOfPassport + (hasBack ? kOfBack : 0);
  constexpr int kPatience = 20'000;
  const auto isOver = [&] { return transport.ended() >= requests; };
  return QTest::qWaitFor(isOver, kPatience) ? "" : "some requests were never answered";
}

}  // namespace

int main(int count, char** arguments) {
  auto options =
      host::Options::parse(std::span(arguments, static_cast<std::size_t>(count)).subspan(1));
  if (!options) return 2;
  const bool drawsWindowOnly = !options->isScripted && !options->pictures.empty();
  if (drawsWindowOnly) qputenv("QT_QPA_PLATFORM", "offscreen");
  if (!options->pictures.empty()) qputenv("QT_SCALE_FACTOR", "2");
  QApplication application(count, arguments);
  application.setApplicationDisplayName("Hotel Calyra");
  host::CheckInWindow::applyHouseStyle();

  const auto transport = connect(*options);
  kestrova::Kestrova::initialize("hotel-calyra-key");
  host::CheckInWindow window;
  const auto controller = kestrova::UIViewController::wrapping(window);
  kestrova::KestrovaButton::setStartFailureHandler(
      [&window](const kestrova::KestrovaError&) { window.sendToFrontDesk(); });
  options->cameras.use(controller);

  if (!options->pictures.empty() && !QDir().mkpath(options->pictures.c_str())) {
    std::fprintf(stderr, "kestrova-host: cannot make %s\n", options->pictures.c_str());
    return 1;
  }
  if (drawsWindowOnly) {
    if (writePictures(window, options->pictures.c_str())) return 0;
    std::fprintf(stderr, "kestrova-host: cannot write into %s\n", options->pictures.c_str());
    return 1;
  }
  window.resize(kPhone);
  if (options->isScripted) {
    const auto trouble = runScript(window, controller, *options, *transport);
    if (trouble.empty()) return 0;
    std::fprintf(stderr, "kestrova-host: %s\n", trouble.c_str());
    return 1;
  }
  window.show();
  return QApplication::exec();
}
