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
  // Assistive technology follows the row also where a field moves it and keeps the keyboard's
  // focus.
  static void focusChanged(UITableView& table, std::size_t row);
  // No row is marked any more: assistive technology goes back to what has the keyboard's focus.
  static void focusLost(UITableView& table);
};

}  // namespace kestrova::platform
