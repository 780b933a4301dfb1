#pragma once

#include <cstddef>

#include "platform/uikit/UIView.h"
#include "sdk/Platform.h"

namespace kestrova {

// The steps of a verification as small bars: those done and the current one in blue, the current
// one longer.
class ProgressStepsView : public UIView {
 public:
  static constexpr std::size_t kSteps = 6;

  ProgressStepsView();

  // From 0; kSteps when all are done.
  std::size_t currentStep() const { return currentStep_; }
  void setCurrentStep(std::size_t step);

  CGSize sizeThatFits(CGSize size) const override;
  std::string accessibilityLabel() const override;

 protected:
  void draw(Canvas& canvas) override;

 private:
  std::size_t currentStep_ = 0;
};

}  // namespace kestrova
