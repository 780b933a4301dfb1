#include "platform/uikit/UITableView.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/Print.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/TableAccessibility.h"
#include "platform/uikit/UITableViewCell.h"
#include "platform/uikit/UITableViewDataSource.h"
#include "platform/uikit/UITableViewDelegate.h"
#include "platform/uikit/UITouch.h"

namespace kestrova::platform {

namespace {

// A touch that may become a drag marks its row only after this time, seconds.
constexpr double kPressDelay = 0.08;

}  // namespace

double UITableViewDelegate::tableViewHeightForRowAt(UITableView& tableView, const IndexPath&) {
  return tableView.rowHeight();
}

UITableView::UITableView() {
  setFocusable(true);
  TableAccessibility::attach(*this);
}

void UITableView::registerPrototype(std::string identifier, CellPool::Factory factory) {
  pool_.registerPrototype(std::move(identifier), std::move(factory));
}

std::shared_ptr<UITableViewCell> UITableView::dequeueReusableCell(std::string_view withIdentifier) {
  return pool_.take(withIdentifier);
}

std::shared_ptr<UITableViewCell> UITableView::dequeueReusableCell(std::string_view withIdentifier,
                                                                  const IndexPath&) {
  if (auto cell = pool_.take(withIdentifier)) return cell;
  print("Kestrova: the table has no cell \"" + std::string(withIdentifier) + "\"");
  return std::make_shared<UITableViewCell>();
}

void UITableView::reloadData() {
  needsReload_ = true;
  if (isLoaded_ && !isAsking_) return load();
  setNeedsLayout();
}

void UITableView::layoutSubviews() {
  const CGSize size = bounds().size;
  if (size.width <= 0 || size.height <= 0) return;
  if (needsReload_ && !isAsking_) return load();
  const auto self = shared(this);
  setContentSize({size.width, rows_.height()});
  keepWithinContent();
  showRows();
  hintThatItScrolls();
}

void UITableView::load() {
  const auto self = shared(this);
  const auto source = dataSource.lock();
  needsReload_ = !source;
  isLoaded_ = source != nullptr;
  endPress();
  TableRows rows;
  isAsking_ = true;
  const std::size_t sections = source ? source->numberOfSections(*this) : 0;
  for (std::size_t section = 0; section < sections; ++section) {
    rows.beginSection();
    const std::size_t count = source->tableViewNumberOfRowsInSection(*this, section);
    for (std::size_t row = 0; row < count; ++row) {
      const auto asked = delegate.lock();
      rows.append(asked ? asked->tableViewHeightForRowAt(*this, {row, section}) : rowHeight_);
    }
  }
  isAsking_ = false;
  rows_ = std::move(rows);
  selected_.reset();
  // The cells on screen are used again for the rows in the same order.
  for (const auto& [row, cell] : std::exchange(shown_, {})) pool_.put(cell);
  const bool wasMarked = accessibilityFocusedRow().has_value();
  if (rows_.count() == 0 || !isFocused()) {
    focused_.reset();
    showsFocus_ = false;
  } else if (focused_) {
    focused_ = std::min(*focused_, rows_.count() - 1);
  }
  isAsking_ = true;
  setContentSize({bounds().size.width, rows_.height()});
  isAsking_ = false;
  showRows();
  TableAccessibility::rowsChanged(*this);
  if (wasMarked && !focused_) TableAccessibility::focusLost(*this);
}

void UITableView::didScroll() {
  endPress();
  showRows();
}

void UITableView::showRows() {
  // Anything may happen while the data source is asked; the next layout pass puts it right.
  if (isAsking_) return setNeedsLayout();
  const auto self = shared(this);
  const CGRect visible = bounds();
  const auto [first, last] = rows_.between(visible.minY(), visible.maxY());
  std::erase_if(shown_, [&, from = first, to = last](const auto& entry) {
    if (entry.first >= from && entry.first < to) return false;
    pool_.put(entry.second);
    return true;
  });
  isAsking_ = true;
  for (std::size_t row = first; row < last && !needsReload_; ++row) show(row);
  isAsking_ = false;
  // Those whose row has left and which no other row has taken.
  const auto subviews = this->subviews();
  for (const auto& view : subviews) {
    const bool isShown = std::any_of(shown_.begin(), shown_.end(),
                                     [&](const auto& entry) { return entry.second == view; });
    if (!isShown && std::dynamic_pointer_cast<UITableViewCell>(view)) view->removeFromSuperview();
  }
}

void UITableView::show(std::size_t row) {
  const CGRect rect{{0, rows_.top(row)}, {bounds().size.width, rows_.height(row)}};
  const auto found = shown_.find(row);
  if (found != shown_.end()) {
    if (found->second->frame() != rect) found->second->setFrame(rect);
    return;
  }
  const IndexPath indexPath = rows_.indexPath(row);
  const auto source = dataSource.lock();
  auto cell = source ? source->tableViewCellForRowAt(*this, indexPath) : nullptr;
  if (!cell) {
    if (source) print("Kestrova: the table got no cell for row " + std::to_string(indexPath.row));
    cell = std::make_shared<UITableViewCell>();
  }
  shown_[row] = cell;
  cell->setFrame(rect);
  cell->setHighlighted(false, false);
  cell->setSelected(selected_ == row, false);
  cell->setKeyboardRow(showsFocus_ && focused_ == row);
  if (cell->superview().get() != this) addSubview(cell);
}

std::shared_ptr<UITableViewCell> UITableView::cell(std::size_t row) const {
  const auto found = shown_.find(row);
  return found != shown_.end() ? found->second : nullptr;
}

std::shared_ptr<UITableViewCell> UITableView::cellForRow(const IndexPath& at) const {
  const auto row = rows_.row(at);
  return row ? cell(*row) : nullptr;
}

CGRect UITableView::rectForRow(const IndexPath& at) const {
  const auto row = rows_.row(at);
  return row ? accessibilityRowRect(*row) : CGRect{};
}

std::optional<IndexPath> UITableView::indexPathForRow(CGPoint at) const {
  if (at.x < 0 || at.x >= contentSize().width) return std::nullopt;
  // What lies outside the table or a view around it cannot be seen.
  for (auto view = superview(); view; view = view->superview()) {
    if (view->isHidden() || !view->bounds().contains(convert(at, view.get()))) return std::nullopt;
  }
  if (isHidden() || !bounds().contains(at)) return std::nullopt;
  const auto row = rows_.rowAt(at.y);
  return row ? std::optional(rows_.indexPath(*row)) : std::nullopt;
}

// Selection

std::optional<IndexPath> UITableView::indexPathForSelectedRow() const {
  return selected_ ? std::optional(rows_.indexPath(*selected_)) : std::nullopt;
}

void UITableView::selectRow(const IndexPath& at, bool animated) {
  if (const auto row = rows_.row(at)) select(row, animated);
}

void UITableView::deselectRow(const IndexPath& at, bool animated) {
  if (selected_ && selected_ == rows_.row(at)) select(std::nullopt, animated);
}

void UITableView::select(std::optional<std::size_t> row, bool animated) {
  if (selected_ == row) return;
  const auto self = shared(this);
  const auto lost = std::exchange(selected_, row);
  const auto loser = lost ? cell(*lost) : nullptr;
  const auto winner = row ? cell(*row) : nullptr;
  if (loser) loser->setSelected(false, animated);
  if (winner) winner->setSelected(true, animated);
  TableAccessibility::selectionChanged(*this, row ? *row : *lost);
}

void UITableView::choose(std::size_t row) {
  const auto self = shared(this);
  const IndexPath indexPath = rows_.indexPath(row);
  select(row, false);
  if (const auto asked = delegate.lock()) asked->tableViewDidSelectRowAt(*this, indexPath);
}

// Touches

std::optional<std::size_t> UITableView::rowUnder(const UITouch& touch) const {
  const CGPoint point = touch.location(*this);
  return bounds().contains(point) ? rows_.rowAt(point.y) : std::nullopt;
}

void UITableView::touchesBegan(const UITouch& touch) {
  showFocus(false);
  pressed_ = rowUnder(touch);
  auto& clock = AnimationClock::shared();
  const auto mark = [this](double) -> std::optional<double> {
    const auto marked = pressed_ ? cell(*pressed_) : nullptr;
    if (marked) marked->setHighlighted(true, false);
    return std::nullopt;
  };
  if (canScroll()) {
    highlight_ = clock.run(clock.now() + kPressDelay, mark);
  } else {
    mark(clock.now());
  }
}

void UITableView::touchesMoved(const UITouch& touch) {
  if (rowUnder(touch) != pressed_) endPress();
}

void UITableView::touchesEnded(const UITouch& touch) {
  const auto row = pressed_;
  endPress();
  if (!row || rowUnder(touch) != row) return;
  // Arrow keys continue from the tapped row.
  if (focused_) focused_ = row;
  showFocus(false);
  choose(*row);
}

void UITableView::touchesCancelled(const UITouch&) {
  endPress();
}

void UITableView::endPress() {
  highlight_.reset();
  const auto row = std::exchange(pressed_, std::nullopt);
  if (const auto marked = row ? cell(*row) : nullptr) marked->setHighlighted(false, false);
}

// Keyboard

std::optional<IndexPath> UITableView::focusedRow() const {
  return focused_ ? std::optional(rows_.indexPath(*focused_)) : std::nullopt;
}

void UITableView::showFocus(bool shows) {
  showsFocus_ = shows;
  for (const auto& [row, cell] : shown_) cell->setKeyboardRow(shows && focused_ == row);
}

void UITableView::focusRow(std::size_t row) {
  const auto self = shared(this);
  focused_ = row;
  const CGPoint before = contentOffset();
  scrollRectToVisible(accessibilityRowRect(row), false);
  if (contentOffset() != before) flashScrollIndicators();
  showFocus(true);
  TableAccessibility::focusChanged(*this, row);
}

std::size_t UITableView::rowsInSight() const {
  const auto [first, last] = rows_.between(bounds().minY(), bounds().maxY());
  return std::max<std::size_t>(last - first, 2);
}

void UITableView::moveFocusedRow(int by) {
  const auto count = static_cast<long long>(rows_.count());
  if (count == 0 || by == 0) return;
  long long target = 0;
  if (focused_) {
    target = std::clamp<long long>(static_cast<long long>(*focused_) + by, 0, count - 1);
  } else {
    const auto [first, last] = rows_.between(bounds().minY(), bounds().maxY());
    target = std::min(static_cast<long long>(by > 0 ? first : std::max<std::size_t>(last, 1) - 1),
                      count - 1);
  }
  // On over rows at which it does not stop; where only such rows follow it stays where it is.
  const auto self = shared(this);
  const auto asked = delegate.lock();
  const auto stops = [&](long long row) {
    return !asked || asked->tableViewShouldHighlightRowAt(*this, rows_.indexPath(std::size_t(row)));
  };
  // The delegate that is asked may have reloaded the table.
  const auto exists = [this](long long row) {
    return row >= 0 && row < static_cast<long long>(rows_.count());
  };
  while (exists(target) && !stops(target)) target += by > 0 ? 1 : -1;
  if (exists(target)) focusRow(std::size_t(target));
}

void UITableView::selectFocusedRow() {
  if (!focused_) return;
  const auto self = shared(this);
  choose(*focused_);
  if (isFocused()) return;
  focused_.reset();
  showFocus(false);
  TableAccessibility::focusLost(*this);
}

bool UITableView::keyPressed(const std::string& key) {
  if (rows_.count() == 0) return false;
  const int page = int(rowsInSight()) - 1;
  const int all = int(rows_.count());
  const std::pair<std::string_view, int> moves[] = {
      {"Up", -1}, {"Down", 1}, {"PageUp", -page}, {"PageDown", page}, {"Home", -all}, {"End", all}};
  for (const auto& [name, by] : moves) {
    if (key != name) continue;
    moveFocusedRow(by);
    return true;
  }
  if (key != "Return" && key != "Space") return UIScrollView::keyPressed(key);
  showFocus(true);
  selectFocusedRow();
  return true;
}

void UITableView::focusChanged() {
  if (!isFocusedByKeyboard() || rows_.count() == 0) return showFocus(false);
  if (focused_) return focusRow(*focused_);
  if (selected_) return focusRow(*selected_);
  moveFocusedRow(1);
}

CGRect UITableView::focusRect() const {
  // The row has the ring.
  return focused_ ? CGRect{} : UIScrollView::focusRect();
}

// Assistive technology

std::optional<std::size_t> UITableView::accessibilityFocusedRow() const {
  return showsFocus_ ? focused_ : std::nullopt;
}

std::string UITableView::accessibilityRowLabel(std::size_t row) {
  if (const auto shownCell = cell(row)) return shownCell->accessibilityLabel();
  const auto source = dataSource.lock();
  return source ? source->tableViewAccessibilityLabelForRowAt(*this, rows_.indexPath(row))
                : std::string();
}

CGRect UITableView::accessibilityRowRect(std::size_t row) const {
  return {{0, rows_.top(row)}, {bounds().size.width, rows_.height(row)}};
}

void UITableView::accessibilityActivateRow(std::size_t row) {
  if (row >= rows_.count()) return;
  const auto self = shared(this);
  scrollRectToVisible(accessibilityRowRect(row), false);
  choose(row);
}

}  // namespace kestrova::platform
