#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/Text.h"
#include "platform/uikit/UIGestureRecognizer.h"
#include "platform/uikit/UITableViewDataSource.h"
#include "platform/uikit/UITableViewDelegate.h"
#include "platform/uikit/UITextFieldDelegate.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/Platform.h"
#include "sdk/flow/CountryEntry.h"

namespace kestrova::platform {
class NSLayoutConstraint;
class UIButton;
class UIImageView;
class UILabel;
class UIScrollView;
class UITextField;
}  // namespace kestrova::platform

namespace kestrova {

// Where the user says what country they are from.
class ChooseCitizenViewController : public UIViewController,
                                    public UITextFieldDelegate,
                                    public UITableViewDataSource,
                                    public UITableViewDelegate,
                                    public UIGestureRecognizerDelegate {
 public:
  std::weak_ptr<UIView> encryptionIconView;
  std::weak_ptr<UIImageView> countryIcon;
  std::weak_ptr<UITextField> countryTextfield;
  std::weak_ptr<UIView> dropdownBackgroundView;
  std::weak_ptr<UIButton> chooseButton;
  std::weak_ptr<UIView> borderView;
  std::weak_ptr<NSLayoutConstraint> dropdownHeightConstraint;
  std::weak_ptr<UITableView> tableView;
  std::weak_ptr<UILabel> disclaimerLabel;
  // Scrolls where the window or the keyboard leaves too little height.
  std::weak_ptr<UIScrollView> page;

  // The pinned countries, the divider, the rest.
  std::vector<CountryEntry> countries;
  // What the last search found.
  std::vector<CountryEntry> searchCountries;
  // Empty while nothing is chosen.
  std::string selectedCountryCode;
  // When true, the next tap on the field starts typing; otherwise it only opens the list.
  bool shouldShowKeyboard = false;
  const std::string termText =
      std::string("256-bit encryption is enabled. By clicking the ") + "Next" +
      " button, you agree to our User Terms & Conditions and Privacy Policy.";
  const std::string term = "Terms & Conditions";
  const std::string policy = "Privacy Policy";

  void bind(UIBindings& bindings) override;
  void viewDidLoad() override;
  void viewWillDisappear(bool animated) override;

  bool textFieldShouldBeginEditing(UITextField& textField) override;
  // Opens the list, which otherwise takes the first tap.
  void textFieldWillBeginTyping(UITextField& textField) override;
  bool textFieldShouldChangeCharactersIn(UITextField& textField, NSRange range,
                                         std::string_view replacementString) override;
  // Opens the list, then moves through it and chooses from it. Return also chooses a single match.
  bool textFieldKeyPressed(UITextField& textField, std::string_view key) override;

  std::size_t tableViewNumberOfRowsInSection(UITableView& table, std::size_t section) override;
  std::shared_ptr<UITableViewCell> tableViewCellForRowAt(UITableView& table,
                                                         const IndexPath& indexPath) override;
  double tableViewHeightForRowAt(UITableView& table, const IndexPath& indexPath) override;
  // All but the divider.
  bool tableViewShouldHighlightRowAt(UITableView& table, const IndexPath& indexPath) override;
  void tableViewDidSelectRowAt(UITableView& table, const IndexPath& indexPath) override;
  std::string tableViewAccessibilityLabelForRowAt(UITableView& table,
                                                  const IndexPath& indexPath) override;

  bool gestureRecognizerShouldReceive(UIGestureRecognizer& recognizer,
                                      const UITouch& touch) override;
  bool accessibilityPerformEscape() override;

  // Closes the keyboard and the list.
  void internalHideKeyboard();
  void tapOnArrow(const std::shared_ptr<UIControl>& sender);
  void startButton(const std::shared_ptr<UIControl>& sender);
  void exitVerification(const std::shared_ptr<UIControl>& sender);
  void handleTermTapped(UITapGestureRecognizer& gesture);
  // Both ends are outside: the first character of a link is not part of it.
  static bool checkRange(NSRange range, std::size_t contain);

  void loadCountrylist();
  void searchCountrylist(std::string_view searchText);
  void prepareTextlabel();
  void makeGrayBorder();
  void makeEncryptionIconRound();

 private:
  // Tells assistive technology how many countries the list shows.
  void announceCount();
  const std::vector<CountryEntry>& displayed() const;
  bool isListOpen() const;
  void setDropdownHeight(double height);
  // Scrolls the open list into sight.
  void showList();
  void setIcon(std::string_view code);
  void setChooseButton(bool enabled);

  // Number of times the screen has gone. A response to a request of an earlier visit moves nothing.
  std::size_t visit_ = 0;
};

}  // namespace kestrova
