#include "sdk/flow/VerificationStart.h"

#include <optional>

#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UIBindings.h"
#include "sdk/flow/Animations.h"
#include "sdk/flow/CheckEmailViewController.h"
#include "sdk/flow/ChooseCitizenViewController.h"
#include "sdk/flow/ChooseDocumentTypeViewController.h"
#include "sdk/flow/CongratsViewController.h"
#include "sdk/flow/MoveHeadViewController.h"
#include "sdk/flow/ScanBacksideViewController.h"
#include "sdk/flow/ScanIDInstructionsViewController.h"
#include "sdk/flow/WarningViewController.h"
#include "sdk/ui/ProgressStepsView.h"

namespace kestrova {

namespace {

// None for a screen that is no step of its own.
std::optional<std::size_t> stepOf(const UIViewController& screen) {
  if (dynamic_cast<const ChooseCitizenViewController*>(&screen)) return 0;
  if (dynamic_cast<const CheckEmailViewController*>(&screen)) return 1;
  if (dynamic_cast<const MoveHeadViewController*>(&screen)) return 2;
  if (dynamic_cast<const ChooseDocumentTypeViewController*>(&screen)) return 3;
  if (dynamic_cast<const ScanIDInstructionsViewController*>(&screen)) return 4;
  if (dynamic_cast<const ScanBacksideViewController*>(&screen)) return 5;
  if (dynamic_cast<const CongratsViewController*>(&screen)) return ProgressStepsView::kMaxSteps;
  return std::nullopt;
}

// A passport has one step less: no back. None if the screen does not know the document.
std::optional<std::size_t> stepCountOf(const UIViewController& screen) {
  const std::string* document = nullptr;
  if (const auto* front = dynamic_cast<const ScanIDInstructionsViewController*>(&screen)) {
    document = &front->selectedDocumentType;
  } else if (const auto* type = dynamic_cast<const ChooseDocumentTypeViewController*>(&screen)) {
    document = &type->selectedDocumentType;
  }
  if (!document) return std::nullopt;
  constexpr auto kMaxSteps = ProgressStepsView::kMaxSteps;
  return *document == "PASSPORT" ? kMaxSteps - 1 : kMaxSteps;
}

}  // namespace

VerificationStart::~VerificationStart() {
  forgetGIFs();
}

void VerificationStart::bind(UIBindings& bindings) {
  bindings.outlet("progressSteps", progressSteps);
  bindings.action("exitVerification:", shared(this), &VerificationStart::exitVerification);
}

void VerificationStart::viewDidLoad() {
  UIViewController::viewDidLoad();
}

void VerificationStart::prepare(const UIStoryboardSegue& segue,
                                const std::shared_ptr<UIViewController>&) {
  if (const auto navigation =
          std::dynamic_pointer_cast<UINavigationController>(segue.destination)) {
    navigation->delegate = shared(this);
  }
}

void VerificationStart::navigationControllerWillShow(UINavigationController&,
                                                     UIViewController& screen, bool) {
  const auto steps = progressSteps.lock();
  const auto step = stepOf(screen);
  const auto count = stepCountOf(screen);
  if (steps && count) steps->setStepCount(*count);
  if (steps && step) steps->setCurrentStep(*step);
}

std::shared_ptr<UIViewController> VerificationStart::contentScreen() {
  return children().empty() ? UIViewController::contentScreen()
                            : children().front()->contentScreen();
}

void VerificationStart::uploadBegan(const UIViewController& screen) {
  for (auto above = screen.parent(); above; above = above->parent()) {
    if (auto* const flow = dynamic_cast<VerificationStart*>(above.get())) flow->hasUpload_ = true;
  }
}

bool VerificationStart::asksBeforeLeaving() const {
  const auto navigation =
      children().empty() ? nullptr
                         : std::dynamic_pointer_cast<UINavigationController>(children().front());
  const auto top = navigation ? navigation->topViewController() : nullptr;
  if (!hasUpload_ || !top || dynamic_cast<const CongratsViewController*>(top.get())) return false;
  const auto* const warning = dynamic_cast<const WarningViewController*>(top.get());
  return !warning || warning->canTryAgain();
}

void VerificationStart::exitVerification(const std::shared_ptr<UIControl>&) {
  leave();
}

bool VerificationStart::accessibilityPerformEscape() {
  leave();
  return true;
}

void VerificationStart::leave() {
  const auto presented = presentedViewController();
  if (!presented && asksBeforeLeaving()) return ask();
  // The second tap of a double tap must not answer the question.
  if (presented && presented == question_.lock() && !isQuestionReadable_) return;
  endPresentation(true);
}

void VerificationStart::ask() {
  const auto question = std::make_shared<UIAlertController>(
      "Leave the verification?", "You’ll need to start again from the beginning.");
  const std::weak_ptr<VerificationStart> weak = shared(this);
  question->addAction(std::make_shared<UIAlertAction>("Stay", UIAlertActionStyle::cancel));
  question->addAction(std::make_shared<UIAlertAction>("Leave", UIAlertActionStyle::standard,
                                                      [weak](UIAlertAction&) {
                                                        if (const auto alive = weak.lock())
                                                          alive->endPresentation(true);
                                                      }));
  question_ = question;
  isQuestionReadable_ = false;
  present(question, true, [weak] {
    if (const auto alive = weak.lock()) alive->isQuestionReadable_ = true;
  });
}

}  // namespace kestrova
