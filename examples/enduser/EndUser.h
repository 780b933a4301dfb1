#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "sdk/Platform.h"

namespace kestrova::platform {
class UIButton;
class UINavigationController;
class UITableView;
class UIView;
class UIViewController;
}  // namespace kestrova::platform

namespace kestrova {

// Somebody who is verified: does what the flow's screens ask for, by pointer and keys, on what is
// seen and enabled. Main thread.
class EndUser {
 public:
  struct Person {
    // Of the citizenship: two letters in lower case.
    std::string country = "de";
    std::string email = "ada@example.com";
    // As the backend calls it: PASSPORT, DRIVERS_LICENSE or NATIONAL_ID_CARD.
    std::string document = "PASSPORT";
  };

  // `host` is what the flow is presented over.
  EndUser(std::shared_ptr<UIViewController> host, Person person);

  // Lets a moment go by: handles events for ten milliseconds. A test with a clock that stands still
  // moves it on here.
  std::function<void()> pass;
  // Told the name of every screen and state that has come to rest.
  std::function<void(const std::string& name)> look = [](const std::string&) {};

  // Waits for the flow to be presented and walks through it until it has gone. None, or what was
  // waited for in vain.
  std::optional<std::string> verify();

 private:
  struct Vain {
    std::string waitedFor;
  };

  void choosesNationality();
  void givesAddress();
  void takesSelfie();
  void choosesDocument();
  template <typename Screen>
  void photographs(const std::string& side);

  // Throws Vain after half a minute.
  void waitUntil(std::string_view what, const std::function<bool()>& condition);
  // Until a screen that has just come stands still.
  void rest();
  template <typename Screen>
  std::shared_ptr<Screen> waitForTop(std::string_view name);
  std::shared_ptr<UINavigationController> navigation() const;
  // The button of that name as soon as it can be used.
  std::shared_ptr<UIButton> waitForButton(UIViewController& on, std::string_view label);
  void tap(UIViewController& on, std::string_view label);
  void tapRow(UITableView& table, std::size_t row);
  static void type(const std::string& text);

  std::shared_ptr<UIViewController> host_;
  Person person_;
};

}  // namespace kestrova
