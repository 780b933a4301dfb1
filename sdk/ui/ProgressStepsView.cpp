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

CGSize ProgressStepsView::sizeThatFits(CGSize) const {
  return {(kSteps - 1) * (kShort + kGap) + kLong, kThickness};
}

std::string ProgressStepsView::accessibilityLabel() const {
  if (currentStep_ >= kSteps) return "All steps are done";
  return "Step " + std::to_string(currentStep_ + 1) + " of " + std::to_string(kSteps);
}

void ProgressStepsView::draw(Canvas& canvas) {
  const double width = sizeThatFits({}).width;
  double x = (bounds().size.width - width) / 2;
  const double y = (bounds().size.height - kThickness) / 2;
  for (std::size_t step = 0; step < kSteps; ++step) {
    const bool isLong = step == currentStep_ || (currentStep_ >= kSteps && step == kSteps - 1);
    const double length = isLong ? kLong : kShort;
    const bool isDone = step <= currentStep_;
    canvas.fill({{x, y}, {length, kThickness}},
                isDone ? UIColorExtensions::kestrovaBlue() : UIColorExtensions::borderColorGrey(),
                kThickness / 2);
    x += length + kGap;
  }
}

}  // namespace kestrova
