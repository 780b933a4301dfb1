#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UIViewController.h"
#include "sdk/Platform.h"

namespace kestrova::gallery {

// A column of specimens below each other, each under a line that says what it is. Fill it before it
// is shown.
class PageScreen : public UIViewController {
 public:
  using Views = std::vector<std::shared_ptr<UIView>>;

  explicit PageScreen(const std::string& title);

  void add(const std::string& caption, const std::shared_ptr<UIView>& view, double height = 0);
  // Beside each other, of the same width. A `height` of 0 is what the first one wants.
  void addRow(const std::string& caption, const Views& views, double height = 0);
  // Takes what is left of the screen's height, up to 480 points.
  void addFilling(const std::string& caption, const std::shared_ptr<UIView>& view);
  // Runs once, when the page has appeared.
  void whenShown(std::function<void(PageScreen& page)> block) { shown_ = std::move(block); }

  void loadView() override;
  void viewDidAppear(bool animated) override;

 private:
  class Column;

  std::shared_ptr<Column> column_;
  std::function<void(PageScreen& page)> shown_;
};

// Brings the keyboard's focus to a view of a shown page, as often pressing Tab would.
void focusByKeyboard(const UIView& view);

}  // namespace kestrova::gallery
