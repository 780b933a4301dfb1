#pragma once

#include <functional>
#include <memory>
#include <string>

#include "sdk/Platform.h"

namespace kestrova::platform {
class UIViewController;
}

namespace kestrova::gallery {

std::shared_ptr<UIViewController> typePage();
std::shared_ptr<UIViewController> textPage();
std::shared_ptr<UIViewController> imagesPage();
std::shared_ptr<UIViewController> animationsPage();
std::shared_ptr<UIViewController> buttonsPage();
std::shared_ptr<UIViewController> startButtonPage();
std::shared_ptr<UIViewController> fieldsPage();
std::shared_ptr<UIViewController> editingPage();
std::shared_ptr<UIViewController> scrollPage();
std::shared_ptr<UIViewController> tablePage();
std::shared_ptr<UIViewController> keyboardTablePage();
std::shared_ptr<UIViewController> spinnersPage();
std::shared_ptr<UIViewController> shapesPage();
std::shared_ptr<UIViewController> alertPage();
std::shared_ptr<UIViewController> clearBarPage();
std::shared_ptr<UIViewController> sheetPage();
std::shared_ptr<UIViewController> storyboardPage();

// A button, a field and a list. `report` gets a line for each thing that people do; empty for
// nobody.
std::shared_ptr<UIViewController> formPage(std::function<void(const std::string& line)> report);

}  // namespace kestrova::gallery
