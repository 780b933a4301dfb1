#include "sdk/flow/ChooseDocumentTypeViewController.h"

#include "platform/foundation/Print.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIButton.h"
#include "sdk/backend/API.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/DocumentTableViewController.h"
#include "sdk/flow/NextStep.h"
#include "sdk/flow/ScanIDInstructionsViewController.h"
#include "sdk/flow/Segues.h"
#include "sdk/ui/Extensions.h"

namespace kestrova {

void ChooseDocumentTypeViewController::bind(UIBindings& bindings) {
  bindings.outlet("nextButton", nextButton);
  bindings.action("nextButtonTapped:", shared(this),
                  &ChooseDocumentTypeViewController::nextButtonTapped);
}

void ChooseDocumentTypeViewController::viewDidLoad() {
  UIViewController::viewDidLoad();
  const auto button = nextButton.lock();
  if (!button) return;
  button->setEnabled(false);
  button->setBackgroundColor(UIColor::lightGray());
}

void ChooseDocumentTypeViewController::didClickOnCell(const std::string& selectedDocument) {
  if (const auto button = nextButton.lock()) {
    button->setEnabled(true);
    button->setBackgroundColor(UIColorExtensions::kestrovaBlue());
  }
  selectedDocumentType = selectedDocument;
}

void ChooseDocumentTypeViewController::nextButtonTapped(const std::shared_ptr<UIControl>&) {
  chooseDocumentAndSendToBackend(selectedDocumentType);
  performSegue(Segues::prepareDocumentSegue, shared(this));
}

void ChooseDocumentTypeViewController::chooseDocumentAndSendToBackend(const std::string& document) {
  if (!Kestrova::authentication_key) {
    print("Auth key not initialized");
    performSegue(Segues::showErrorScreenfromHeadMovement, shared(this));
    return;
  }
  if (!Kestrova::apiKey) {
    print("Api key not initialized");
    performSegue(Segues::showErrorScreenfromHeadMovement, shared(this));
    return;
  }
  API::chooseAuthenticationDocument(
      *Kestrova::apiKey, *Kestrova::authentication_key, document, [](const JSONDictionary& answer) {
        print("chooseAuthenticationDocument response: " + description(answer));
        storeNextStep(answer);
      });
}

void ChooseDocumentTypeViewController::prepare(const UIStoryboardSegue& segue,
                                               const std::shared_ptr<UIViewController>&) {
  if (segue.identifier == Segues::prepareDocumentSegue) {
    if (const auto front =
            std::dynamic_pointer_cast<ScanIDInstructionsViewController>(segue.destination)) {
      front->selectedDocumentType = selectedDocumentType;
    }
  }
  if (segue.identifier == Segues::documentSelectionEmbedded) {
    if (const auto table =
            std::dynamic_pointer_cast<DocumentTableViewController>(segue.destination)) {
      table->delegate = shared(this);
    }
  }
}

}  // namespace kestrova
