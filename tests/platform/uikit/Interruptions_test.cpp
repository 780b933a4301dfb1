#include <algorithm>
#include <string>

#include <QtTest/QTest>

#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UINavigationController.h"
#include "tests/platform/uikit/Interface.h"
#include "tests/platform/uikit/RecordingScreen.h"

namespace kestrova::test {

namespace {

using namespace platform;

// Screens that are asked for something while something else is under way.
class Interruptions : public Interface {
 protected:
  Interruptions() {
    base = screen("base");
    navigation->setViewControllers({base});
    window().setRootViewController(navigation);
    take();
  }

  std::shared_ptr<RecordingScreen> screen(const std::string& name) {
    return std::make_shared<RecordingScreen>(name, calls);
  }
  Calls take() { return std::exchange(calls, {}); }
  auto count(const char* call) const { return std::count(calls.begin(), calls.end(), call); }
  static void finishMotion() { advance(1); }
  // Whether nothing lies over the screen and it is where it belongs.
  bool isSeen(const UIViewController& controller) {
    const auto view = controller.viewIfLoaded();
    const auto hit = window().hitTest(middle(window()));
    return view && view->widget()->isVisible() && hit && hit->isDescendant(*view);
  }

  Calls calls;
  std::shared_ptr<RecordingScreen> base;
  std::shared_ptr<UINavigationController> navigation = std::make_shared<UINavigationController>();
};

TEST_F(Interruptions, ADismissalCompletesWhenTheScreenIsGone) {
  const auto modal = screen("modal");
  base->present(modal, true);
  advance(0.1);
  const UIViewController* presented = modal.get();
  modal->dismiss(true, [&] { presented = base->presentedViewController().get(); });
  EXPECT_EQ(presented, modal.get());
  finishMotion();
  EXPECT_EQ(presented, nullptr);
}

TEST_F(Interruptions, AnAlertMayShowAnotherOneThoughItIsLeftWhileItComes) {
  const auto second = std::make_shared<UIAlertController>("Second", "");
  const auto first = std::make_shared<UIAlertController>("First", "");
  first->addAction(std::make_shared<UIAlertAction>(
      "OK", UIAlertActionStyle::standard, [&](UIAlertAction&) { base->present(second, true); }));
  base->present(first, true);
  advance(0.05);
  first->escape();
  finishMotion();
  finishMotion();
  EXPECT_EQ(base->presentedViewController(), second);
}

TEST_F(Interruptions, AScreenMayBeDismissedWhileItIsToldThatItComes) {
  for (const bool animated : {true, false}) {
    for (const bool atOnce : {true, false}) {
      const auto modal = screen("modal");
      int completed = 0;
      (atOnce ? modal->onWillAppear : modal->onDidAppear) = [&] {
        modal->dismiss(animated, [&] { ++completed; });
      };
      base->present(modal, animated, [&] { ++completed; });
      for (int round = 0; round < 3; ++round) finishMotion();
      EXPECT_EQ(completed, 2);
      EXPECT_EQ(base->presentedViewController(), nullptr);
      EXPECT_EQ(modal->presentingViewController(), nullptr);
      EXPECT_TRUE(isSeen(*base));
      for (const auto* call :
           {"modal willAppear", "modal didAppear", "modal willDisappear", "modal didDisappear",
            "base willAppear", "base didAppear", "base willDisappear", "base didDisappear"}) {
        EXPECT_EQ(count(call), 1) << call;
      }
      take();
    }
  }
}

TEST_F(Interruptions, AScreenMayPushAnotherWhileItIsToldThatItComes) {
  for (const bool animated : {true, false}) {
    const auto a = screen("a");
    const auto b = screen("b");
    a->onWillAppear = [&] { navigation->pushViewController(b, animated); };
    navigation->pushViewController(a, animated);
    finishMotion();
    EXPECT_EQ(navigation->topViewController(), b);
    EXPECT_TRUE(isSeen(*b));
    EXPECT_EQ(a->view()->superview(), nullptr);
    EXPECT_EQ(base->view()->superview(), nullptr);
    EXPECT_EQ(count("base didDisappear"), 1);
    EXPECT_EQ(count("a didDisappear"), count("a willDisappear"));
    EXPECT_EQ(count("b willAppear"), 1);
    EXPECT_EQ(count("b didAppear"), 1);
    EXPECT_FALSE(a->isAppearing());
    navigation->popViewController(false);
    navigation->popViewController(false);
    EXPECT_TRUE(isSeen(*base));
    take();
  }
}

TEST_F(Interruptions, AScreenMayLeaveTheStackWhileItIsToldThatItGoes) {
  const auto a = screen("a");
  const auto b = screen("b");
  base->onWillDisappear = [&] { navigation->pushViewController(b, true); };
  navigation->pushViewController(a, true);
  finishMotion();
  EXPECT_EQ(navigation->topViewController(), b);
  EXPECT_TRUE(isSeen(*b));
  EXPECT_FALSE(a->isAppearing());
  EXPECT_EQ(count("base didDisappear"), 1);
  EXPECT_EQ(count("a didAppear"), 0);
  EXPECT_EQ(count("b didAppear"), 1);
}

TEST_F(Interruptions, APushThatEndsEarlyMayLeadToAnother) {
  const auto a = screen("a");
  const auto b = screen("b");
  const auto c = screen("c");
  a->onDidAppear = [&] { navigation->pushViewController(b, true); };
  navigation->pushViewController(a, true);
  // Brings the push to its end, which pushes b.
  navigation->pushViewController(c, true);
  finishMotion();
  EXPECT_EQ(navigation->viewControllers().size(), 4U);
  EXPECT_TRUE(isSeen(*c));
  EXPECT_EQ(b->view()->superview(), nullptr);
  EXPECT_EQ(a->view()->superview(), nullptr);
  for (const auto* call : {"base didDisappear", "a didAppear", "a didDisappear", "b didAppear",
                           "b didDisappear", "c didAppear"}) {
    EXPECT_EQ(count(call), 1) << call;
  }
}

TEST_F(Interruptions, AStackThatIsDismissedWhileItPushesTellsEachScreenOnce) {
  for (const bool animated : {true, false}) {
    const auto a = screen("a");
    const auto b = screen("b");
    auto stack = std::make_shared<UINavigationController>();
    stack->setViewControllers({a});
    base->present(stack, false);
    stack->pushViewController(b, true);
    advance(0.1);
    stack->dismiss(animated);
    stack.reset();
    finishMotion();
    EXPECT_EQ(count("a didDisappear"), 1);
    EXPECT_EQ(count("b willAppear"), 1);
    EXPECT_EQ(count("b willDisappear"), 1);
    EXPECT_EQ(count("b didDisappear"), 1);
    EXPECT_LE(count("b didAppear"), 1);
    take();
  }
}

TEST_F(Interruptions, APushBelowAnAlertLeavesItTheKeys) {
  const auto alert = std::make_shared<UIAlertController>("Title", "Text");
  alert->addAction(std::make_shared<UIAlertAction>("OK", UIAlertActionStyle::standard));
  base->present(alert, false);
  QWidget* const focused = QApplication::focusWidget();
  ASSERT_TRUE(alert->view()->widget()->isAncestorOf(focused));
  navigation->pushViewController(screen("a"), true);
  finishMotion();
  EXPECT_EQ(QApplication::focusWidget(), focused);
}

TEST_F(Interruptions, ARootThatIsReplacedTakesWhatItPresentsAlong) {
  const auto modal = screen("modal");
  base->present(modal, true);
  advance(0.1);
  const auto other = screen("other");
  window().setRootViewController(other);
  finishMotion();
  EXPECT_TRUE(isSeen(*other));
  EXPECT_EQ(modal->presentingViewController(), nullptr);
  EXPECT_EQ(count("modal didDisappear"), 1);
  EXPECT_FALSE(base->isAppearing());
}

TEST_F(Interruptions, AMotionGoesOnInALoopThatAnotherOneOpensAtItsEnd) {
  auto& clock = AnimationClock::shared();
  clock.useSystemTime();
  bool ended = false;
  bool endedInside = false;
  const auto first = clock.run(clock.now(), [&](double) -> std::optional<double> {
    endedInside = waitFor([&] { return ended; }, std::chrono::seconds(3));
    return std::nullopt;
  });
  const auto second = clock.run(clock.now() + 0.05, [&](double) -> std::optional<double> {
    ended = true;
    return std::nullopt;
  });
  EXPECT_TRUE(waitFor([&] { return ended; }));
  EXPECT_TRUE(endedInside);
}

TEST_F(Interruptions, AWindowThatIsClosedByHandDisappearsAndMayComeBack) {
  window().widget()->close();
  EXPECT_EQ(take(), (Calls{"base willDisappear", "base didDisappear"}));
  window().makeKeyAndVisible();
  EXPECT_EQ(take(), (Calls{"base willAppear", "base didAppear"}));
}

TEST_F(Interruptions, AWindowThatIsGivenUpTakesWhatIsPresentedAlong) {
  auto own = UIWindow::make({375, 667});
  own->setRootViewController(screen("root"));
  own->makeKeyAndVisible();
  auto modal = screen("modal");
  own->rootViewController()->present(modal, true);
  const std::weak_ptr<UIViewController> weak = modal;
  modal.reset();
  advance(0.1);
  own.reset();
  EXPECT_TRUE(weak.expired());
}

TEST_F(Interruptions, AWindowThatIsGivenUpLeavesWhatOthersKeepAlone) {
  auto own = UIWindow::make({375, 667});
  const auto kept = screen("kept");
  auto outer = std::make_shared<UIView>();
  outer->addSubview(kept->view());
  own->addSubview(outer);
  outer.reset();
  own.reset();
  EXPECT_EQ(kept->view()->superview(), nullptr);
  EXPECT_EQ(kept->view()->window(), nullptr);
}

}  // namespace

}  // namespace kestrova::test
