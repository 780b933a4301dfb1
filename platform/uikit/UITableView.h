#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/uikit/CellPool.h"
#include "platform/uikit/IndexPath.h"
#include "platform/uikit/TableRows.h"
#include "platform/uikit/UIScrollView.h"

namespace kestrova::platform {

class UITableViewCell;
class UITableViewDataSource;
class UITableViewDelegate;

// A list of rows, of which at most one is selected. It asks its data source when it is first laid
// out with a size, and with each reloadData(); it has cells only for the rows on screen. For the
// keyboard it is one place to tab to: arrows, page keys, Home and End move from row to row, Return
// and Space do what a tap does. Main thread.
class UITableView : public UIScrollView {
 public:
  UITableView();

  // Set before the table is shown; followed by reloadData() afterwards.
  std::weak_ptr<UITableViewDataSource> dataSource;
  std::weak_ptr<UITableViewDelegate> delegate;

  // Points; 44 at first.
  double rowHeight() const { return rowHeight_; }
  void setRowHeight(double height) { rowHeight_ = height; }

  // `factory` makes a new cell; by the storyboard's loader.
  void registerPrototype(std::string identifier, CellPool::Factory factory);
  // A cell that no row shows any more, else a new one; null where the prototype is unknown.
  std::shared_ptr<UITableViewCell> dequeueReusableCell(std::string_view withIdentifier);
  // The same; an unknown prototype gives a line on standard output and an empty cell.
  std::shared_ptr<UITableViewCell> dequeueReusableCell(std::string_view withIdentifier,
                                                       const IndexPath& indexPath);

  // Asks for everything anew, at once where the table has been shown. No row is selected then.
  void reloadData();

  std::optional<IndexPath> indexPathForSelectedRow() const;
  void selectRow(const IndexPath& at, bool animated);
  void deselectRow(const IndexPath& at, bool animated);

  // The row under a point of the content, where that point can be seen.
  std::optional<IndexPath> indexPathForRow(CGPoint at) const;
  // Null where the row is not on screen.
  std::shared_ptr<UITableViewCell> cellForRow(const IndexPath& at) const;
  // In the content's coordinates; empty where there is no such row.
  CGRect rectForRow(const IndexPath& at) const;

  // The row that keys act on, marked by a ring. Whoever has the keyboard instead, a text field
  // above the list, may move it too: from no row it goes to the first one shown (the last one
  // backwards).
  std::optional<IndexPath> focusedRow() const;
  void moveFocusedRow(int by);
  void selectFocusedRow();

  // Rows for assistive technology, counted through all sections; also those out of sight.
  std::size_t accessibilityRowCount() const { return rows_.count(); }
  std::string accessibilityRowLabel(std::size_t row);
  bool isAccessibilityRowSelected(std::size_t row) const { return selected_ == row; }
  std::optional<std::size_t> accessibilityFocusedRow() const;
  CGRect accessibilityRowRect(std::size_t row) const;
  void accessibilityActivateRow(std::size_t row);

  void layoutSubviews() override;
  bool wantsTouches() const override { return true; }
  // What lies around the table may tell rows from the rest by indexPathForRow().
  bool claimsTouches() const override { return false; }
  void touchesBegan(const UITouch& touch) override;
  void touchesMoved(const UITouch& touch) override;
  void touchesEnded(const UITouch& touch) override;
  void touchesCancelled(const UITouch& touch) override;
  bool keyPressed(const std::string& key) override;
  CGRect focusRect() const override;
  UIAccessibilityRole accessibilityRole() const override { return UIAccessibilityRole::list; }

 protected:
  void didScroll() override;
  void focusChanged() override;

 private:
  void load();
  void showRows();
  void show(std::size_t row);
  std::shared_ptr<UITableViewCell> cell(std::size_t row) const;
  std::optional<std::size_t> rowUnder(const UITouch& touch) const;
  void select(std::optional<std::size_t> row, bool animated);
  void choose(std::size_t row);
  void endPress();
  void focusRow(std::size_t row);
  void showFocus(bool shows);
  std::size_t rowsInSight() const;

  double rowHeight_ = 44;
  CellPool pool_;
  TableRows rows_;
  std::map<std::size_t, std::shared_ptr<UITableViewCell>> shown_;
  std::optional<std::size_t> selected_;
  std::optional<std::size_t> pressed_;
  std::optional<std::size_t> focused_;
  bool showsFocus_ = false;
  bool needsReload_ = true;
  bool isLoaded_ = false;
  // The data source is being asked.
  bool isAsking_ = false;
  std::shared_ptr<const void> highlight_;
};

}  // namespace kestrova::platform
