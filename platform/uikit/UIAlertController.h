#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/uikit/UIViewController.h"

namespace kestrova::platform {

enum class UIAlertActionStyle { standard = 0, cancel = 1 };
enum class UIAlertControllerStyle { alert = 1 };

// A way out of an alert. The alert is gone when the handler is called. Immutable.
class UIAlertAction {
 public:
  using Handler = std::function<void(UIAlertAction&)>;

  UIAlertAction(std::string title, UIAlertActionStyle style, Handler handler = {})
      : title_(std::move(title)), style_(style), handler_(std::move(handler)) {}

  const std::string& title() const { return title_; }
  UIAlertActionStyle style() const { return style_; }

 private:
  friend class UIAlertController;

  std::string title_;
  UIAlertActionStyle style_;
  Handler handler_;
};

// A short message over a screen, with a word for each way out. Escape takes the cancelling one, or
// the only one. Main thread.
class UIAlertController : public UIViewController {
 public:
  UIAlertController(std::string title, std::string message,
                    UIAlertControllerStyle style = UIAlertControllerStyle::alert);

  const std::string& title() const { return title_; }
  const std::string& message() const { return message_; }
  // Before the alert is presented.
  void addAction(const std::shared_ptr<UIAlertAction>& action) { actions_.push_back(action); }
  const std::vector<std::shared_ptr<UIAlertAction>>& actions() const { return actions_; }

  void loadView() override;
  bool accessibilityPerformEscape() override;

 private:
  void choose(const std::shared_ptr<UIAlertAction>& action);

  std::string title_;
  std::string message_;
  std::vector<std::shared_ptr<UIAlertAction>> actions_;
  bool isChosen_ = false;
};

}  // namespace kestrova::platform
