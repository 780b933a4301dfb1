#include "platform/uikit/UIApplication.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

#include <QtCore/QThread>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/AccessibleView.h"
#include "platform/uikit/MainLoopPump.h"
#include "platform/uikit/UIScreen.h"
#include "platform/uikit/UIView.h"

namespace kestrova::platform {

namespace {

// What lasts as long as the toolkit's application object.
struct Attachment {
  std::unique_ptr<MainLoopPump> pump;
  std::vector<DispatchBlock> atExit;
};

Attachment& attachment() {
  // Never freed: the application object may go after the process's other static objects.
  static Attachment& attachment = *new Attachment;
  return attachment;
}

// The views that outlive the application object keep none of its widgets.
void deleteWidgets() {
  const auto ofAView = [](const QWidget* widget) { return UIView::of(widget) != nullptr; };
  for (;;) {
    // Anew each time: what was below a widget comes to the top.
    const auto widgets = QApplication::topLevelWidgets();
    const auto ours = std::find_if(widgets.begin(), widgets.end(), ofAView);
    if (ours == widgets.end()) return;
    const std::unique_ptr<QWidget> last(*ours);
  }
}

void applicationGoes() {
  auto& attached = attachment();
  while (!attached.atExit.empty()) {
    const DispatchBlock block = std::move(attached.atExit.back());
    attached.atExit.pop_back();
    block();
  }
  // The widgets of views that have ended just now.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  deleteWidgets();
  const auto& shared = UIApplication::shared();
  shared->openSettings = nullptr;
  shared->openPage = nullptr;
  UIScreen::main().setBounds(std::nullopt);
  attached.pump.reset();
}

}  // namespace

int UIApplication::main(int argc, char** argv, const std::function<void()>& didFinishLaunching) {
  if (QCoreApplication::instance()) {
    throw std::logic_error("the process has an application object already");
  }
  const QApplication application(argc, argv);
  exists();
  DispatchQueue::main().async(didFinishLaunching);
  return QApplication::exec();
}

bool UIApplication::exists() {
  const auto* const application = qobject_cast<QApplication*>(QCoreApplication::instance());
  if (!application) return false;
  auto& attached = attachment();
  if (QThread::currentThread() == application->thread() && !attached.pump) {
    attached.pump = std::make_unique<MainLoopPump>();
    AccessibleView::install();
    qAddPostRoutine(applicationGoes);
  }
  return true;
}

const std::shared_ptr<UIApplication>& UIApplication::shared() {
  static const auto& application =
      *new std::shared_ptr<UIApplication>(std::make_shared<UIApplication>());
  return application;
}

void UIApplication::open(std::string_view url, const std::map<std::string, std::string>&,
                         const std::function<void(bool opened)>& completionHandler) {
  const bool opened = openURL(url);
  if (completionHandler) completionHandler(opened);
}

bool UIApplication::openURL(std::string_view url) {
  if (url == UIApplicationOpenSettingsURLString) {
    // A copy: the handler may set another one.
    const auto handler = openSettings;
    if (handler) {
      handler();
    } else {
      print("Kestrova: the host has set nothing that opens the settings page");
    }
    return bool(handler);
  }
  const auto handler = openPage;
  if (handler) return handler(url);
  const QUrl page(QString::fromUtf8(url.data(), qsizetype(url.size())), QUrl::StrictMode);
  const bool isPage = page.isValid() && (page.scheme() == "https" || page.scheme() == "http");
  if (isPage && exists() && QDesktopServices::openUrl(page)) return true;
  print("Kestrova: nothing opens the page " + std::string(url));
  return false;
}

void UIApplication::atExit(DispatchBlock block) {
  exists();
  attachment().atExit.push_back(std::move(block));
}

}  // namespace kestrova::platform
