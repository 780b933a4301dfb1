#include <set>
#include <string>
#include <vector>

#include <QtGui/QAccessible>
#include <QtGui/QWindow>
#include <QtWidgets/QVBoxLayout>

#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIGestureRecognizer.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewCell.h"
#include "platform/uikit/UITableViewController.h"
#include "platform/uikit/UITouch.h"
#include "tests/platform/uikit/Finger.h"
#include "tests/platform/uikit/Interface.h"
#include "tests/support/StandardOutput.h"

namespace kestrova::platform {
namespace {

using test::Finger;
using Calls = std::vector<std::string>;

std::string name(const IndexPath& path) {
  return std::to_string(path.section) + "." + std::to_string(path.row);
}

// Writes down what the table tells it.
class Cell : public UITableViewCell {
 public:
  explicit Cell(Calls& calls) : calls_(calls) {}

  std::string row;

  void setSelected(bool selected, bool animated) override {
    UITableViewCell::setSelected(selected, animated);
    calls_.push_back(row + (selected ? " selected" : " not selected") +
                     (animated ? " softly" : ""));
  }

 private:
  Calls& calls_;
};

// Rows of 44 points, every tenth of 20.
class Model : public UITableViewDataSource, public UITableViewDelegate {
 public:
  std::vector<std::size_t> sections = {250};
  Calls asked;
  Calls told;
  int cellsMade = 0;
  int heightsAsked = 0;
  std::function<void(UITableView&, const IndexPath&)> onSelect;
  std::function<void(UITableView&, const IndexPath&)> onCell;

  std::size_t numberOfSections(UITableView&) override { return sections.size(); }
  std::size_t tableViewNumberOfRowsInSection(UITableView&, std::size_t section) override {
    return sections[section];
  }
  double tableViewHeightForRowAt(UITableView&, const IndexPath& indexPath) override {
    ++heightsAsked;
    return indexPath.row % 10 == 9 ? 20 : 44;
  }
  std::shared_ptr<UITableViewCell> tableViewCellForRowAt(UITableView& table,
                                                         const IndexPath& indexPath) override {
    asked.push_back(name(indexPath));
    const auto cell = std::static_pointer_cast<Cell>(table.dequeueReusableCell("row", indexPath));
    cell->row = name(indexPath);
    cell->subviews()[0]->setAccessibilityLabel("Row " + cell->row);
    if (onCell) onCell(table, indexPath);
    return cell;
  }
  std::string tableViewAccessibilityLabelForRowAt(UITableView&,
                                                  const IndexPath& indexPath) override {
    return "Hidden row " + name(indexPath);
  }
  void tableViewDidSelectRowAt(UITableView& table, const IndexPath& indexPath) override {
    told.push_back(name(indexPath) + " chosen");
    const auto then = onSelect;
    if (then) then(table, indexPath);
  }

  void attach(UITableView& table, const std::shared_ptr<Model>& self) {
    table.dataSource = self;
    table.delegate = self;
    table.registerPrototype("row", [this] {
      ++cellsMade;
      auto cell = std::make_shared<Cell>(told);
      cell->addSubview(std::make_shared<UIView>(CGRect{{10, 10}, {100, 20}}));
      return cell;
    });
  }
};

class TableView : public test::Interface {
 protected:
  // 300 points: rows 0 to 6 show.
  std::shared_ptr<UITableView> table(const CGRect& frame = {{20, 100}, {300, 300}}) {
    auto made = std::make_shared<UITableView>();
    model->attach(*made, model);
    return place(made, frame);
  }
  static CGPoint inRow(const UITableView& table, const IndexPath& path) {
    const CGRect rect = table.rectForRow(path);
    return {rect.midX(), rect.midY() - table.contentOffset().y};
  }
  static void tap(const UITableView& table, const IndexPath& path) {
    click(table, inRow(table, path));
  }
  Calls take() { return std::exchange(model->told, {}); }
  static std::size_t cellsIn(const UITableView& table) { return table.subviews().size(); }

  std::shared_ptr<Model> model = std::make_shared<Model>();
};

TEST_F(TableView, AsksForTheRowsThatShowFromTheTopAndOnce) {
  const auto view = table();
  EXPECT_EQ(model->asked, (Calls{"0.0", "0.1", "0.2", "0.3", "0.4", "0.5", "0.6"}));
  EXPECT_EQ(model->heightsAsked, 250);
  EXPECT_EQ(cellsIn(*view), 7U);
  EXPECT_EQ(view->contentSize(), (CGSize{300, 225 * 44.0 + 25 * 20}));
  EXPECT_EQ(view->rectForRow({10}), (CGRect{{0, 416}, {300, 44}}));
  EXPECT_EQ(view->cellForRow({6})->frame(), view->rectForRow({6}));
  EXPECT_EQ(view->cellForRow({7}), nullptr);
  EXPECT_EQ(view->rectForRow({250}), CGRect{});
  view->setNeedsLayout();
  settle();
  view->setFrame({{20, 100}, {200, 300}});
  settle();
  EXPECT_EQ(view->cellForRow({6})->frame().size.width, 200);
  EXPECT_EQ(model->asked.size(), 7U);
  EXPECT_EQ(model->heightsAsked, 250);
}

TEST_F(TableView, AsksOnlyWhenItHasASizeAndADataSource) {
  auto view = std::make_shared<UITableView>();
  place(view, {{0, 0}, {300, 300}});
  model->attach(*view, model);
  view->reloadData();
  settle();
  EXPECT_EQ(model->asked.size(), 7U);
  auto second = std::make_shared<UITableView>();
  model->attach(*second, model);
  second->reloadData();
  window().addSubview(second);
  settle();
  EXPECT_EQ(model->asked.size(), 7U);
}

TEST_F(TableView, GrowingShowsFurtherRowsAndShrinkingTakesThemAway) {
  const auto view = table({{0, 0}, {300, 60}});
  EXPECT_EQ(cellsIn(*view), 2U);
  view->setFrame({{0, 0}, {300, 300}});
  settle();
  EXPECT_EQ(model->asked, (Calls{"0.0", "0.1", "0.2", "0.3", "0.4", "0.5", "0.6"}));
  view->setFrame({{0, 0}, {300, 60}});
  settle();
  EXPECT_EQ(cellsIn(*view), 2U);
}

TEST_F(TableView, ScrollingUsesTheCellsAgain) {
  const auto view = table();
  view->selectRow({1}, false);
  take();
  for (int step = 0; step * 31 < view->contentSize().height; ++step) {
    view->setContentOffset({0, step * 31.0});
    settle();
    const double offset = view->contentOffset().y;
    EXPECT_LE(cellsIn(*view), 9U);
    for (const auto& cell : view->subviews()) {
      EXPECT_TRUE(cell->frame().maxY() > offset && cell->frame().minY() < offset + 300);
    }
  }
  EXPECT_LE(model->cellsMade, 9);
  EXPECT_EQ(std::set<std::string>(model->asked.begin(), model->asked.end()).size(), 250U);
  EXPECT_EQ(view->indexPathForSelectedRow(), IndexPath{1});
  EXPECT_EQ(take().back(), "0.249 not selected");
  view->setContentOffset({});
  EXPECT_TRUE(view->cellForRow({1})->isSelected())
      << "a cell that is used again gets the row's state";
  EXPECT_FALSE(view->cellForRow({0})->isSelected());
}

TEST_F(TableView, ReloadingKeepsTheCellsOnScreenInTheirOrder) {
  const auto view = table();
  const auto third = view->cellForRow({2});
  const QWidget* const widget = third->widget();
  tap(*view, {2});
  view->reloadData();
  EXPECT_EQ(view->cellForRow({2}), third);
  EXPECT_EQ(widget->parentWidget(), view->widget());
  EXPECT_EQ(model->cellsMade, 7);
  EXPECT_EQ(model->heightsAsked, 500);
  EXPECT_EQ(view->indexPathForSelectedRow(), std::nullopt);
  EXPECT_FALSE(third->isSelected());
  view->setContentOffset({0, 5000});
  model->sections = {3};
  view->reloadData();
  EXPECT_EQ(view->contentOffset().y, 0);
  EXPECT_EQ(cellsIn(*view), 3U);
  model->sections = {};
  view->reloadData();
  EXPECT_EQ(cellsIn(*view), 0U);
}

TEST_F(TableView, CountsRowsWithinTheirSections) {
  model->sections = {2, 0, 3};
  const auto view = table();
  EXPECT_EQ(model->asked, (Calls{"0.0", "0.1", "2.0", "2.1", "2.2"}));
  EXPECT_EQ(view->rectForRow({1, 2}).minY(), 3 * 44);
  EXPECT_EQ(view->rectForRow({0, 1}), CGRect{});
  EXPECT_EQ(view->indexPathForRow({10, 2 * 44}), (IndexPath{0, 2}));
}

TEST_F(TableView, ATapSelectsOnReleaseAndMovesTheOneSelection) {
  const auto view = table();
  EXPECT_EQ(take(),
            (Calls{"0.0 not selected", "0.1 not selected", "0.2 not selected", "0.3 not selected",
                   "0.4 not selected", "0.5 not selected", "0.6 not selected"}));
  press(*view, inRow(*view, {1}));
  advance(0.2);
  EXPECT_TRUE(view->cellForRow({1})->isHighlighted());
  EXPECT_EQ(take(), Calls{});
  release(*view, inRow(*view, {1}));
  EXPECT_FALSE(view->cellForRow({1})->isHighlighted());
  EXPECT_EQ(take(), (Calls{"0.1 selected", "0.1 chosen"}));
  tap(*view, {4});
  EXPECT_EQ(take(), (Calls{"0.1 not selected", "0.4 selected", "0.4 chosen"}));
  tap(*view, {4});
  EXPECT_EQ(take(), (Calls{"0.4 chosen"}));
  view->deselectRow({1}, true);
  EXPECT_EQ(take(), Calls{});
  view->deselectRow({4}, true);
  EXPECT_EQ(take(), (Calls{"0.4 not selected softly"}));
  EXPECT_EQ(view->indexPathForSelectedRow(), std::nullopt);
  view->selectRow({3}, false);
  EXPECT_EQ(take(), (Calls{"0.3 selected"}));
  view->selectRow({999}, false);
  EXPECT_EQ(view->indexPathForSelectedRow(), IndexPath{3});
}

TEST_F(TableView, ADragOrAStrayFingerChoosesNothing) {
  const auto view = table();
  take();
  Finger drag(*view, {100, 200});
  advance(0.2);
  EXPECT_TRUE(view->cellForRow({4})->isHighlighted());
  drag.to({100, 180}).to({100, 120});
  EXPECT_FALSE(view->cellForRow({4})->isHighlighted());
  drag.release(500);
  EXPECT_EQ(view->contentOffset().y, 60);
  view->setScrollEnabled(false);
  Finger(*view, {100, 20}).to({100, 90}).to({100, 20}).release();
  Finger(*view, {100, 20}).to({-30, 20}).release();
  Finger held(*view, {100, 20});
  view->reloadData();
  held.release();
  for (const auto& call : take()) EXPECT_EQ(call.find("chosen"), std::string::npos) << call;
}

TEST_F(TableView, ADragGoesOnWhenTheRowOnWhichItBeganHasLeft) {
  const auto view = table();
  QWindow* const screen = window().widget()->windowHandle();
  const auto point = [](int y) { return QPoint(150, 100 + y); };
  QTest::mousePress(screen, Qt::LeftButton, {}, point(20));
  QTest::mouseMove(screen, point(5));
  QTest::mouseMove(screen, point(-60));
  settle();
  EXPECT_EQ(view->cellForRow({0}), nullptr);
  QTest::mouseMove(screen, point(-90));
  settle();
  EXPECT_EQ(view->contentOffset().y, 95);
  QTest::mouseRelease(screen, Qt::LeftButton, {}, point(-90));
  settle();
  EXPECT_FALSE(view->isDragging());
}

class Screen : public UIGestureRecognizerDelegate {
 public:
  explicit Screen(UITableView& table) : table_(table) {}
  bool gestureRecognizerShouldReceive(UIGestureRecognizer&, const UITouch& touch) override {
    return !table_.indexPathForRow(touch.location(table_));
  }

 private:
  UITableView& table_;
};

TEST_F(TableView, LetsARecognizerAroundItTellRowsFromTheRest) {
  model->sections = {3};
  const auto view = table();
  const auto screen = std::make_shared<Screen>(*view);
  int taps = 0;
  const auto recognizer =
      std::make_shared<UITapGestureRecognizer>([&](UITapGestureRecognizer&) { ++taps; });
  recognizer->delegate = screen;
  window().addGestureRecognizer(recognizer);
  take();
  tap(*view, {1});
  EXPECT_EQ(taps, 0);
  EXPECT_EQ(take(), (Calls{"0.1 selected", "0.1 chosen"}));
  click(*view, {100, 200});
  EXPECT_EQ(taps, 1);
  click(window(), {100, 50});
  EXPECT_EQ(taps, 2);
  EXPECT_EQ(take(), Calls{});
}

TEST_F(TableView, FindsARowOnlyWhereItCanBeSeen) {
  const auto view = table();
  EXPECT_EQ(view->indexPathForRow({10, 50}), IndexPath{1});
  EXPECT_EQ(view->indexPathForRow({10, 310}), std::nullopt);
  EXPECT_EQ(view->indexPathForRow({-1, 50}), std::nullopt);
  EXPECT_EQ(view->indexPathForRow({300, 50}), std::nullopt);
  view->setContentOffset({0, 420});
  EXPECT_EQ(view->indexPathForRow({10, 430}), IndexPath{10});
  EXPECT_EQ(view->indexPathForRow({10, 50}), std::nullopt);
  // A drop-down that is all but shut over the list.
  const auto box = place(std::make_shared<UIView>(), {{0, 0}, {300, 60}});
  box->addSubview(view);
  view->setFrame({{0, 0}, {300, 300}});
  EXPECT_EQ(view->indexPathForRow({10, 430}), IndexPath{10});
  EXPECT_EQ(view->indexPathForRow({10, 490}), std::nullopt);
}

TEST_F(TableView, MayBeReloadedOrGoWhileItTellsOfAChoice) {
  auto view = table();
  const std::weak_ptr<UITableView> weak = view;
  model->onSelect = [&](UITableView& asked, const IndexPath& path) {
    asked.deselectRow(path, true);
    model->sections = {1};
    asked.reloadData();
  };
  tap(*view, {5});
  EXPECT_EQ(cellsIn(*view), 1U);
  model->sections = {250};
  view->reloadData();
  model->onSelect = [&](UITableView& asked, const IndexPath&) {
    asked.removeFromSuperview();
    view.reset();
    model.reset();
  };
  const CGPoint at = inRow(*view, {5});
  click(window(), {20 + at.x, 100 + at.y});
  EXPECT_TRUE(weak.expired());
}

TEST_F(TableView, MayBeReloadedOrScrolledWhileItAsksForCells) {
  model->onCell = [&](UITableView& asked, const IndexPath&) {
    model->onCell = nullptr;
    model->sections = {3};
    asked.reloadData();
    asked.setContentOffset({0, 100});
  };
  const auto view = table();
  EXPECT_EQ(cellsIn(*view), 3U);
  EXPECT_EQ(view->contentOffset().y, 0);
  EXPECT_EQ(model->asked, (Calls{"0.0", "0.0", "0.1", "0.2"})) << "no row that is gone";
}

TEST_F(TableView, ScrolledWhileItAsksForCellsItStillAsksForEachOnce) {
  model->onCell = [&](UITableView& asked, const IndexPath& path) {
    if (path.row == 2) asked.setContentOffset({0, 20});
  };
  const auto view = table();
  EXPECT_EQ(model->asked, (Calls{"0.0", "0.1", "0.2", "0.3", "0.4", "0.5", "0.6", "0.7"}));
  EXPECT_EQ(view->cellForRow({7})->frame(), view->rectForRow({7}));
}

TEST_F(TableView, StaysWholeWithoutItsDataSource) {
  const auto view = table();
  model.reset();
  view->setContentOffset({0, 1000});
  tap(*view, {25});
  EXPECT_EQ(view->indexPathForSelectedRow(), IndexPath{25});
  view->reloadData();
  EXPECT_EQ(cellsIn(*view), 0U);
}

TEST_F(TableView, SaysWhatPrototypeItDoesNotHave) {
  const auto view = std::make_shared<UITableView>();
  EXPECT_EQ(view->dequeueReusableCell("ghost"), nullptr);
  const test::StandardOutput output;
  EXPECT_NE(view->dequeueReusableCell("ghost", {0}), nullptr);
  ASSERT_EQ(output.lines().size(), 1U);
  EXPECT_NE(output.lines()[0].find("\"ghost\""), std::string::npos);
}

TEST_F(TableView, ASelectionThatIsTakenBackFades) {
  model->sections = {3};
  const auto view = table();
  view->setBackgroundColor(UIColor::white());
  model->onSelect = [](UITableView& asked, const IndexPath& path) {
    asked.deselectRow(path, true);
  };
  const auto colour = [&] { return picture(*view).pixelColor(200, 66); };
  const QColor tint(0xE8, 0xF0, 0xFF);
  EXPECT_EQ(colour(), QColor(Qt::white));
  press(*view, inRow(*view, {1}));
  EXPECT_EQ(colour(), QColor(0xF2, 0xF4, 0xF7));
  release(*view, inRow(*view, {1}));
  EXPECT_EQ(colour(), tint);
  advance(0.15);
  EXPECT_GT(colour().red(), tint.red());
  EXPECT_LT(colour().red(), 255);
  advance(1);
  EXPECT_EQ(colour(), QColor(Qt::white));
  EXPECT_FALSE(AnimationClock::shared().isTicking());
}

TEST_F(TableView, IsOnePlaceToTabToWhereKeysMoveARowAndChooseIt) {
  const auto view = table();
  const auto at = [&] { return view->focusedRow().value_or(IndexPath{999}).row; };
  EXPECT_EQ(view->focusedRow(), std::nullopt);
  key(Qt::Key_Tab);
  EXPECT_TRUE(view->isFocused());
  EXPECT_EQ(at(), 0U);
  key(Qt::Key_Down);
  key(Qt::Key_Down);
  EXPECT_EQ(at(), 2U);
  key(Qt::Key_PageDown);
  EXPECT_EQ(at(), 8U);
  EXPECT_EQ(view->contentOffset().y, 9 * 44 - 300) << "the row is shown whole";
  EXPECT_NE(view->cellForRow({8}), nullptr);
  key(Qt::Key_End);
  EXPECT_EQ(at(), 249U);
  key(Qt::Key_Down);
  EXPECT_EQ(at(), 249U);
  key(Qt::Key_Home);
  key(Qt::Key_Up);
  EXPECT_EQ(at(), 0U);
  EXPECT_EQ(view->contentOffset().y, 0);
  key(Qt::Key_Down);
  take();
  key(Qt::Key_Space);
  EXPECT_EQ(take(), (Calls{"0.1 selected", "0.1 chosen"}));
  key(Qt::Key_Down);
  key(Qt::Key_Return);
  EXPECT_EQ(take(), (Calls{"0.1 not selected", "0.2 selected", "0.2 chosen"}));
  const QColor ring(0, 87, 255);
  EXPECT_EQ(picture(*view).pixelColor(150, 2 * 44 + 2), ring);
  tap(*view, {0});
  EXPECT_NE(picture(*view).pixelColor(150, 2 * 44 + 2), ring) << "a touch takes the ring away";
}

TEST_F(TableView, ShowsNoRowForKeysBeforeOneIsPressed) {
  const auto view = table();
  const QColor ring(0, 87, 255);
  view->widget()->setFocus(Qt::ActiveWindowFocusReason);
  EXPECT_TRUE(view->isFocused());
  EXPECT_EQ(view->focusedRow(), std::nullopt);
  EXPECT_NE(picture(*view).pixelColor(150, 2), ring);
  key(Qt::Key_Down);
  EXPECT_EQ(view->focusedRow(), IndexPath{0});
  EXPECT_EQ(picture(*view).pixelColor(150, 2), ring);
}

TEST_F(TableView, AFieldAboveItCanMoveTheRowThatKeysChoose) {
  const auto view = table();
  take();
  view->selectFocusedRow();
  EXPECT_EQ(take(), Calls{});
  view->moveFocusedRow(1);
  EXPECT_EQ(view->focusedRow(), IndexPath{0});
  view->moveFocusedRow(1);
  EXPECT_EQ(view->focusedRow(), IndexPath{1});
  view->selectFocusedRow();
  EXPECT_EQ(take(), (Calls{"0.1 selected", "0.1 chosen"}));
  EXPECT_EQ(view->focusedRow(), std::nullopt);
  view->moveFocusedRow(5);
  view->reloadData();
  EXPECT_EQ(view->focusedRow(), std::nullopt) << "other rows may stand there now";
}

TEST_F(TableView, ShowsAssistiveTechnologyEveryRowWithoutAskingForCells) {
  const auto view = table();
  view->setAccessibilityLabel("Countries");
  tap(*view, {1});
  model->asked.clear();
  QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(view->widget());
  EXPECT_EQ(list->role(), QAccessible::List);
  EXPECT_EQ(list->text(QAccessible::Name), "Countries");
  ASSERT_EQ(list->childCount(), 250);
  QAccessibleInterface* const first = list->child(0);
  EXPECT_EQ(first->text(QAccessible::Name), "Row 0.0");
  EXPECT_EQ(first->role(), QAccessible::ListItem);
  EXPECT_EQ(first->parent(), list);
  EXPECT_EQ(list->indexOfChild(first), 0);
  EXPECT_TRUE(list->child(1)->state().selected);
  EXPECT_FALSE(first->state().selected);
  QAccessibleInterface* const far = list->child(200);
  EXPECT_EQ(far->text(QAccessible::Name), "Hidden row 0.200");
  EXPECT_TRUE(far->state().offscreen);
  EXPECT_FALSE(first->state().offscreen);
  const QPoint inSecond = view->widget()->mapToGlobal(QPoint(50, 66));
  EXPECT_EQ(list->childAt(inSecond.x(), inSecond.y()), list->child(1));
  EXPECT_EQ(model->asked, Calls{});
  far->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(view->indexPathForSelectedRow(), IndexPath{200});
  EXPECT_TRUE(far->state().selected);
  EXPECT_FALSE(far->state().offscreen);
  model->sections = {100};
  view->reloadData();
  EXPECT_EQ(list->childCount(), 100);
  // The toolkit logs a warning when assistive technology uses an invalid object.
  EXPECT_TRUE(far->isValid());
  EXPECT_TRUE(far->state().invisible);
  EXPECT_TRUE(far->actionInterface()->actionNames().isEmpty());
}

class Documents : public UITableViewController {
 public:
  std::vector<std::size_t> chosen;
  std::size_t tableViewNumberOfRowsInSection(UITableView&, std::size_t) override { return 3; }
  std::shared_ptr<UITableViewCell> tableViewCellForRowAt(UITableView&, const IndexPath&) override {
    return std::make_shared<UITableViewCell>();
  }
  void tableViewDidSelectRowAt(UITableView&, const IndexPath& path) override {
    chosen.push_back(path.row);
  }
};

TEST_F(TableView, ATableScreenIsItsTablesDataSourceAndDelegate) {
  const auto screen = std::make_shared<Documents>();
  const auto view = screen->tableView();
  view->setRowHeight(84);
  place(view, {{0, 0}, {300, 300}});
  EXPECT_EQ(view->contentSize(), (CGSize{300, 3 * 84}));
  EXPECT_EQ(view->next(), screen);
  tap(*view, {2});
  EXPECT_EQ(screen->chosen, std::vector<std::size_t>{2});
}

}  // namespace
}  // namespace kestrova::platform
