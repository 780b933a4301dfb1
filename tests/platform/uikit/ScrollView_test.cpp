#include <QtGui/QPointingDevice>
#include <QtGui/QWheelEvent>
#include <QtTest/QTest>
#include <QtTest/qtestspontaneevent.h>
#include <QtWidgets/QVBoxLayout>
#include <QtWidgets/QWidget>

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIScrollView.h"
#include "tests/platform/uikit/Finger.h"
#include "tests/platform/uikit/Interface.h"

namespace kestrova::platform {
namespace {

using test::Finger;

class Button : public UIControl {
 public:
  Button() { setFocusable(true); }
};

class ScrollView : public test::Interface {
 protected:
  // 200 x 300 points that show a part of 200 x 1000.
  std::shared_ptr<UIScrollView> scrollView(const CGRect& frame = {{50, 100}, {200, 300}}) {
    auto made = place(std::make_shared<UIScrollView>(), frame);
    made->setContentSize({200, 1000});
    return made;
  }

  static void wheel(const UIView& view, QPoint pixels, QPoint angle = {}) {
    const auto [widget, point] = under(view, middle(view));
    QWheelEvent event(point, widget->mapToGlobal(point), pixels, angle, {}, {}, Qt::NoScrollPhase,
                      false);
    // Only the system's own events go on to the widgets above.
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(widget, &event);
  }

  // The pictures of a motion until nothing moves any more.
  std::vector<double> watch(const UIScrollView& view) {
    std::vector<double> offsets;
    for (int frame = 0; AnimationClock::shared().isTicking() && frame < 600; ++frame) {
      advance(AnimationClock::kFrame);
      offsets.push_back(view.contentOffset().y);
    }
    return offsets;
  }
};

TEST_F(ScrollView, StaysWithinItsContentAndInsets) {
  const auto view = scrollView();
  view->setContentOffset({50, 900});
  EXPECT_EQ(view->contentOffset(), (CGPoint{0, 700}));
  view->setContentInset({20, 0, 250, 0});
  view->setContentOffset({0, 5000});
  EXPECT_EQ(view->contentOffset(), (CGPoint{0, 950}));
  view->setContentOffset({0, -5000});
  EXPECT_EQ(view->contentOffset(), (CGPoint{0, -20}));
  view->setContentInset({0, 0, -250, 0});
  view->setContentOffset({0, 5000});
  EXPECT_EQ(view->contentOffset(), (CGPoint{0, 450}));
  view->setContentSize({200, 100});
  EXPECT_EQ(view->contentOffset(), (CGPoint{0, 0}));
}

TEST_F(ScrollView, MovesItsSubviewsAndWhatCodePutsThereKeepsItsFrame) {
  const auto view = scrollView();
  const auto inner = std::make_shared<UIView>(CGRect{{10, 400}, {50, 50}});
  view->addSubview(inner);
  view->setContentOffset({0, 350});
  EXPECT_EQ(inner->frame(), (CGRect{{10, 400}, {50, 50}}));
  EXPECT_EQ(inner->widget()->geometry(), QRect(10, 50, 50, 50));
  EXPECT_EQ(inner->convert({0, 0}, nullptr), (CGPoint{60, 150}));
}

TEST_F(ScrollView, FollowsAFingerAndTurnsBackAtOnceAtItsEnd) {
  const auto view = scrollView();
  Finger finger(*view, {100, 250});
  finger.to({100, 244});
  EXPECT_EQ(view->contentOffset().y, 0);
  EXPECT_FALSE(view->isDragging());
  finger.to({100, 230}).to({103, 180});
  EXPECT_TRUE(view->isDragging());
  EXPECT_EQ(view->contentOffset().y, 50);
  finger.to({100, 290});
  EXPECT_EQ(view->contentOffset().y, 0);
  finger.to({100, 280});
  EXPECT_EQ(view->contentOffset().y, 10);
  finger.release(500);
  EXPECT_FALSE(view->isDragging());
  EXPECT_EQ(watch(*view).back(), 10) << "a finger that rested does not throw";
}

TEST_F(ScrollView, GlidesOnAtTheFingersSpeedAndEndsSoftly) {
  const auto view = scrollView();
  // 1000 points a second.
  Finger(*view, {100, 280}).to({100, 260}).to({100, 240}).to({100, 220}).release();
  const double start = view->contentOffset().y;
  EXPECT_EQ(start, 40);
  const auto offsets = watch(*view);
  ASSERT_GT(offsets.size(), 20U);
  EXPECT_NEAR(offsets[0] - start, 1000 * AnimationClock::kFrame, 2);
  double step = offsets[0] - start;
  for (std::size_t frame = 1; frame < 60; ++frame) {
    EXPECT_LE(offsets[frame] - offsets[frame - 1], step + 0.01);
    EXPECT_GE(offsets[frame], offsets[frame - 1]);
    step = offsets[frame] - offsets[frame - 1];
  }
  EXPECT_DOUBLE_EQ(offsets.back(), 40 + 325);
}

TEST_F(ScrollView, GlidesNoFurtherThanItsEnd) {
  const auto view = scrollView();
  view->setContentOffset({0, 600});
  Finger(*view, {100, 280}).to({100, 260}).to({100, 220}).to({100, 180}).release();
  const auto offsets = watch(*view);
  EXPECT_EQ(offsets.back(), 700);
  EXPECT_LT(offsets[0], 699);
}

TEST_F(ScrollView, ATouchThatStopsAGlideIsNoTap) {
  const auto view = scrollView();
  const auto button = std::make_shared<Button>();
  button->setFrame({{0, 0}, {200, 1000}});
  view->addSubview(button);
  int taps = 0;
  button->addAction(UIControlEvents::touchUpInside, [&](const auto&) { ++taps; });
  Finger(*view, {100, 280}).to({100, 260}).to({100, 240}).to({100, 220}).release();
  EXPECT_FALSE(button->isHighlighted()) << "a drag takes the touch from the control";
  advance(0.1);
  const double offset = view->contentOffset().y;
  EXPECT_GT(offset, 40);
  click(*view, {100, 150});
  EXPECT_EQ(watch(*view).back(), offset);
  EXPECT_EQ(taps, 0);
  click(*view, {100, 150});
  EXPECT_EQ(taps, 1);
}

TEST_F(ScrollView, ATouchWhoseViewGoesIsTakenFromTheControlAroundIt) {
  const auto button = place(std::make_shared<Button>(), {{0, 0}, {100, 50}});
  const auto title = std::make_shared<UIView>(CGRect{{0, 0}, {100, 50}});
  button->addSubview(title);
  Finger finger(*button, {50, 25});
  EXPECT_TRUE(button->isHighlighted());
  title->removeFromSuperview();
  finger.release();
  EXPECT_FALSE(button->isHighlighted());
}

TEST_F(ScrollView, ATouchScreensEventsMoveItOnce) {
  const auto view = scrollView();
  const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
  QWidget* const top = window().widget();
  const auto point = [](int y) { return QPoint(150, y); };
  QTest::touchEvent(top, screen.get()).press(0, point(350));
  QTest::touchEvent(top, screen.get()).move(0, point(330));
  QTest::touchEvent(top, screen.get()).move(0, point(250));
  settle();
  EXPECT_EQ(view->contentOffset().y, 80);
  QTest::touchEvent(top, screen.get()).release(0, point(250));
  settle();
  EXPECT_FALSE(view->isDragging());
}

TEST_F(ScrollView, AWheelMovesItUnlessItIsOff) {
  const auto view = scrollView();
  wheel(*view, {}, {0, -240});
  EXPECT_EQ(view->contentOffset().y, 120);
  wheel(*view, {0, 15});
  EXPECT_EQ(view->contentOffset().y, 105);
  view->setScrollEnabled(false);
  wheel(*view, {}, {0, -240});
  Finger(*view, {100, 250}).to({100, 200}).to({100, 100}).release();
  EXPECT_EQ(view->contentOffset().y, 105);
  view->setContentOffset({0, 300});
  EXPECT_EQ(view->contentOffset().y, 300);
}

TEST_F(ScrollView, WhatAnInnerOneCannotUseMovesTheOuterOne) {
  const auto outer = scrollView();
  const auto inner = std::make_shared<UIScrollView>();
  inner->setFrame({{0, 0}, {200, 300}});
  inner->setContentSize({200, 400});
  outer->addSubview(inner);
  wheel(*inner, {0, -500});
  EXPECT_EQ(inner->contentOffset().y, 100);
  EXPECT_EQ(outer->contentOffset().y, 0);
  wheel(*inner, {0, -50});
  EXPECT_EQ(outer->contentOffset().y, 50);
  outer->setContentOffset({});
  inner->setContentSize({200, 300});
  Finger(*inner, {100, 250}).to({100, 200}).to({100, 100}).release(500);
  EXPECT_EQ(outer->contentOffset().y, 100);
}

TEST_F(ScrollView, ShowsARectangleWithAsLittleMotionAsPossible) {
  const auto view = scrollView();
  view->scrollRectToVisible({{0, 250}, {10, 100}}, false);
  EXPECT_EQ(view->contentOffset().y, 50);
  view->scrollRectToVisible({{0, 100}, {10, 100}}, false);
  EXPECT_EQ(view->contentOffset().y, 50);
  view->scrollRectToVisible({{0, 20}, {10, 100}}, false);
  EXPECT_EQ(view->contentOffset().y, 20);
  view->scrollRectToVisible({{0, 400}, {10, 900}}, false);
  EXPECT_EQ(view->contentOffset().y, 400) << "of what is too large, the beginning";
  // A keyboard of 200 points.
  view->setContentInset({0, 0, 200, 0});
  view->scrollRectToVisible({{0, 450}, {10, 60}}, true);
  EXPECT_EQ(view->contentOffset().y, 400);
  advance(0.15);
  EXPECT_NEAR(view->contentOffset().y, 405, 1);
  EXPECT_EQ(watch(*view).back(), 410);
}

TEST_F(ScrollView, KeysOfAFocusedViewInItMoveItAndTabShowsWhatItReaches) {
  const auto view = scrollView();
  const auto near = std::make_shared<Button>();
  near->setFrame({{0, 10}, {100, 40}});
  const auto far = std::make_shared<Button>();
  far->setFrame({{0, 800}, {100, 40}});
  view->addSubview(near);
  view->addSubview(far);
  near->becomeFocused();
  key(Qt::Key_Down);
  EXPECT_EQ(view->contentOffset().y, 44);
  key(Qt::Key_PageDown);
  EXPECT_EQ(view->contentOffset().y, 44 + 256);
  key(Qt::Key_End);
  EXPECT_EQ(view->contentOffset().y, 700);
  key(Qt::Key_PageUp);
  EXPECT_EQ(view->contentOffset().y, 444);
  key(Qt::Key_Home);
  EXPECT_EQ(view->contentOffset().y, 0);
  key(Qt::Key_Tab);
  EXPECT_TRUE(far->isFocused());
  EXPECT_EQ(watch(*view).back(), 540);
}

TEST_F(ScrollView, TabReachesWhatIsScrolledAwayToBelowAnotherView) {
  const auto view = scrollView();
  const auto far = std::make_shared<Button>();
  far->setFrame({{0, 330}, {100, 40}});
  view->addSubview(far);
  // Where the button would be if the scroll view were higher.
  const auto bar = place(std::make_shared<UIView>(), {{0, 400}, {375, 200}});
  const auto below = std::make_shared<Button>();
  below->setFrame({{50, 100}, {100, 40}});
  bar->addSubview(below);
  key(Qt::Key_Tab);
  ASSERT_TRUE(far->isFocused());
  EXPECT_EQ(watch(*view).back(), 70);
  key(Qt::Key_Tab);
  EXPECT_TRUE(below->isFocused());
  // A scroll view that is covered whole has nothing to reach.
  place(std::make_shared<UIView>(), {{0, 0}, {375, 400}});
  key(Qt::Key_Tab);
  EXPECT_TRUE(below->isFocused());
}

TEST_F(ScrollView, ItsBarShowsWhileItMovesAndNothingTicksAfterwards) {
  const auto view = scrollView();
  view->setBackgroundColor(UIColor::white());
  const auto dark = [&] {
    int pixels = 0;
    const QImage image = picture(*view);
    for (int y = 0; y < image.height(); ++y) pixels += qGray(image.pixel(195, y)) < 220 ? 1 : 0;
    return pixels;
  };
  EXPECT_EQ(dark(), 0);
  wheel(*view, {0, -350});
  // 0.3 of what there is to see.
  EXPECT_NEAR(dark(), 0.3 * 294, 3);
  advance(2);
  EXPECT_EQ(dark(), 0);
  EXPECT_FALSE(AnimationClock::shared().isTicking());
}

TEST_F(ScrollView, AHostsStyleSheetDoesNotChangeItsBar) {
  const auto view = scrollView();
  view->setBackgroundColor(UIColor::white());
  wheel(*view, {0, -350});
  const QImage plain = picture(*view);
  qApp->setStyleSheet("QWidget { background: red; min-width: 60px; border: 3px solid green }");
  settle();
  wheel(*view, {0, 1});
  wheel(*view, {0, -1});
  EXPECT_EQ(picture(*view), plain);
}

TEST_F(ScrollView, GivesTheContentOfAStoryboardItsWidthAndTheHeightThatItNeeds) {
  const auto view = std::make_shared<UIScrollView>();
  const auto content = std::make_shared<UIView>();
  class Text : public UIView {
   public:
    double height = 120;
    CGSize sizeThatFits(CGSize) const override { return {100, height}; }
  };
  const auto text = std::make_shared<Text>();
  view->addSubview(content);
  content->addSubview(text);
  auto* const layout = new QVBoxLayout(content->widget());
  layout->setContentsMargins(0, 20, 0, 20);
  layout->addWidget(text->widget());
  place(view, {{0, 0}, {200, 300}});
  EXPECT_EQ(content->frame(), (CGRect{{0, 0}, {200, 300}}));
  EXPECT_FALSE(view->canScroll());
  text->height = 500;
  text->invalidateIntrinsicContentSize();
  settle();
  EXPECT_EQ(content->frame(), (CGRect{{0, 0}, {200, 540}}));
  EXPECT_TRUE(view->canScroll());
  view->setContentOffset({0, 1000});
  view->setFrame({{0, 0}, {150, 400}});
  settle();
  EXPECT_EQ(content->frame(), (CGRect{{0, 0}, {150, 540}}));
  EXPECT_EQ(view->contentOffset().y, 140);
}

TEST_F(ScrollView, MayGoAwayWhileItGlides) {
  auto view = scrollView();
  Finger(*view, {100, 280}).to({100, 260}).to({100, 240}).to({100, 220}).release();
  view->removeFromSuperview();
  view.reset();
  advance(1);
  EXPECT_FALSE(AnimationClock::shared().isTicking());
}

}  // namespace
}  // namespace kestrova::platform
