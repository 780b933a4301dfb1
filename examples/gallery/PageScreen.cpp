#include "examples/gallery/PageScreen.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "examples/gallery/Look.h"
#include "platform/uikit/UINavigationBar.h"
#include "platform/uikit/UIWindow.h"

namespace kestrova::gallery {

namespace {

constexpr double kTop = UINavigationBar::kHeight + 24;
constexpr double kWidest = 480;
constexpr double kHighest = 480;
constexpr double kGap = 20;
constexpr double kColumnGap = 16;

}  // namespace

class PageScreen::Column : public UIScrollView {
 public:
  struct Row {
    std::shared_ptr<UILabel> caption;
    Views views;
    double height;
    bool fills;
  };
  std::vector<Row> rows;

  void layoutSubviews() override {
    const CGSize size = bounds().size;
    const double margin = size.width < 360 ? 20 : 24;
    const double width = std::min(kWidest, size.width - 2 * margin);
    const double x = std::round((size.width - width) / 2);
    double y = kTop;
    for (const auto& row : rows) {
      if (row.caption) {
        row.caption->setFrame({{x, y}, {width, 16}});
        y += 16 + 8;
      }
      const auto count = double(row.views.size());
      const double each = (width - kColumnGap * (count - 1)) / count;
      const double height = row.fills ? std::clamp(size.height - margin - y, row.height, kHighest)
                            : row.height > 0 ? row.height
                                             : row.views.front()->sizeThatFits({each, -1}).height;
      double left = x;
      for (const auto& view : row.views) {
        view->setFrame({{left, y}, {each, std::ceil(height)}});
        left += each + kColumnGap;
      }
      y += std::ceil(height) + kGap;
    }
    setContentSize({size.width, y});
    UIScrollView::layoutSubviews();
  }
};

PageScreen::PageScreen(const std::string& title) : column_(std::make_shared<Column>()) {
  setNavigationItem({.title = title, .hidesBackButton = false});
}

void PageScreen::add(const std::string& caption, const std::shared_ptr<UIView>& view,
                     double height) {
  addRow(caption, {view}, height);
}

void PageScreen::addRow(const std::string& caption, const Views& views, double height) {
  std::shared_ptr<UILabel> label;
  if (!caption.empty()) {
    label = text(caption, exo("Regular", 12), kHelp, 16);
    column_->addSubview(label);
  }
  for (const auto& view : views) column_->addSubview(view);
  column_->rows.push_back({label, views, height, false});
}

void PageScreen::addFilling(const std::string& caption, const std::shared_ptr<UIView>& view) {
  addRow(caption, {view}, 132);
  column_->rows.back().fills = true;
}

void PageScreen::loadView() {
  column_->setBackgroundColor(UIColor::white());
  setView(column_);
}

void PageScreen::viewDidAppear(bool animated) {
  UIViewController::viewDidAppear(animated);
  if (const auto block = std::exchange(shown_, nullptr)) block(*this);
}

void focusByKeyboard(const UIView& view) {
  constexpr int kMost = 20;
  const auto window = view.window();
  for (int step = 0; window && step < kMost && !view.isFocused(); ++step) window->moveFocus(true);
}

}  // namespace kestrova::gallery
