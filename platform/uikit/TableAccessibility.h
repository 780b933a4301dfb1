#pragma once

#include <cstddef>

namespace kestrova::platform {

class UITableView;

// Shows a table to assistive technology as a list with an item for each row, on screen or not. Main
// thread.
class TableAccessibility {
 public:
  // Lasts as long as the table's widget.
  static void attach(UITableView& table);

  static void rowsChanged(UITableView& table);
  static void selectionChanged(UITableView& table, std::size_t row);
  // Reports `row` as focused to assistive technology, even while a text field that moves the mark
  // keeps the keyboard's focus.
  static void focusChanged(UITableView& table, std::size_t row);
  // No row is marked any more: reports the view that has the keyboard's focus instead.
  static void focusLost(UITableView& table);
};

}  // namespace kestrova::platform
