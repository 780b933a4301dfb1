// A real window with a button, a field and a list, which writes down what people do with it: each
// event on a line, at the end, after the wheel has been turned over the list, a picture.
// usage: live_window PICTURE [--drive]
// Without --drive somebody else moves the pointer and the keys, told by lines "at NAME X Y" where
// to; with it the program does the same by itself.

#include <cstdio>
#include <memory>
#include <string>

#include <QtCore/QElapsedTimer>
#include <QtGui/QWheelEvent>
#include <QtGui/QWindow>
#include <QtTest/QTest>
#include <QtTest/qtestspontaneevent.h>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "examples/gallery/GalleryStage.h"
#include "examples/gallery/Pages.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UIViewController.h"
#include "platform/uikit/UIWindow.h"

namespace {

using namespace kestrova;

constexpr int kPatience = 30'000;
const std::string kTyped = "Ada";

void say(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

template <typename View>
std::shared_ptr<View> find(const std::shared_ptr<platform::UIView>& in) {
  for (const auto& view : in->subviews()) {
    if (auto found = std::dynamic_pointer_cast<View>(view)) return found;
  }
  return nullptr;
}

// Handles events until `condition` holds; false when that takes too long.
template <typename Condition>
bool waitFor(Condition condition) {
  QElapsedTimer timer;
  timer.start();
  while (!condition()) {
    if (timer.elapsed() > kPatience) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  }
  return true;
}

// Where the middle of a view is in its window.
QPoint place(const platform::UIView& view) {
  QWidget& widget = *view.widget();
  return widget.mapTo(widget.window(), widget.rect().center());
}

void tellPlace(const std::string& name, const platform::UIView& view) {
  const QPoint point = view.widget()->window()->mapToGlobal(place(view));
  say("at " + name + " " + std::to_string(point.x()) + " " + std::to_string(point.y()));
}

int fail(const char* what) {
  std::fprintf(stderr, "live_window: nobody has %s\n", what);
  return 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 2) return 2;
  const bool drives = count > 2 && std::string(arguments[2]) == "--drive";
  QApplication application(count, arguments);
  int taps = 0;
  std::string text;
  const auto page = gallery::formPage([&](const std::string& line) {
    say(line);
    if (line.starts_with("tapped")) ++taps;
    if (line.starts_with("text ")) text = line.substr(5);
  });
  gallery::GalleryStage stage({375, 667}, page);
  QWidget& widget = *stage.window().widget();
  if (!QTest::qWaitForWindowExposed(&widget, kPatience)) return fail("shown the window");
  const auto field = find<platform::UITextField>(page->view());
  const auto button = find<platform::UIButton>(page->view());
  const auto table = find<platform::UITableView>(page->view());
  QWindow* const window = widget.windowHandle();
  // A page that has just come takes no taps at first.
  if (!waitFor([&] { return !stage.window().ignoresTaps(*button); })) return fail("waited");

  tellPlace("button", *button);
  if (drives) QTest::mouseClick(window, Qt::LeftButton, {}, place(*button));
  if (!waitFor([&] { return taps == 1; })) return fail("clicked the button");

  tellPlace("field", *field);
  if (drives) QTest::mouseClick(window, Qt::LeftButton, {}, place(*field));
  if (!waitFor([&] { return field->isEditing(); })) return fail("clicked the field");
  say("at keys 0 0");
  if (drives) {
    for (const char key : kTyped) QTest::keyClick(window, key);
  }
  if (!waitFor([&] { return text == kTyped; })) return fail("typed");

  tellPlace("list", *table);
  if (drives) {
    const QPoint at = place(*table);
    QWheelEvent turn(at, widget.mapToGlobal(at), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                     false);
    // Only the system's own events go on to the widgets above.
    QSpontaneKeyEvent::setSpontaneous(&turn);
    qApp->notify(window, &turn);
  }
  if (!waitFor([&] { return table->contentOffset().y > 0; })) return fail("turned the wheel");
  say("offset " + std::to_string(int(table->contentOffset().y)));
  if (!waitFor([] { return !platform::AnimationClock::shared().isTicking(); })) {
    return fail("let the window rest");
  }
  // The cursor blinks.
  field->endEditing(true);
  QCoreApplication::processEvents();
  return widget.grab().save(arguments[1], "png") ? 0 : 1;
}
