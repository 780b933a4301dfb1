#include <memory>

#include <QtCore/QPointer>
#include <QtGui/QAccessible>
#include <QtGui/QShortcut>
#include <QtTest/QTest>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "platform/uikit/NSLayoutConstraint.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/ViewPlaceholder.h"
#include "tests/platform/uikit/Finger.h"
#include "tests/platform/uikit/Interface.h"
#include "tests/platform/uikit/RecordingScreen.h"

namespace kestrova::test {

namespace {

using namespace platform;

// Counts what reaches a host's own window.
class Host : public QDialog {
 public:
  int events = 0;

 protected:
  bool event(QEvent* event) override {
    switch (event->type()) {
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonRelease:
      case QEvent::MouseButtonDblClick:
      case QEvent::Wheel:
      case QEvent::ContextMenu:
      case QEvent::KeyPress:
      case QEvent::KeyRelease:
      case QEvent::TouchBegin:
        ++events;
        break;
      default:
        break;
    }
    return QDialog::event(event);
  }
};

class HostWindow : public Interface {
 protected:
  HostWindow() {
    host->resize(375, 667);
    field = new QLineEdit(host.get());
    host->show();
    host->activateWindow();
    settle();
    field->setFocus();
  }

  std::shared_ptr<RecordingScreen> screen() {
    return std::make_shared<RecordingScreen>("flow", calls);
  }
  static std::shared_ptr<UITextField> addField(UIViewController& controller) {
    auto made = std::make_shared<UITextField>();
    made->setFrame({{20, 100}, {300, 52}});
    controller.view()->addSubview(made);
    return made;
  }

  Calls calls;
  std::unique_ptr<Host> host = std::make_unique<Host>();
  QPointer<QLineEdit> field;
};

TEST_F(HostWindow, APresentationKeepsTheControllerThatTheHostLetsGo) {
  std::weak_ptr<UIViewController> presenter;
  const auto flow = screen();
  {
    const auto wrapper = UIViewController::wrapping(*field);
    presenter = wrapper;
    wrapper->present(flow, true);
  }
  advance(1);
  EXPECT_TRUE(flow->view()->window());
  ASSERT_TRUE(presenter.lock());
  EXPECT_EQ(flow->presentingViewController(), presenter.lock());
  flow->dismiss(true);
  advance(1);
  EXPECT_EQ(calls, (Calls{"flow didLoad", "flow willAppear", "flow didAppear", "flow willDisappear",
                          "flow didDisappear"}));
  EXPECT_TRUE(presenter.expired());
}

TEST_F(HostWindow, APresentationThatTheHostLetsGoEndsWithItsWindow) {
  std::weak_ptr<UIViewController> presenter;
  {
    const auto wrapper = UIViewController::wrapping(*field);
    presenter = wrapper;
    wrapper->present(screen(), false);
  }
  host.reset();
  EXPECT_TRUE(presenter.expired());
  EXPECT_EQ(calls.back(), "flow didDisappear");
}

TEST_F(HostWindow, KeysAreTheFlowsFromTheBeginningOfItsMotion) {
  const auto wrapper = UIViewController::wrapping(*host);
  wrapper->present(screen(), true);
  advance(0.05);
  type("x");
  EXPECT_EQ(field->text(), "");
  advance(1);
  wrapper->dismiss(true);
  advance(1);
  type("y");
  EXPECT_EQ(field->text(), "y");
}

TEST_F(HostWindow, NothingGoesThroughAFlowToTheHostBelow) {
  const auto wrapper = UIViewController::wrapping(*host);
  const auto flow = screen();
  wrapper->present(flow, false);
  const auto [widget, at] = under(*flow->view(), {100, 300});
  host->events = 0;
  host->setAttribute(Qt::WA_AcceptTouchEvents);
  for (const auto button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
    QTest::mouseClick(widget, button, {}, at);
  }
  QContextMenuEvent menu(QContextMenuEvent::Mouse, at, widget->mapToGlobal(at));
  QApplication::sendEvent(widget, &menu);
  QWheelEvent wheel(at, widget->mapToGlobal(at), {0, -40}, {0, -120}, Qt::NoButton, {},
                    Qt::NoScrollPhase, false);
  // Only the system's own events go on to the widgets above.
  QSpontaneKeyEvent::setSpontaneous(&wheel);
  qApp->notify(widget, &wheel);
  const auto device = std::unique_ptr<QPointingDevice>(QTest::createTouchDevice());
  QTest::touchEvent(widget, device.get()).press(0, at);
  QTest::touchEvent(widget, device.get()).release(0, at);
  settle();
  for (const auto each : {Qt::Key_F5, Qt::Key_Return, Qt::Key_A}) key(each);
  EXPECT_EQ(host->events, 0);
  EXPECT_TRUE(host->isVisible());
}

TEST_F(HostWindow, AViewInAHostsFormLeavesTheHostItsKeys) {
  int saved = 0;
  auto* const shortcut = new QShortcut(QKeySequence::Save, host.get());
  QObject::connect(shortcut, &QShortcut::activated, host.get(), [&] { ++saved; });
  const auto button = std::make_shared<UIButton>();
  auto* const placeholder = new ViewPlaceholder([&] { return button; }, host.get());
  placeholder->resize(200, 50);
  placeholder->show();
  button->becomeFocused();
  ASSERT_EQ(QApplication::focusWidget(), button->widget());
  key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(saved, 1);
  key(Qt::Key_Escape);
  EXPECT_FALSE(host->isVisible());
  // Nor is it a window of its own for assistive technology.
  EXPECT_EQ(accessibilityTree(*button->window()).find("group"), 0U);
}

// The names in the tree below and with an object.
QStringList namesIn(const QAccessibleInterface& object) {
  QStringList names{object.text(QAccessible::Name)};
  for (int index = 0; index < object.childCount(); ++index) {
    if (const auto* const child = object.child(index)) names += namesIn(*child);
  }
  names.removeAll(QString());
  return names;
}

// Uses an object that assistive technology has kept.
void pressRemembered(QAccessible::Id id) {
  auto* const object = QAccessible::accessibleInterface(id);
  auto* const actions = object ? object->actionInterface() : nullptr;
  if (actions) actions->doAction(QAccessibleActionInterface::pressAction());
}

TEST_F(HostWindow, HidesItsWidgetsFromAssistiveTechnologyUnderAFlow) {
  auto own = std::make_unique<QMainWindow>();
  own->setWindowTitle("Check in");
  own->resize(800, 600);
  int pressed = 0;
  auto* const middle = new QWidget;
  auto* const layout = new QVBoxLayout(middle);
  auto* const desk = new QPushButton("Front desk");
  layout->addWidget(desk);
  const auto verify = std::make_shared<UIButton>();
  verify->setTitle("Verify");
  verify->addAction(UIControlEvents::touchUpInside, [&](const auto&) { ++pressed; });
  layout->addWidget(new ViewPlaceholder([&] { return verify; }, middle));
  own->setCentralWidget(middle);
  auto* const quit = own->menuBar()->addMenu("File")->addAction("Quit");
  QObject::connect(quit, &QAction::triggered, own.get(), [&] { ++pressed; });
  QObject::connect(desk, &QPushButton::clicked, own.get(), [&] { ++pressed; });
  own->show();
  settle();

  const auto object = [](QObject* of) { return QAccessible::queryAccessibleInterface(of); };
  const QStringList all = namesIn(*object(own.get()));
  for (const char* const name : {"Front desk", "Verify", "File"}) EXPECT_TRUE(all.contains(name));
  auto* const entry = object(own->menuBar())->child(0)->child(0)->child(0);
  ASSERT_TRUE(entry);
  const std::vector<QAccessible::Id> remembered{QAccessible::uniqueId(object(desk)),
                                                QAccessible::uniqueId(object(verify->widget())),
                                                QAccessible::uniqueId(entry)};
  const auto pressAll = [&] {
    pressed = 0;
    for (const auto id : remembered) pressRemembered(id);
    // The toolkit presses its buttons from a timer.
    QTest::qWait(0);
    return QTest::qWaitFor([&] { return pressed == 3; }, 300) ? 3 : pressed;
  };
  EXPECT_EQ(pressAll(), 3);

  const auto wrapper = UIViewController::wrapping(*middle);
  const auto flow = screen();
  const auto heading = std::make_shared<UILabel>();
  heading->setText("Your nationality");
  heading->setAccessibilityRole(UIAccessibilityRole::header);
  flow->view()->addSubview(heading);
  wrapper->present(flow, true);
  advance(1);
  settle();
  EXPECT_EQ(namesIn(*object(own.get())),
            (QStringList{"Check in", "Your nationality", "Your nationality"}));
  EXPECT_EQ(pressAll(), 0);
  EXPECT_FALSE(object(desk)->actionInterface());

  flow->dismiss(true);
  advance(1);
  EXPECT_EQ(namesIn(*object(own.get())), all);
  pressed = 0;
  object(desk)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_TRUE(QTest::qWaitFor([&] { return pressed == 1; }, 1000));

  wrapper->present(screen(), false);
  settle();
  EXPECT_FALSE(namesIn(*object(own.get())).contains("Front desk"));
  own.reset();
  // Another host's window keeps its whole tree.
  EXPECT_TRUE(object(field)->actionInterface());
}

TEST_F(HostWindow, MayGoWhileItsScreensMove) {
  for (const bool comes : {true, false}) {
    auto own = std::make_unique<QWidget>();
    own->resize(375, 667);
    own->show();
    const auto wrapper = UIViewController::wrapping(*own);
    const auto flow = screen();
    int completed = 0;
    wrapper->present(flow, comes, [&] { ++completed; });
    if (!comes) flow->dismiss(true, [&] { ++completed; });
    advance(0.1);
    calls.clear();
    own.reset();
    EXPECT_EQ(calls, comes ? (Calls{"flow willDisappear", "flow didDisappear"})
                           : (Calls{"flow didDisappear"}));
    EXPECT_EQ(completed, comes ? 1 : 2);
    EXPECT_EQ(wrapper->presentedViewController(), nullptr);
    advance(1);
  }
}

// Takes the screen apart, or asks that it be dismissed, as the editing of its field ends.
class Ender : public UITextFieldDelegate {
 public:
  std::function<void()> onEnd;
  void textFieldDidEndEditing(UITextField&) override {
    if (onEnd) std::exchange(onEnd, {})();
  }
};

TEST_F(HostWindow, MayGoWhileAFieldIsEditedWhoseEndTakesTheScreenApart) {
  for (const bool dismisses : {true, false}) {
    auto own = std::make_unique<QWidget>();
    own->resize(375, 667);
    own->show();
    own->activateWindow();
    const auto wrapper = UIViewController::wrapping(*own);
    auto flow = screen();
    wrapper->present(flow, false);
    const auto alert = std::make_shared<UIAlertController>("Title", "Text");
    flow->present(alert, false);
    const auto edited = addField(*alert);
    const auto ender = std::make_shared<Ender>();
    edited->delegate = ender;
    ASSERT_TRUE(edited->becomeFirstResponder());
    bool ended = false;
    ender->onEnd = [&] {
      ended = true;
      if (dismisses) return flow->dismiss(true);
      const auto window = flow->view()->window();
      while (window && !window->subviews().empty()) {
        window->subviews().front()->removeFromSuperview();
      }
    };
    own.reset();
    EXPECT_TRUE(ended);
    EXPECT_FALSE(edited->isEditing());
    EXPECT_EQ(wrapper->presentedViewController(), nullptr);
    EXPECT_FALSE(flow->isAppearing());
    advance(1);
  }
}

TEST_F(HostWindow, MayGoInAnActionOfAButtonInIt) {
  for (const bool byKey : {true, false}) {
    auto own = std::make_unique<QWidget>();
    own->resize(375, 667);
    own->show();
    const auto wrapper = UIViewController::wrapping(*own);
    const auto flow = screen();
    wrapper->present(flow, false);
    const auto button = std::make_shared<UIButton>();
    button->setFrame({{20, 100}, {300, 52}});
    flow->view()->addSubview(button);
    button->addAction(UIControlEvents::touchUpInside, [&](const auto&) { own.reset(); });
    advance(UIWindow::kDoubleTapInterval);
    if (byKey) {
      button->becomeFocused();
      QTest::keyClick(button->widget(), Qt::Key_Space);
    } else {
      Finger(*button, middle(*button)).release();
    }
    EXPECT_EQ(own, nullptr);
    EXPECT_EQ(wrapper->presentedViewController(), nullptr);
  }
}

// A screen of a column with everything that a host's style could get at.
class FormScreen : public UIViewController {
 public:
  void loadView() override {
    auto form = std::make_shared<UIView>();
    form->setBackgroundColor(UIColor::white());
    auto* const column = new QVBoxLayout(form->widget());
    const auto label = std::make_shared<UILabel>();
    label->setText("A text of so many words that it needs several lines in any label.");
    label->setNumberOfLines(0);
    const auto button = std::make_shared<UIButton>();
    button->setTitle("Next");
    const auto field = std::make_shared<UITextField>();
    field->setText("text");
    const auto fixed = std::make_shared<UIView>();
    fixed->layer().setBorderWidth(2);
    const auto scrollView = std::make_shared<UIScrollView>();
    const auto inside = std::make_shared<UIView>(CGRect{{10, 10}, {100, 900}});
    inside->setBackgroundColor(UIColor::blue());
    scrollView->addSubview(inside);
    scrollView->setContentSize({200, 1000});
    for (const std::shared_ptr<UIView>& each :
         std::initializer_list<std::shared_ptr<UIView>>{label, button, field, fixed, scrollView}) {
      column->addWidget(each->widget(), each == scrollView ? 1 : 0);
      form->addSubview(each);
    }
    fixed->addConstraint(
        std::make_shared<NSLayoutConstraint>("height", NSLayoutConstraint::Attribute::height, 30));
    setView(form);
  }
};

TEST_F(HostWindow, AHostsStyleChangesNoScreen) {
  const auto shoot = [this] {
    const auto wrapper = UIViewController::wrapping(*host);
    const auto form = std::make_shared<FormScreen>();
    wrapper->present(form, false);
    settle();
    QImage image = picture(*form->view());
    wrapper->dismiss(false);
    return image;
  };
  const QImage calm = shoot();
  const auto wrapper = UIViewController::wrapping(*host);
  const auto shown = std::make_shared<FormScreen>();
  wrapper->present(shown, false);
  QApplication::setPalette(QPalette(Qt::white, Qt::black));
  QApplication::setFont(QFont("DejaVu Serif", 30));
  for (const char* sheet :
       {"* { padding: 21px; margin: 5px; border: 7px solid red; min-height: 77px; font: 40px }",
        "QWidget QWidget { background: red; max-width: 50px; max-height: 20px; min-width: 40px }",
        "QLineEdit, QWidget QLineEdit { padding: 9px; border: 3px solid lime; height: 90px }"}) {
    qApp->setStyleSheet(sheet);
    settle();
    EXPECT_EQ(picture(*shown->view()), calm) << sheet;
    shown->view()->setHidden(true);
    shown->view()->setHidden(false);
    host->setStyleSheet("* { min-height: 33px; padding: 3px }");
    settle();
    EXPECT_EQ(picture(*shown->view()), calm) << sheet;
    host->setStyleSheet({});
  }
  shown->dismiss(false);
  EXPECT_EQ(shoot(), calm);
  QApplication::setStyle("Windows");
  EXPECT_EQ(shoot(), calm);
}

TEST_F(HostWindow, ScreensReadFromLeftToRightInAHostThatDoesNot) {
  QGuiApplication::setLayoutDirection(Qt::RightToLeft);
  const auto wrapper = UIViewController::wrapping(*host);
  const auto flow = screen();
  const auto row = std::make_shared<UIView>();
  auto* const layout = new QHBoxLayout(row->widget());
  const auto first = std::make_shared<UIButton>();
  const auto second = std::make_shared<UIButton>();
  for (const auto& each : {first, second}) {
    layout->addWidget(each->widget());
    row->addSubview(each);
  }
  row->setFrame({{0, 0}, {300, 60}});
  flow->view()->addSubview(row);
  wrapper->present(flow, false);
  flow->view()->layoutIfNeeded();
  EXPECT_LT(first->frame().minX(), second->frame().minX());
  QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

}  // namespace

}  // namespace kestrova::test
