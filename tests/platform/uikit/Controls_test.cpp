#include <cstdint>
#include <memory>
#include <vector>

#include <QtGui/QKeyEvent>
#include <QtGui/QPointingDevice>
#include <QtWidgets/QVBoxLayout>

#include "platform/graphics/NSLayoutManager.h"
#include "platform/graphics/NSTextStorage.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIGestureRecognizer.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "tests/platform/uikit/Interface.h"

namespace kestrova::test {

namespace {

using namespace platform;

constexpr const char* kLongText =
    "A text of so many words that it needs several lines in any label.";

// The rectangle of all pixels that are not white.
QRect inked(const QImage& image) {
  QRect found;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) != 0xFFFFFFFF) found |= QRect(x, y, 1, 1);
    }
  }
  return found;
}

UIImage plain(std::uint32_t color, std::size_t width = 8, std::size_t height = 8) {
  const auto image = CGImage::make(width, height);
  std::fill(image->pixels().begin(), image->pixels().end(), color);
  return UIImage(image);
}

class LabelTest : public Interface {
 protected:
  std::shared_ptr<UILabel> label = std::make_shared<UILabel>();
};

TEST_F(LabelTest, wantsTheSizeOfItsLines) {
  label->setText(kLongText);
  const CGSize one = label->sizeThatFits({1000, 1000});
  EXPECT_LE(label->sizeThatFits({100, 1000}).width, 100);
  EXPECT_EQ(label->sizeThatFits({100, 1000}).height, one.height);
  label->setNumberOfLines(0);
  label->setLineHeight(30);
  const CGSize many = label->sizeThatFits({150, 1000});
  EXPECT_LE(many.width, 150);
  EXPECT_GE(many.height, 4 * 30);
  EXPECT_EQ(int(many.height) % 30, 0);
  label->setNumberOfLines(2);
  EXPECT_EQ(label->sizeThatFits({150, 1000}).height, 60);
  label->setText({});
  EXPECT_EQ(label->sizeThatFits({150, 1000}).width, 0);
}

TEST_F(LabelTest, growsInALayoutWithItsText) {
  const auto form = std::make_shared<UIView>();
  auto* const layout = new QVBoxLayout(form->widget());
  layout->setContentsMargins(0, 0, 0, 0);
  const auto below = std::make_shared<UILabel>();
  label->setNumberOfLines(0);
  below->setText("below");
  layout->addWidget(label->widget());
  layout->addWidget(below->widget());
  layout->addStretch();
  form->addSubview(label);
  form->addSubview(below);
  place(form, {{0, 0}, {200, 400}});
  label->setText(kLongText);
  form->layoutIfNeeded();
  EXPECT_EQ(label->frame().size.height, label->sizeThatFits({200, 1000}).height);
  EXPECT_GT(label->frame().size.height, 3 * below->frame().size.height - 1);
  EXPECT_GE(below->frame().minY(), label->frame().maxY());
}

TEST_F(LabelTest, drawsAttributedTextWhereTheCharactersAreLookedUp) {
  place(label, {{0, 0}, {200, 100}});
  const UIFont font = UIFont::systemFont(20);
  label->setAttributedText(NSAttributedString("Hp", {font, UIColor::black(), {}}));
  NSLayoutManager manager;
  NSTextStorage(*label->attributedText()).addLayoutManager(manager);
  manager.addTextContainer(label->textContainer());
  const QRect ink = inked(picture(*label));
  EXPECT_LT(ink.bottom(), manager.usedRect().size.height);
  EXPECT_EQ(manager.characterIndex({double(ink.right() - 1), double(ink.center().y())}), 1U);
  // A plain text stands in the middle.
  label->setFont(font);
  label->setText("Hp");
  EXPECT_FALSE(label->attributedText());
  EXPECT_NEAR(inked(picture(*label)).center().y(), 50, 4);
}

TEST_F(LabelTest, drawsWhatIsSetLast) {
  place(label, {{0, 0}, {200, 30}});
  label->setText("one");
  const QImage one = picture(*label);
  label->setText("another");
  EXPECT_GT(inked(picture(*label)).width(), inked(one).width());
  label->setTextColor(UIColor::blue());
  label->setTextAlignment(NSTextAlignment::right);
  const QImage right = picture(*label);
  EXPECT_GT(inked(right).right(), 190);
  label->setFrame({{0, 0}, {100, 30}});
  settle();
  EXPECT_GT(inked(picture(*label)).right(), 90);
}

TEST_F(LabelTest, letsTouchesThrough) {
  int taps = 0;
  screen().addGestureRecognizer(
      std::make_shared<UITapGestureRecognizer>([&](UITapGestureRecognizer& recognizer) {
        taps += recognizer.view().get() == &screen() ? 1 : 0;
      }));
  place(label, {{0, 0}, {100, 30}});
  EXPECT_EQ(window().hitTest({10, 10}).get(), &screen());
  click(*label);
  label->setUserInteractionEnabled(true);
  EXPECT_EQ(window().hitTest({10, 10}), label);
  click(*label);
  EXPECT_EQ(taps, 2);
}

class ImageViewTest : public Interface {
 protected:
  static QColor color(const UIView& view, QPoint at) { return picture(view).pixelColor(at); }
};

TEST_F(ImageViewTest, placesThePictureByItsContentMode) {
  // 20 x 10 in 40 x 40.
  const auto view = place(std::make_shared<UIImageView>(plain(0xFFFF0000, 20, 10)), {});
  EXPECT_EQ(view->frame().size, CGSize{});
  view->setFrame({{0, 0}, {40, 40}});
  settle();
  const std::vector<std::pair<UIViewContentMode, QRect>> places{
      {UIViewContentMode::scaleToFill, {0, 0, 40, 40}},
      {UIViewContentMode::scaleAspectFit, {0, 10, 40, 20}},
      {UIViewContentMode::scaleAspectFill, {0, 0, 40, 40}},
      {UIViewContentMode::center, {10, 15, 20, 10}}};
  for (const auto& [mode, rect] : places) {
    view->setContentMode(mode);
    EXPECT_EQ(inked(picture(*view)), rect) << int(mode);
    EXPECT_EQ(inked(picture(*view, 2)), QRect(rect.topLeft() * 2, rect.size() * 2)) << int(mode);
  }
  EXPECT_EQ(view->sizeThatFits({1, 1}), (CGSize{20, 10}));
}

TEST_F(ImageViewTest, drawsAPictureWhereItLiesInTheWindow) {
  place(std::make_shared<UIImageView>(plain(0xFFFF0000)), {{30, 50}, {8, 8}});
  EXPECT_EQ(inked(picture(screen())), QRect(30, 50, 8, 8));
}

TEST_F(ImageViewTest, roundsThePictureWithSmoothEdges) {
  const auto view = place(std::make_shared<UIImageView>(plain(0xFF000000)), {{0, 0}, {40, 40}});
  EXPECT_EQ(color(*view, {0, 0}), Qt::black);
  view->layer().setCornerRadius(20);
  view->layer().setMasksToBounds(true);
  const QImage round = picture(*view);
  EXPECT_EQ(round.pixelColor(0, 0), Qt::white);
  EXPECT_EQ(round.pixelColor(20, 20), Qt::black);
  int soft = 0;
  for (int x = 0; x < 20; ++x) {
    for (int y = 0; y < 20; ++y) {
      const int grey = round.pixelColor(x, y).red();
      soft += grey > 40 && grey < 215 ? 1 : 0;
    }
  }
  EXPECT_GT(soft, 10);
}

TEST_F(ImageViewTest, showsSeveralPicturesInTurnAndWakesOnlyForTheNext) {
  const UIImage red = plain(0xFFFF0000);
  const UIImage green = plain(0xFF00FF00);
  const auto view = std::make_shared<UIImageView>();
  place(view, {{0, 0}, {8, 8}});
  view->setImage(UIImage::animatedImage({red, red, red, green}, 0.4));
  settle();
  std::string seen;
  for (int step = 0; step < 9; ++step) {
    seen += color(*view, {4, 4}) == Qt::red ? 'r' : 'g';
    advance(0.1);
  }
  EXPECT_EQ(seen, "rrrgrrrgr");
  // The toolkit draws it anew at changes alone.
  struct Paints : QObject {
    bool eventFilter(QObject*, QEvent* event) override {
      count += event->type() == QEvent::Paint ? 1 : 0;
      return false;
    }
    int count = 0;
  } paints;
  settle();
  view->widget()->installEventFilter(&paints);
  for (int step = 0; step < 40; ++step) advance(0.01);
  EXPECT_EQ(paints.count, 2);
  // One that cannot be seen costs nothing.
  view->setHidden(true);
  advance(1);
  EXPECT_FALSE(AnimationClock::shared().isTicking());
}

class ButtonTest : public Interface {
 protected:
  std::shared_ptr<UIButton> make(const CGRect& frame) {
    auto made = std::make_shared<UIButton>();
    made->setTitle("Next");
    made->setBackgroundColor(UIColor::white());
    made->addAction(UIControlEvents::touchUpInside,
                    [this](const auto& sender) { tapped.push_back(sender.get()); });
    return place(made, frame);
  }
  std::vector<const UIControl*> tapped;
};

TEST_F(ButtonTest, isTappedByPointerKeysAndNothingElse) {
  const auto button = make({{20, 20}, {100, 50}});
  click(*button);
  EXPECT_EQ(tapped.size(), 1U);
  press(*button, {50, 25});
  EXPECT_TRUE(button->isHighlighted());
  release(screen(), {200, 300});
  settle();
  EXPECT_FALSE(button->isHighlighted());
  EXPECT_EQ(tapped.size(), 1U);
  key(Qt::Key_Tab);
  EXPECT_TRUE(button->isFocused());
  key(Qt::Key_Space);
  key(Qt::Key_Return);
  EXPECT_EQ(tapped.size(), 3U);
  button->setEnabled(false);
  click(*button);
  key(Qt::Key_Space);
  EXPECT_EQ(tapped.size(), 3U);
}

TEST_F(ButtonTest, isTappedOnceByAKeyThatIsHeld) {
  const auto button = make({{20, 20}, {100, 50}});
  button->becomeFocused();
  for (const auto held : {Qt::Key_Return, Qt::Key_Space}) {
    tapped.clear();
    key(held);
    for (int repeat = 0; repeat < 3; ++repeat) {
      QKeyEvent event(QEvent::KeyPress, held, {}, "\r", true);
      QApplication::sendEvent(button->widget(), &event);
      EXPECT_TRUE(event.isAccepted());
    }
    EXPECT_EQ(tapped.size(), 1U);
  }
}

TEST_F(ButtonTest, leavesATouchToNoRecogniserThatHasGoneMeanwhile) {
  const auto ground = place(std::make_shared<UIView>(), {{0, 0}, {200, 200}});
  int taps = 0;
  const auto recognizer =
      std::make_shared<UITapGestureRecognizer>([&](UITapGestureRecognizer&) { ++taps; });
  ground->addGestureRecognizer(recognizer);
  click(*ground);
  EXPECT_EQ(taps, 1);
  press(*ground, {10, 10});
  recognizer->setEnabled(false);
  release(*ground, {10, 10});
  recognizer->setEnabled(true);
  press(*ground, {10, 10});
  ground->removeGestureRecognizer(*recognizer);
  EXPECT_EQ(recognizer->view(), nullptr);
  release(*ground, {10, 10});
  EXPECT_EQ(taps, 1);
}

TEST_F(ButtonTest, isTappedByAFinger) {
  const auto button = make({{20, 20}, {100, 50}});
  const std::unique_ptr<QPointingDevice> finger(QTest::createTouchDevice());
  const auto [widget, at] = under(*button, middle(*button));
  QTest::touchEvent(widget, finger.get()).press(0, at, widget);
  QTest::touchEvent(widget, finger.get()).release(0, at, widget);
  settle();
  EXPECT_EQ(tapped.size(), 1U);
}

TEST_F(ButtonTest, isDarkerWhilePressed) {
  const auto button = make({{20, 20}, {100, 50}});
  EXPECT_EQ(picture(*button).pixelColor(3, 3).red(), 255);
  press(*button, {50, 25});
  EXPECT_NEAR(picture(*button).pixelColor(3, 3).red(), 255 * 0.92, 1);
  release(*button, {50, 25});
  button->setTitleColor(UIColor(1, 0, 0, 1), UIControlState::disabled);
  button->setEnabled(false);
  EXPECT_EQ(button->titleColor(UIControlState::disabled), UIColor(1, 0, 0, 1));
  const QImage image = picture(*button);
  const QRect ink = inked(image);
  EXPECT_NEAR(ink.center().x(), 50, 1);
  EXPECT_NEAR(ink.center().y(), 25, 3);
  EXPECT_EQ(image.pixelColor(ink.center()).red(), 255);
}

TEST_F(ButtonTest, takesTouchesAround44PointsButNotThoseOfItsNeighbours) {
  const auto below = make({{100, 100}, {44, 20}});
  const auto small = make({{100, 120}, {20, 20}});
  click(screen(), {95, 145});
  click(screen(), {110, 125});
  click(screen(), {110, 118});
  click(screen(), {85, 130});
  EXPECT_EQ(tapped, (std::vector<const UIControl*>{small.get(), small.get(), below.get()}));
  EXPECT_EQ(small->sizeThatFits({}).height, 44);
}

TEST_F(ButtonTest, mayEndInItsOwnAction) {
  auto button = make({{20, 20}, {100, 50}});
  button->addAction(UIControlEvents::touchUpInside, [&](const auto&) {
    button->removeFromSuperview();
    button.reset();
  });
  const std::weak_ptr<UIButton> weak = button;
  click(screen(), {40, 40});
  EXPECT_TRUE(weak.expired());
}

}  // namespace

}  // namespace kestrova::test
