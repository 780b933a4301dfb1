#pragma once

#include <cstddef>

#include "platform/uikit/UIView.h"
#include "sdk/Platform.h"

namespace kestrova {

// The steps of a verification as small bars: those done and the current one in blue, the current
// one longer.
class ProgressStepsView : public UIView {
 public:
  static constexpr std::size_t kMaxSteps = 6;

  ProgressStepsView();

  // Number of steps of this verification: kMaxSteps, or less where the document has no back.
  std::size_t stepCount() const { return stepCount_; }
  void setStepCount(std::size_t count);
  // From 0; stepCount() or more when all are complete.
  std::size_t currentStep() const { return currentStep_; }
  void setCurrentStep(std::size_t step);

  CGSize sizeThatFits(CGSize size) const override;
  std::string accessibilityLabel() const override;

 protected:
  void draw(Canvas& canvas) override;

 private:
  std::size_t stepCount_ = kMaxSteps;
  std::size_t currentStep_ = 0;
};

}  // namespace kestrova
