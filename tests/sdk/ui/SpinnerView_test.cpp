#include "sdk/ui/SpinnerView.h"

#include <cmath>
#include <limits>
#include <numbers>

#include "sdk/ui/Extensions.h"
#include "tests/platform/uikit/Interface.h"

namespace kestrova {
namespace {

class Spinner : public test::Interface {
 protected:
  // The blue pixels of what is seen.
  static int bluePixels(const UIView& view) {
    const QImage image = picture(view);
    int blue = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        const QColor color = image.pixelColor(x, y);
        blue += color.blue() > 200 && color.red() < 80 ? 1 : 0;
      }
    }
    return blue;
  }
};

TEST_F(Spinner, TurnsByNineMomentsOfWhichTheLastTwoAreTheEnd) {
  const auto spinner = place(std::make_shared<SpinnerView>(), {{10, 10}, {40, 40}});
  spinner->animate();
  EXPECT_EQ(spinner->layer().animationKeys(),
            (std::vector<std::string>{"strokeEnd", "transform.rotation"}));
  const auto ends = spinner->layer().animation("strokeEnd");
  const auto turns = spinner->layer().animation("transform.rotation");
  ASSERT_TRUE(ends && turns);
  EXPECT_EQ(ends->keyTimes, turns->keyTimes);
  EXPECT_EQ(ends->values, (std::vector<double>{0.7, 0.5, 0.3, 0.1, 0.1, 0.3, 0.5, 0.7, 0.7}));
  ASSERT_EQ(turns->values.size(), 9U);
  const double halves[] = {0, 1, 2, 3, 3.75, 4.5, 5.25, 6, 0};
  const double moments[] = {0, 6, 12, 18, 20, 22, 24, 26, 26};
  for (std::size_t index = 0; index < 9; ++index) {
    EXPECT_NEAR(turns->values[index], halves[index] * std::numbers::pi, 1e-12);
    EXPECT_NEAR(turns->keyTimes[index], moments[index] / 26, 1e-12);
    if (index > 0) {
      EXPECT_GE(turns->keyTimes[index], turns->keyTimes[index - 1]);
    }
  }
  EXPECT_EQ(turns->keyTimes[7], 1.0);
  EXPECT_EQ(turns->keyTimes[8], 1.0);
  EXPECT_NEAR(turns->duration, 2.6, 1e-12);
  EXPECT_EQ(turns->repeatCount, std::numeric_limits<double>::infinity());
}

TEST_F(Spinner, DrawsAnEllipseInsideItsBoundsThatFollowsItsSize) {
  const auto spinner = place(std::make_shared<SpinnerView>(), {{10, 10}, {60, 40}});
  EXPECT_EQ(spinner->layer().path(), UIBezierPath::ovalIn({{1.5, 1.5}, {57, 37}}).cgPath());
  EXPECT_EQ(spinner->layer().lineWidth(), 3);
  EXPECT_EQ(spinner->layer().strokeColor(), UIColorExtensions::kestrovaBlue());
  EXPECT_EQ(spinner->layer().fillColor(), std::nullopt);
  const auto before = spinner->layer().presentationValue("transform.rotation");
  advance(0.3);
  spinner->setFrame({{10, 10}, {80, 80}});
  settle();
  EXPECT_EQ(spinner->layer().path(), UIBezierPath::ovalIn({{1.5, 1.5}, {77, 77}}).cgPath());
  // Without starting anew.
  EXPECT_NEAR(*spinner->layer().presentationValue("transform.rotation") - *before,
              std::numbers::pi / 2, 1e-6);
}

TEST_F(Spinner, ShrinksAndGrowsAndCostsNothingWhileItIsHidden) {
  const auto spinner = place(std::make_shared<SpinnerView>(), {{10, 10}, {40, 40}});
  const int most = bluePixels(*spinner);
  advance(1.8);
  const int least = bluePixels(*spinner);
  EXPECT_GT(least, 0);
  EXPECT_LT(least * 4, most);
  settle();
  EXPECT_TRUE(AnimationClock::shared().isTicking());
  spinner->setHidden(true);
  advance(0.1);
  EXPECT_FALSE(AnimationClock::shared().isTicking());
  spinner->setHidden(false);
  settle();
  EXPECT_TRUE(AnimationClock::shared().isTicking());
}

}  // namespace
}  // namespace kestrova
