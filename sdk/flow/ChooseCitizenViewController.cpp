#include "sdk/flow/ChooseCitizenViewController.h"

#include <algorithm>

#include "platform/foundation/NotificationCenter.h"
#include "platform/foundation/Print.h"
#include "platform/uikit/NSLayoutConstraint.h"
#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIDevice.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UIKeyboard.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UINavigationBar.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UITouch.h"
#include "sdk/backend/API.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/ChooseCitizenCell.h"
#include "sdk/flow/Segues.h"
#include "sdk/ui/Extensions.h"

namespace kestrova {

namespace {

constexpr double kCollapsed = 60;
constexpr double kOpen = 300;
constexpr double kDropdownSeconds = 0.3;
constexpr double kSeparatorHeight = 20;
constexpr double kCountryHeight = 44;
constexpr double kDisclaimerSize = 10;
constexpr std::string_view kSite = "https://" KESTROVA_SITE_HOST;

std::optional<UIImage> image(std::string_view name) {
  const auto bundle = Kestrova::bundle();
  return bundle ? UIImage::named(name, *bundle) : std::nullopt;
}

void openPage(std::string_view path) {
  const std::string url = std::string(kSite) + std::string(path);
  const auto& application = UIApplication::shared();
  if (UIDevice::current().hasSystemVersion(10)) {
    application->open(url);
  } else {
    application->openURL(url);
  }
}

}  // namespace

void ChooseCitizenViewController::bind(UIBindings& bindings) {
  bindings.outlet("encryptionIconView", encryptionIconView);
  bindings.outlet("countryIcon", countryIcon);
  bindings.outlet("countryTextfield", countryTextfield);
  bindings.outlet("dropdownBackgroundView", dropdownBackgroundView);
  bindings.outlet("chooseButton", chooseButton);
  bindings.outlet("borderView", borderView);
  bindings.outlet("dropdownHeightConstraint", dropdownHeightConstraint);
  bindings.outlet("tableView", tableView);
  bindings.outlet("disclaimerLabel", disclaimerLabel);
  bindings.outlet("page", page);
  bindings.action("tapOnArrow:", shared(this), &ChooseCitizenViewController::tapOnArrow);
  bindings.action("startButton:", shared(this), &ChooseCitizenViewController::startButton);
  bindings.action("exitVerification:", shared(this),
                  &ChooseCitizenViewController::exitVerification);
}

void ChooseCitizenViewController::viewDidLoad() {
  UIViewController::viewDidLoad();
  auto& bars = UINavigationBar::appearance();
  bars.setBackgroundImage(std::nullopt, UIBarPosition::any, UIBarMetrics::standard);
  bars.setShadowImage(std::nullopt);
  prepareTextlabel();
  loadCountrylist();
  makeGrayBorder();
  makeEncryptionIconRound();
  if (const auto field = countryTextfield.lock()) field->setAccessibilityExpanded(false);
  setChooseButton(false);
  if (const auto table = tableView.lock()) table->setFocusable(false);
  const auto tap = std::make_shared<UITapGestureRecognizer>(
      shared(this), &ChooseCitizenViewController::internalHideKeyboard);
  tap->delegate = shared(this);
  view()->addGestureRecognizer(tap);
  NotificationCenter::defaultCenter().addObserver<ChooseCitizenViewController>(
      shared(this), [](ChooseCitizenViewController& self, const Notification&) { self.showList(); },
      UIKeyboardWillShowNotification);
}

const std::vector<CountryEntry>& ChooseCitizenViewController::displayed() const {
  return searchCountries.empty() ? countries : searchCountries;
}

void ChooseCitizenViewController::setIcon(std::string_view code) {
  const auto icon = countryIcon.lock();
  if (!icon) return;
  auto flag = code.empty() ? std::nullopt : image(code);
  icon->setImage(flag ? std::move(flag) : image("greyCircleDefault"));
}

void ChooseCitizenViewController::setChooseButton(bool enabled) {
  const auto button = chooseButton.lock();
  if (!button) return;
  button->setEnabled(enabled);
  button->setBackgroundColor(enabled ? UIColorExtensions::kestrovaBlue() : UIColor::lightGray());
}

bool ChooseCitizenViewController::textFieldShouldBeginEditing(UITextField& textField) {
  if (!shouldShowKeyboard) {
    shouldShowKeyboard = true;
    tapOnArrow(nullptr);
    return false;
  }
  textField.setText("");
  selectedCountryCode.clear();
  setIcon({});
  setChooseButton(false);
  return true;
}

void ChooseCitizenViewController::textFieldWillBeginTyping(UITextField&) {
  if (shouldShowKeyboard) return;
  shouldShowKeyboard = true;
  tapOnArrow(nullptr);
}

bool ChooseCitizenViewController::textFieldShouldChangeCharactersIn(
    UITextField& textField, NSRange range, std::string_view replacementString) {
  searchCountrylist(replacingCharacters(textField.text(), range, replacementString));
  return true;
}

bool ChooseCitizenViewController::textFieldKeyPressed(UITextField&, std::string_view key) {
  const auto table = tableView.lock();
  if (!table) return false;
  if (key == "Return") {
    if (!isListOpen()) return false;
    if (!table->focusedRow() && searchCountries.size() == 1) table->moveFocusedRow(1);
    if (!table->focusedRow()) return false;
    table->selectFocusedRow();
    return true;
  }
  if (!isListOpen()) {
    shouldShowKeyboard = true;
    tapOnArrow(nullptr);
    return true;
  }
  constexpr int kPage = 4;
  const int step = key.starts_with("Page") ? kPage : 1;
  table->moveFocusedRow(key.ends_with("Up") ? -step : step);
  return true;
}

std::size_t ChooseCitizenViewController::tableViewNumberOfRowsInSection(UITableView&, std::size_t) {
  return displayed().size();
}

std::shared_ptr<UITableViewCell> ChooseCitizenViewController::tableViewCellForRowAt(
    UITableView& table, const IndexPath& indexPath) {
  const auto& country = displayed()[indexPath.row];
  if (isSeparator(country)) return table.dequeueReusableCell("SeparatorCell");
  auto cell = table.dequeueReusableCell("CountryCell");
  if (const auto typed = std::dynamic_pointer_cast<ChooseCitizenCell>(cell)) {
    if (const auto label = typed->cityLabel.lock()) label->setText(capitalized(nameOf(country)));
    if (const auto icon = typed->iconView.lock()) icon->setImage(image(codeOf(country)));
  }
  return cell;
}

double ChooseCitizenViewController::tableViewHeightForRowAt(UITableView&,
                                                            const IndexPath& indexPath) {
  return isSeparator(displayed()[indexPath.row]) ? kSeparatorHeight : kCountryHeight;
}

std::string ChooseCitizenViewController::tableViewAccessibilityLabelForRowAt(
    UITableView&, const IndexPath& indexPath) {
  const auto& country = displayed()[indexPath.row];
  return isSeparator(country) ? "All countries" : capitalized(nameOf(country));
}

bool ChooseCitizenViewController::tableViewShouldHighlightRowAt(UITableView&,
                                                                const IndexPath& indexPath) {
  return !isSeparator(displayed()[indexPath.row]);
}

void ChooseCitizenViewController::tableViewDidSelectRowAt(UITableView& table,
                                                          const IndexPath& indexPath) {
  table.deselectRow(indexPath, true);
  const auto& country = displayed()[indexPath.row];
  if (isSeparator(country)) return;
  if (const auto field = countryTextfield.lock()) field->setText(capitalized(nameOf(country)));
  selectedCountryCode = codeOf(country);
  setIcon(selectedCountryCode);
  setChooseButton(true);
  internalHideKeyboard();
}

void ChooseCitizenViewController::setDropdownHeight(double height) {
  if (const auto table = tableView.lock()) {
    const auto field = countryTextfield.lock();
    const bool isClosing = height == kCollapsed;
    if (isClosing && table->isFocused() && field) field->becomeFocused();
    table->setFocusable(!isClosing);
    if (field) field->setAccessibilityExpanded(!isClosing);
  }
  if (const auto constraint = dropdownHeightConstraint.lock()) constraint->setConstant(height);
  UIView::animate(
      kDropdownSeconds, [this] { view()->layoutIfNeeded(); },
      [weak = std::weak_ptr(shared(this))] {
        if (const auto alive = weak.lock()) alive->showList();
      });
}

void ChooseCitizenViewController::showList() {
  const auto scroll = page.lock();
  const auto list = borderView.lock();
  if (!scroll || !list || !isListOpen()) return;
  // The page still has the height from before the list opened.
  scroll->setNeedsLayout();
  scroll->layoutIfNeeded();
  constexpr double kMargin = 8;
  const CGRect place{list->convert({}, scroll.get()), list->bounds().size};
  const double free = scroll->visibleHeight() - place.size.height;
  scroll->scrollRectToVisible(place.insetBy(0, -std::clamp(free / 2, 0.0, kMargin)), true);
}

void ChooseCitizenViewController::tapOnArrow(const std::shared_ptr<UIControl>&) {
  if (!isListOpen()) announceCount();
  setDropdownHeight(kOpen);
}

void ChooseCitizenViewController::internalHideKeyboard() {
  view()->endEditing(true);
  shouldShowKeyboard = false;
  setDropdownHeight(kCollapsed);
}

bool ChooseCitizenViewController::isListOpen() const {
  const auto constraint = dropdownHeightConstraint.lock();
  return constraint && constraint->constant() != kCollapsed;
}

bool ChooseCitizenViewController::accessibilityPerformEscape() {
  if (!isListOpen()) return false;
  internalHideKeyboard();
  return true;
}

bool ChooseCitizenViewController::gestureRecognizerShouldReceive(UIGestureRecognizer&,
                                                                 const UITouch& touch) {
  const auto table = tableView.lock();
  return !table || !table->indexPathForRow(touch.location(*table));
}

void ChooseCitizenViewController::exitVerification(const std::shared_ptr<UIControl>&) {
  endPresentation(true);
}

void ChooseCitizenViewController::startButton(const std::shared_ptr<UIControl>&) {
  if (selectedCountryCode.empty()) {
    print("Nothing is selected");
    const auto alert =
        std::make_shared<UIAlertController>("Error", "Please select your nationality");
    alert->addAction(std::make_shared<UIAlertAction>("OK", UIAlertActionStyle::standard));
    present(alert, true);
    return;
  }
  if (!Kestrova::apiKey) {
    print("Api key not initialized");
    performSegue(Segues::showErrorScreenfromNationality, shared(this));
    return;
  }
  if (!Kestrova::authentication_key) {
    print("Auth key not initialized");
    performSegue(Segues::showErrorScreenfromNationality, shared(this));
    return;
  }
  API::setNationality(
      *Kestrova::apiKey, *Kestrova::authentication_key, selectedCountryCode,
      [weak = std::weak_ptr(shared(this)), visit = visit_](const JSONDictionary& answer) {
        print("setNationality response: " + description(answer));
        const auto alive = weak.lock();
        if (alive && alive->visit_ == visit) alive->performSegue(Segues::showVerifyEmail, alive);
      });
}

void ChooseCitizenViewController::viewWillDisappear(bool animated) {
  UIViewController::viewWillDisappear(animated);
  ++visit_;
}

void ChooseCitizenViewController::handleTermTapped(UITapGestureRecognizer& gesture) {
  const auto label = disclaimerLabel.lock();
  if (!label) return;
  const std::size_t index = indexOfAttributedTextCharacterAtPoint(*label, gesture.location(*label));
  if (checkRange(rangeOf(termText, term), index)) {
    openPage("/terms/");
  } else if (checkRange(rangeOf(termText, policy), index)) {
    openPage("/privacy/");
  }
}

bool ChooseCitizenViewController::checkRange(NSRange range, std::size_t contain) {
  if (contain == NSNotFound) return false;
  return contain > range.location && contain < range.location + range.length;
}

void ChooseCitizenViewController::loadCountrylist() {
  const auto bundle = Kestrova::bundle();
  const auto path = bundle ? bundle->path("countries", "json") : std::nullopt;
  if (path) countries = countriesIn(*path);
}

void ChooseCitizenViewController::searchCountrylist(std::string_view searchText) {
  searchCountries = matching(countries, searchText);
  if (const auto table = tableView.lock()) table->reloadData();
  if (searchText.empty() || !searchCountries.empty()) return announceCount();
  postAccessibilityAnnouncement(*view(), "No country found");
}

void ChooseCitizenViewController::announceCount() {
  const auto& list = displayed();
  const auto count = std::count_if(list.begin(), list.end(),
                                   [](const auto& country) { return !isSeparator(country); });
  postAccessibilityAnnouncement(*view(),
                                std::to_string(count) + (count == 1 ? " country" : " countries"));
}

void ChooseCitizenViewController::prepareTextlabel() {
  const auto label = disclaimerLabel.lock();
  if (!label) return;
  const auto linkFont = UIFont::make("Exo-SemiBold", kDisclaimerSize)
                            .value_or(UIFont::boldSystemFont(kDisclaimerSize));
  const auto font =
      UIFont::make("Exo-Regular", kDisclaimerSize).value_or(UIFont::systemFont(kDisclaimerSize));
  label->setAttributedText(StringExtensions::format({term, policy}, linkFont, UIColor::blue(),
                                                    termText, font, UIColor::lightGray()));
  label->addGestureRecognizer(std::make_shared<UITapGestureRecognizer>(
      shared(this), &ChooseCitizenViewController::handleTermTapped));
  label->setUserInteractionEnabled(true);
}

void ChooseCitizenViewController::makeGrayBorder() {
  const auto border = borderView.lock();
  if (!border) return;
  border->layer().setBorderWidth(1.5);
  border->layer().setBorderColor(UIColorExtensions::borderColorGrey());
  border->layer().setCornerRadius(8);
  border->setClipsToBounds(true);
}

void ChooseCitizenViewController::makeEncryptionIconRound() {
  const auto icon = encryptionIconView.lock();
  if (!icon) return;
  icon->layer().setCornerRadius(icon->frame().size.width / 2);
  icon->setClipsToBounds(true);
}

}  // namespace kestrova
