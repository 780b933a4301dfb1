#pragma once

#include <memory>
#include <string>

#include "platform/uikit/UIViewController.h"
#include "sdk/Platform.h"
#include "sdk/flow/DocumentSelectionDelegate.h"

namespace kestrova::platform {
class UIButton;
}

namespace kestrova {

// Where the user says which document they will photograph.
class ChooseDocumentTypeViewController : public UIViewController, public DocumentSelectionDelegate {
 public:
  std::weak_ptr<UIButton> nextButton;
  // The backend's name of the document; empty while nothing is chosen.
  std::string selectedDocumentType;

  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  void didClickOnCell(const std::string& selectedDocument) override;
  void nextButtonTapped(const std::shared_ptr<UIControl>& sender);
  void chooseDocumentAndSendToBackend(const std::string& document);
  void prepare(const UIStoryboardSegue& segue,
               const std::shared_ptr<UIViewController>& sender) override;
};

}  // namespace kestrova
