#include <memory>
#include <vector>

#include <QtWidgets/QVBoxLayout>

#include "platform/uikit/NSLayoutConstraint.h"
#include "tests/platform/uikit/Interface.h"

namespace kestrova::test {

namespace {

using namespace platform;

class Layout : public Interface {
 protected:
  Layout() {
    auto* const column = new QVBoxLayout(form->widget());
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(view->widget());
    column->addStretch();
    form->addSubview(view);
    view->addConstraint(height);
    place(form, {{0, 0}, {300, 600}});
  }

  double shown() const { return view->frame().size.height; }
  void animateTo(double constant) {
    height->setConstant(constant);
    UIView::animate(0.3, [this] { form->layoutIfNeeded(); });
  }

  std::shared_ptr<UIView> form = std::make_shared<UIView>();
  std::shared_ptr<UIView> view = std::make_shared<UIView>();
  std::shared_ptr<NSLayoutConstraint> height =
      std::make_shared<NSLayoutConstraint>("height", NSLayoutConstraint::Attribute::height, 100);
};

TEST_F(Layout, AConstantChangesWithTheNextPass) {
  EXPECT_EQ(shown(), 100);
  height->setConstant(200);
  EXPECT_EQ(shown(), 100);
  settle();
  EXPECT_EQ(shown(), 200);
  height->setConstant(50);
  form->layoutIfNeeded();
  EXPECT_EQ(shown(), 50);
  EXPECT_FALSE(AnimationClock::shared().isTicking());
}

TEST_F(Layout, AConstantMovesInAnAnimation) {
  bool ended = false;
  height->setConstant(300);
  UIView::animate(
      0.3, [this] { form->layoutIfNeeded(); }, [&] { ended = true; });
  EXPECT_EQ(height->constant(), 300);
  EXPECT_EQ(shown(), 100);
  advance(0.15);
  // A frame more or less.
  EXPECT_NEAR(shown(), 200, 20);
  EXPECT_FALSE(ended);
  advance(0.2);
  EXPECT_EQ(shown(), 300);
  EXPECT_TRUE(ended);
  EXPECT_FALSE(AnimationClock::shared().isTicking());
}

TEST_F(Layout, AConstantThatIsSentBackAndForthMovesWithoutJumps) {
  animateTo(400);
  advance(0.1);
  animateTo(100);
  advance(0.11);
  animateTo(400);
  double last = shown();
  for (int step = 0; step < 100; ++step) {
    advance(AnimationClock::kFrame / 5);
    EXPECT_GE(shown(), last);
    EXPECT_LE(shown() - last, 40);
    last = shown();
  }
  EXPECT_EQ(last, 400);
}

}  // namespace

}  // namespace kestrova::test
