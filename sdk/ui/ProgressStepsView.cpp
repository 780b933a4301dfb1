#include "sdk/ui/ProgressStepsView.h"

#include "platform/uikit/Canvas.h"
#include "sdk/ui/Extensions.h"

namespace kestrova {

namespace {

constexpr double kShort = 8;
constexpr double kLong = 24;
constexpr double kThickness = 4;
constexpr double kGap = 6;

}  // namespace

ProgressStepsView::ProgressStepsView() {
  setAccessibilityRole(UIAccessibilityRole::staticText);
}

void ProgressStepsView::setCurrentStep(std::size_t step) {
  currentStep_ = step;
  setNeedsDisplay();
}

void ProgressStepsView::setStepCount(std::size_t count) {
  stepCount_ = count;
  setNeedsDisplay();
}

CGSize ProgressStepsView::sizeThatFits(CGSize) const {
  return {double(stepCount_ - 1) * (kShort + kGap) + kLong, kThickness};
}

std::string ProgressStepsView::accessibilityLabel() const {
  if (currentStep_ >= stepCount_) return "All steps complete";
  return "Step " + std::to_string(currentStep_ + 1) + " of " + std::to_string(stepCount_);
}

void ProgressStepsView::draw(Canvas& canvas) {
  const double width = sizeThatFits({}).width;
  double x = (bounds().size.width - width) / 2;
  const double y = (bounds().size.height - kThickness) / 2;
  for (std::size_t step = 0; step < stepCount_; ++step) {
    const bool isLong =
        step == currentStep_ || (currentStep_ >= stepCount_ && step == stepCount_ - 1);
    const double length = isLong ? kLong : kShort;
    const bool isDone = step <= currentStep_;
    canvas.fill({{x, y}, {length, kThickness}},
                isDone ? UIColorExtensions::kestrovaBlue() : UIColorExtensions::borderColorGrey(),
                kThickness / 2);
    x += length + kGap;
  }
}

}  // namespace kestrova
