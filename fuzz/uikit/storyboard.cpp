// Any bytes as a nib, or as a storyboard's list of scenes where they begin with a brace: what is
// found sound can be built, laid out and taken apart.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <QtWidgets/QApplication>

#include "platform/uikit/NibLoader.h"
#include "platform/uikit/StoryboardFile.h"
#include "platform/uikit/UIView.h"

namespace {

using namespace kestrova::platform;

void readNib(std::string_view bytes) {
  // No pictures are there.
  static const Bundle bundle = *Bundle::at("/");
  static const NamedColors colors;
  NibFaults faults;
  const auto file = DesignerFile::parse("a.ui", bytes, faults);
  if (file.form().size() > 8 * bytes.size() + 1000) std::abort();
  if (!faults.isEmpty()) return;
  const auto view = NibLoader(file, bundle, colors, nullptr).load(faults);
  if (!view == faults.isEmpty()) std::abort();
  if (faults.error().localizedDescription.starts_with("a.ui: the toolkit")) std::abort();
  if (!view) return;
  view->setFrame({{}, {375, 667}});
  view->layoutIfNeeded();
  view->setFrame({{}, {3, 2}});
  view->layoutIfNeeded();
}

void readList(std::string_view bytes) {
  NibFaults faults;
  const auto list = StoryboardFile::parse(bytes, faults);
  if (!faults.isEmpty()) return;
  if (!list.scene(list.initial)) std::abort();
  for (const auto& scene : list.scenes) {
    if (scene.className.empty() || scene.view.empty() == scene.root.empty()) std::abort();
    for (const auto& segue : scene.segues) {
      if (!list.scene(segue.destination)) std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is one thread.
  ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  static int count = 1;
  static char name[] = "fuzz";
  static char* arguments[] = {name, nullptr};
  static QApplication application(count, arguments);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  bytes.starts_with('{') ? readList(bytes) : readNib(bytes);
  // What goes, goes with the next round of events.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  QCoreApplication::sendPostedEvents();
  return 0;
}
