#include <string>
#include <vector>

#include <QtTest/QTest>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>
#include <QtWidgets/QWidget>

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/ModalPresentation.h"
#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIControl.h"
#include "platform/uikit/UINavigationBar.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIStoryboardScene.h"
#include "platform/uikit/UIWindow.h"
#include "tests/platform/uikit/Interface.h"
#include "tests/platform/uikit/RecordingScreen.h"
#include "tests/support/StandardOutput.h"

namespace kestrova::platform {
namespace {

using test::Calls;
using Screen = test::RecordingScreen;

class Controllers : public test::Interface {
 protected:
  std::shared_ptr<Screen> screen(const std::string& name) {
    return std::make_shared<Screen>(name, calls);
  }
  Calls take() { return std::exchange(calls, {}); }
  // Lets a motion come to its end.
  static void finishMotion() { advance(1); }

  Calls calls;
};

TEST_F(Controllers, TellAboutPushAndPopInThePlatformsOrder) {
  const auto a = screen("a");
  const auto b = screen("b");
  const auto navigation = std::make_shared<UINavigationController>();
  navigation->setViewControllers({a});
  const auto window = UIWindow::make({375, 667});
  window->setRootViewController(navigation);
  window->makeKeyAndVisible();
  EXPECT_EQ(take(), (Calls{"a didLoad", "a willAppear", "a didAppear"}));
  EXPECT_TRUE(navigation->navigationBar()->backButton()->isHidden());

  navigation->pushViewController(b, true);
  EXPECT_EQ(take(), (Calls{"a willDisappear", "b didLoad", "b willAppear"}));
  EXPECT_EQ(b->widthAtAppearance, 375);
  finishMotion();
  EXPECT_EQ(take(), (Calls{"a didDisappear", "b didAppear"}));
  EXPECT_EQ(a->view()->superview(), nullptr);

  // A pop while the push still moves brings the push to its end first.
  const auto c = screen("c");
  navigation->pushViewController(c, true);
  take();
  navigation->popViewController(true);
  EXPECT_EQ(take(), (Calls{"b didDisappear", "c didAppear", "c willDisappear", "b willAppear"}));
  finishMotion();
  EXPECT_EQ(take(), (Calls{"c didDisappear", "b didAppear"}));

  click(*navigation->navigationBar()->backButton());
  finishMotion();
  EXPECT_EQ(navigation->topViewController(), a);
  EXPECT_FALSE(navigation->goBack());
}

TEST_F(Controllers, OfferNoWayBackWhereTheScreenHidesIt) {
  const auto navigation = std::make_shared<UINavigationController>();
  navigation->setViewControllers({screen("a")});
  const auto window = UIWindow::make({375, 667});
  window->setRootViewController(navigation);
  window->makeKeyAndVisible();
  const auto b = screen("b");
  b->setNavigationItem({"", true});
  navigation->pushViewController(b, false);
  EXPECT_TRUE(navigation->navigationBar()->backButton()->isHidden());
  QTest::keyClick(window->widget(), Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(navigation->topViewController(), b);
  b->setNavigationItem({"", false});
  EXPECT_FALSE(navigation->navigationBar()->backButton()->isHidden());
}

TEST_F(Controllers, TellAboutAFullScreenAndAnOverlayDifferently) {
  const auto base = screen("base");
  const auto window = UIWindow::make({375, 667});
  window->setRootViewController(base);
  window->makeKeyAndVisible();
  take();

  const auto full = screen("full");
  bool shown = false;
  base->present(full, true, [&] { shown = true; });
  EXPECT_EQ(take(), (Calls{"full didLoad", "base willDisappear", "full willAppear"}));
  finishMotion();
  EXPECT_TRUE(shown);
  EXPECT_EQ(take(), (Calls{"full didAppear", "base didDisappear"}));
  EXPECT_EQ(full->presentingViewController(), base);

  const auto over = screen("over");
  over->modalPresentationStyle = UIModalPresentationStyle::overCurrentContext;
  full->present(over, true);
  finishMotion();
  EXPECT_EQ(take(), (Calls{"over didLoad", "over willAppear", "over didAppear"}));

  // The lower one takes the upper one with it.
  bool gone = false;
  full->view();
  base->dismiss(true, [&] { gone = true; });
  finishMotion();
  EXPECT_TRUE(gone);
  EXPECT_EQ(take(), (Calls{"full willDisappear", "over willDisappear", "over didDisappear",
                           "base willAppear", "base didAppear", "full didDisappear"}));
  EXPECT_EQ(base->presentedViewController(), nullptr);
  EXPECT_EQ(over->presentingViewController(), nullptr);
}

TEST_F(Controllers, EndAPresentationThatIsInterrupted) {
  const auto base = screen("base");
  const auto window = UIWindow::make({375, 667});
  window->setRootViewController(base);
  window->makeKeyAndVisible();
  const auto full = screen("full");
  base->present(full, true);
  take();
  AnimationClock::shared().advance(0.1);
  full->dismiss(true);
  EXPECT_EQ(take(), (Calls{"full didAppear", "base didDisappear", "full willDisappear",
                           "base willAppear"}));
  finishMotion();
  EXPECT_EQ(take(), (Calls{"base didAppear", "full didDisappear"}));

  // A request during the dismissal waits for its end.
  base->present(full, false);
  full->dismiss(true);
  const auto next = screen("next");
  base->present(next, false);
  EXPECT_EQ(base->presentedViewController(), full);
  finishMotion();
  EXPECT_EQ(base->presentedViewController(), next);
}

TEST_F(Controllers, ReturnFromAnAlertByEveryWay) {
  const auto base = screen("base");
  const auto window = UIWindow::make({375, 667});
  window->setRootViewController(base);
  window->makeKeyAndVisible();
  for (const auto key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Space}) {
    int handled = 0;
    const auto alert = std::make_shared<UIAlertController>("Error", "Something is wrong");
    alert->addAction(std::make_shared<UIAlertAction>("OK", UIAlertActionStyle::standard,
                                                     [&](UIAlertAction&) { ++handled; }));
    base->present(alert, true);
    finishMotion();
    QWidget* focused = QApplication::focusWidget();
    ASSERT_NE(focused, nullptr);
    QTest::keyClick(focused, key);
    QTest::keyClick(window->widget(), Qt::Key_Escape);
    finishMotion();
    EXPECT_EQ(handled, 1);
    EXPECT_EQ(base->presentedViewController(), nullptr);
  }
}

TEST_F(Controllers, DropASegueFromAScreenThatIsNotOnTop) {
  const auto first = screen("first");
  const auto navigation = std::make_shared<UINavigationController>();
  navigation->setViewControllers({first});
  auto scene = std::make_shared<UIStoryboardScene>();
  scene->identifier = "first";
  scene->segues = {{"go", UIStoryboardSegue::Kind::push, "second", ""}};
  scene->instantiate =
      [this](const std::string& name) -> Result<std::shared_ptr<UIViewController>> {
    return std::shared_ptr<UIViewController>(screen(name));
  };
  first->setScene(scene);
  const auto window = UIWindow::make({375, 667});
  window->setRootViewController(navigation);
  window->makeKeyAndVisible();

  test::StandardOutput output;
  first->performSegue("nowhere", first);
  first->performSegue("go", first);
  first->performSegue("go", first);
  EXPECT_EQ(navigation->viewControllers().size(), 2U);
  EXPECT_EQ(output.text(),
            "Kestrova: the screen has no segue \"nowhere\"\n"
            "Kestrova: the segue \"go\" is dropped: its screen is not on top\n");
  finishMotion();

  // While the screen's own modal goes away a segue waits.
  navigation->popViewController(false);
  const auto modal = screen("modal");
  first->present(modal, false);
  modal->dismiss(true);
  first->performSegue("go", first);
  EXPECT_EQ(navigation->viewControllers().size(), 1U);
  finishMotion();
  EXPECT_EQ(navigation->viewControllers().size(), 2U);
}

TEST_F(Controllers, PresentOverAHostsWindowAndOutliveIt) {
  auto host = std::make_unique<QWidget>();
  host->resize(1280, 800);
  auto* button = new QPushButton("Host", host.get());
  host->show();
  button->setFocus();
  const auto wrapper = UIViewController::wrapping(*button);
  const auto flow = screen("flow");
  wrapper->present(flow, true);
  finishMotion();
  // A card in the middle from 600 points of width on.
  EXPECT_EQ(flow->view()->frame(), (CGRect{{400, 24}, {480, 752}}));
  host->resize(500, 700);
  EXPECT_EQ(flow->view()->frame(), (CGRect{{0, 0}, {500, 700}}));
  // Tab stays inside, the host's keys do not reach it.
  QTest::keyClick(flow->view()->window()->widget(), Qt::Key_Tab);
  EXPECT_FALSE(button->hasFocus());

  flow->dismiss(true);
  finishMotion();
  EXPECT_EQ(flow->view()->window(), nullptr);
  EXPECT_EQ(host->focusWidget(), button);

  wrapper->present(flow, false);
  const auto over = std::make_shared<UIAlertController>("Title", "Text");
  flow->present(over, true);
  take();
  host.reset();
  EXPECT_EQ(take(), (Calls{"flow willDisappear", "flow didDisappear"}));
  EXPECT_EQ(wrapper->presentedViewController(), nullptr);
  EXPECT_EQ(flow->presentedViewController(), nullptr);
  finishMotion();
  test::StandardOutput output;
  wrapper->present(flow, true);
  EXPECT_EQ(output.text(),
            "Kestrova: nothing is presented: the presenting screen is in no window\n");
}

TEST_F(Controllers, LetActionsTravelUpTheResponderChain) {
  const auto outer = screen("outer");
  const auto inner = screen("inner");
  const auto window = UIWindow::make({375, 667});
  window->setRootViewController(outer);
  outer->addChild(inner);
  outer->view()->addSubview(inner->view());
  const auto control = std::make_shared<UIWindow>(UIWindow::Kind::own);
  Calls heard;
  outer->setActions({{"leave:", [&](const auto&) { heard.push_back("outer"); }}});
  EXPECT_TRUE(inner->view()->tryToPerform("leave:", nullptr));
  inner->setActions({{"leave:", [&](const auto&) { heard.push_back("inner"); }}});
  EXPECT_TRUE(inner->view()->tryToPerform("leave:", nullptr));
  EXPECT_FALSE(inner->view()->tryToPerform("stay:", nullptr));
  EXPECT_EQ(heard, (Calls{"outer", "inner"}));
  EXPECT_EQ(inner->view()->next(), inner);
  EXPECT_EQ(outer->view()->next(), outer);

  // On its way from a screen inside a presented one it passes that one.
  const auto leaf = screen("leaf");
  const auto container = screen("container");
  container->addChild(leaf);
  container->view()->addSubview(leaf->view());
  window->makeKeyAndVisible();
  inner->present(container, false);
  container->setActions({{"leave:", [&](const auto&) { heard.push_back("container"); }}});
  EXPECT_TRUE(leaf->view()->tryToPerform("leave:", nullptr));
  EXPECT_EQ(heard.back(), "container");
  EXPECT_EQ(container->next(), outer);

  // A view below a widget that the host has wrapped finds the host's controller.
  QWidget host;
  auto* form = new QWidget(&host);
  const auto wrapper = UIViewController::wrapping(host);
  const auto inside = UIWindow::inside(*form);
  EXPECT_EQ(inside->next(), wrapper);
}

TEST_F(Controllers, KeepTheFocusOffWhatAnOverlayCovers) {
  const auto base = screen("base");
  const auto window = UIWindow::make({375, 667});
  window->setRootViewController(base);
  window->makeKeyAndVisible();
  std::vector<std::shared_ptr<UIButton>> buttons;
  for (int row = 0; row < 3; ++row) {
    buttons.push_back(std::make_shared<UIButton>());
    buttons.back()->setFrame({{20, 20.0 + 100 * row}, {200, 50}});
    base->view()->addSubview(buttons.back());
  }
  const auto overlay = std::make_shared<UIView>(CGRect{{0, 100}, {375, 100}});
  base->view()->addSubview(overlay);
  const auto focused = [&] {
    for (std::size_t row = 0; row < 3; ++row) {
      if (buttons[row]->isFocused()) return int(row);
    }
    return -1;
  };
  window->widget()->activateWindow();
  settle();
  buttons[0]->becomeFocused();
  QTest::keyClick(window->widget(), Qt::Key_Tab);
  EXPECT_EQ(focused(), 2);
  QTest::keyClick(window->widget(), Qt::Key_Tab);
  EXPECT_EQ(focused(), 0);
  overlay->setHidden(true);
  QTest::keyClick(window->widget(), Qt::Key_Tab);
  EXPECT_EQ(focused(), 1);
}

TEST_F(Controllers, SurviveAScreenThatEndsInItsOwnCallback) {
  const auto base = screen("base");
  const auto window = UIWindow::make({375, 667});
  window->setRootViewController(base);
  window->makeKeyAndVisible();
  auto full = screen("full");
  const std::weak_ptr<Screen> watched = full;
  base->present(full, true, [&] {
    watched.lock()->dismiss(false);
    full.reset();
  });
  full.reset();
  finishMotion();
  EXPECT_EQ(base->presentedViewController(), nullptr);
  finishMotion();
  EXPECT_TRUE(watched.expired());
}

}  // namespace
}  // namespace kestrova::platform
