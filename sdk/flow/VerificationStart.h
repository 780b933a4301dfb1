#pragma once

#include <memory>

#include "platform/uikit/UINavigationController.h"
#include "sdk/Platform.h"

namespace kestrova {

class ProgressStepsView;

// The frame around all screens of the flow: how far it has come, and the way out.
class VerificationStart : public UIViewController, public UINavigationControllerDelegate {
 public:
  std::weak_ptr<ProgressStepsView> progressSteps;

  VerificationStart() = default;
  ~VerificationStart() override;
  VerificationStart(const VerificationStart&) = delete;
  VerificationStart& operator=(const VerificationStart&) = delete;

  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  void prepare(const UIStoryboardSegue& segue,
               const std::shared_ptr<UIViewController>& sender) override;
  void navigationControllerWillShow(UINavigationController& navigation, UIViewController& screen,
                                    bool animated) override;
  std::shared_ptr<UIViewController> contentScreen() override;
  // Ends the whole flow.
  void exitVerification(const std::shared_ptr<UIControl>& sender);
  bool accessibilityPerformEscape() override;
};

}  // namespace kestrova
