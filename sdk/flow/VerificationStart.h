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
  // Ends the flow. After the first upload it asks for confirmation, unless nothing can be lost any
  // more; a second press, while the question is shown, ends the flow.
  void exitVerification(const std::shared_ptr<UIControl>& sender);
  // Same as exitVerification().
  bool accessibilityPerformEscape() override;
  // Called by a screen of the flow when its upload begins.
  static void uploadBegan(const UIViewController& screen);

 private:
  bool asksBeforeLeaving() const;
  void ask();
  void leave();

  bool hasUpload_ = false;
  // The question, and true once its motion has ended.
  std::weak_ptr<UIViewController> question_;
  bool isQuestionReadable_ = false;
};

}  // namespace kestrova
