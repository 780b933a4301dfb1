#include "examples/gallery/Countries.h"
#include "examples/gallery/Look.h"
#include "examples/gallery/PageScreen.h"
#include "examples/gallery/Pages.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewCell.h"
#include "platform/uikit/UITouch.h"

namespace kestrova::gallery {

namespace {

void frameIn(UIView& view) {
  view.setBackgroundColor(UIColor::white());
  view.setClipsToBounds(true);
  view.layer().setCornerRadius(8);
  view.layer().setBorderWidth(1.5);
  view.layer().setBorderColor(kLine);
}

// Twenty lines, 32 points each, as wide as the view.
class Lines : public UIScrollView {
 public:
  static constexpr double kHeight = 32;

  Lines() {
    for (int line = 1; line <= 20; ++line) {
      const auto label = text("Line " + std::to_string(line), exo("Regular", 15), kBody);
      addSubview(label);
    }
  }

  void layoutSubviews() override {
    const double width = bounds().size.width;
    double y = 0;
    for (const auto& line : subviews()) {
      line->setFrame({{16, y}, {width - 32, kHeight}});
      y += kHeight;
    }
    setContentSize({width, y});
    UIScrollView::layoutSubviews();
  }
};

// A page about a table of countries; the page keeps what the table shows.
class TableScreen : public PageScreen {
 public:
  TableScreen(const std::string& title, const std::string& caption)
      : PageScreen(title), countries_(std::make_shared<Countries>()) {
    table = countries_->makeTable();
    frameIn(*table);
    addFilling(caption, table);
  }

  std::shared_ptr<UITableView> table;

 private:
  std::shared_ptr<Countries> countries_;
};

}  // namespace

std::shared_ptr<UIViewController> scrollPage() {
  auto page = std::make_shared<PageScreen>("Scroll view");
  const auto lines = [&page](const std::string& caption, UIEdgeInsets inset) {
    auto view = std::make_shared<Lines>();
    frameIn(*view);
    view->setContentInset(inset);
    view->setScrollIndicatorInsets(inset);
    page->add(caption, view, 176);
    return view;
  };
  const auto top = lines("At its top, 16 points of room around the content", {16, 0, 16, 0});
  const auto scrolled = lines("Scrolled to a line", {});
  page->whenShown([top = std::weak_ptr(top), scrolled = std::weak_ptr(scrolled)](PageScreen&) {
    if (const auto view = top.lock()) {
      view->setContentOffset({0, -16});
      view->flashScrollIndicators();
    }
    if (const auto view = scrolled.lock()) {
      view->scrollRectToVisible({{0, 11 * Lines::kHeight}, {10, Lines::kHeight}}, false);
      view->flashScrollIndicators();
    }
  });
  return page;
}

std::shared_ptr<UIViewController> tablePage() {
  auto page = std::make_shared<TableScreen>(
      "Table", "The second row selected, the fifth pressed, a divider behind the third");
  page->whenShown([](PageScreen& shown) {
    auto& table = *dynamic_cast<TableScreen&>(shown).table;
    table.selectRow({1, 0}, false);
    if (const auto cell = table.cellForRow({4, 0})) cell->setHighlighted(true, false);
    table.flashScrollIndicators();
  });
  return page;
}

std::shared_ptr<UIViewController> keyboardTablePage() {
  auto page = std::make_shared<TableScreen>("Table by keyboard",
                                            "Scrolled; the ring is on the row that keys act on");
  page->whenShown([](PageScreen& shown) {
    auto& table = *dynamic_cast<TableScreen&>(shown).table;
    focusByKeyboard(table);
    table.setContentOffset({0, 120});
    table.keyPressed("Down");
    table.keyPressed("Down");
    table.flashScrollIndicators();
  });
  return page;
}

}  // namespace kestrova::gallery
