#include <string>
#include <utility>

#include "examples/gallery/Countries.h"
#include "examples/gallery/Look.h"
#include "examples/gallery/PageScreen.h"
#include "examples/gallery/Pages.h"
#include "platform/uikit/UITableView.h"

namespace kestrova::gallery {

namespace {

using Report = std::function<void(const std::string& line)>;

class FormScreen : public PageScreen {
 public:
  explicit FormScreen(Report report) : PageScreen("Form"), report_(std::move(report)) {
    const auto name = field("Name");
    name->addAction(UIControlEvents::editingDidBegin, [this](const auto&) { tell("editing"); });
    name->addAction(UIControlEvents::editingChanged, [this](const auto& sender) {
      tell("text " + dynamic_cast<const UITextField&>(*sender).text());
    });
    name->addAction(UIControlEvents::editingDidEnd, [this](const auto&) { tell("edited"); });
    add("", name, 52);
    const auto button = primaryButton("Next");
    button->addAction(UIControlEvents::touchUpInside,
                      [this](const auto&) { tell("tapped " + std::to_string(++taps_)); });
    add("", button, 52);
    const auto table = countries_->makeTable();
    table->layer().setCornerRadius(8);
    table->layer().setBorderWidth(1.5);
    table->layer().setBorderColor(kLine);
    countries_->onChosen = [this](const std::string& country) { tell("chosen " + country); };
    addFilling("", table);
  }

 private:
  void tell(const std::string& line) {
    if (report_) report_(line);
  }

  Report report_;
  int taps_ = 0;
  std::shared_ptr<Countries> countries_ = std::make_shared<Countries>();
};

}  // namespace

std::shared_ptr<UIViewController> formPage(Report report) {
  return std::make_shared<FormScreen>(std::move(report));
}

}  // namespace kestrova::gallery
