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
  static void focusChanged(UITableView& table, std::size_t row);
};

}  // namespace kestrova::platform
