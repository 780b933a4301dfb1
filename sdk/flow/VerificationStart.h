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
  // Ends the whole flow. After the first upload it asks once before that, unless there is nothing
  // left to lose; pressed again over the question, it ends the flow.
  void exitVerification(const std::shared_ptr<UIControl>& sender);
  // As exitVerification().
  bool accessibilityPerformEscape() override;
  // From a screen of the flow whose upload begins.
  static void uploadBegan(const UIViewController& screen);

 private:
  bool asksBeforeLeaving() const;
  void ask();
  void leave();

  bool hasUpload_ = false;
  // The question, and whether its motion has ended.
  std::weak_ptr<UIViewController> question_;
  bool isQuestionReadable_ = false;
};

}  // namespace kestrova
