#include "sdk/flow/Flow.h"

#include "platform/dispatch/Once.h"
#include "platform/uikit/UIClassRegistry.h"
#include "platform/uikit/UIStoryboard.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/CheckEmailViewController.h"
#include "sdk/flow/ChooseCitizenCell.h"
#include "sdk/flow/ChooseCitizenViewController.h"
#include "sdk/flow/ChooseDocumentTypeViewController.h"
#include "sdk/flow/CongratsViewController.h"
#include "sdk/flow/DocumentCardCollView.h"
#include "sdk/flow/DocumentTableViewCell.h"
#include "sdk/flow/DocumentTableViewController.h"
#include "sdk/flow/LoginViewController.h"
#include "sdk/flow/MoveHeadViewController.h"
#include "sdk/flow/ScanBacksideViewController.h"
#include "sdk/flow/ScanIDInstructionsViewController.h"
#include "sdk/flow/VerificationStart.h"
#include "sdk/flow/WarningViewController.h"
#include "sdk/ui/ViewClasses.h"

namespace kestrova {

void registerFlowClasses() {
  static Once& once = *new Once;
  once([] {
    UIClassRegistry::registerClass<VerificationStart>("VerificationStart");
    UIClassRegistry::registerClass<LoginViewController>("LoginViewController");
    UIClassRegistry::registerClass<WarningViewController>("WarningViewController");
    UIClassRegistry::registerClass<CongratsViewController>("CongratsViewController");
    UIClassRegistry::registerClass<ChooseCitizenViewController>("ChooseCitizenViewController");
    UIClassRegistry::registerClass<ChooseCitizenCell>("ChooseCitizenCell");
    UIClassRegistry::registerClass<ChooseCitizenSeparatorCell>("ChooseCitizenSeparatorCell");
    UIClassRegistry::registerClass<CheckEmailViewController>("CheckEmailViewController");
    UIClassRegistry::registerClass<MoveHeadViewController>("MoveHeadViewController");
    UIClassRegistry::registerClass<ChooseDocumentTypeViewController>(
        "ChooseDocumentTypeViewController");
    UIClassRegistry::registerClass<DocumentTableViewController>("DocumentTableViewController");
    UIClassRegistry::registerClass<DocumentTableViewCell>("DocumentTableViewCell");
    UIClassRegistry::registerClass<DocumentCardCollView>("DocumentCardCollView");
    UIClassRegistry::registerClass<ScanIDInstructionsViewController>(
        "ScanIDInstructionsViewController");
    UIClassRegistry::registerClass<ScanBacksideViewController>("ScanBacksideViewController");
    registerViewClasses();
  });
}

Result<std::shared_ptr<UIViewController>> makeFlow() {
  registerFlowClasses();
  const auto bundle = Kestrova::bundle();
  if (!bundle) return NSError{"Kestrova", 0, "Kestrova.bundle is missing"};
  const auto storyboard = UIStoryboard::make("FrameworkStoryboard", *bundle);
  if (!storyboard) return storyboard.error();
  // A screen that does not fit is found now, not in the middle of a verification.
  const auto verified = storyboard.value()->verify();
  if (!verified) return verified.error();
  return storyboard.value()->instantiateInitialViewController();
}

}  // namespace kestrova
