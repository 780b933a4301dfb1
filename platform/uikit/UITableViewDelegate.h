#pragma once

#include "platform/uikit/IndexPath.h"

namespace kestrova::platform {

class UITableView;

// Who is told what people do with a table. Main thread.
class UITableViewDelegate {
 public:
  virtual ~UITableViewDelegate() = default;

  // Points; the table's rowHeight() unless overridden. Asked once a row for each reload.
  virtual double tableViewHeightForRowAt(UITableView& tableView, const IndexPath& indexPath);
  // Whether the keyboard stops at the row. A tap may choose it all the same.
  virtual bool tableViewShouldHighlightRowAt(UITableView&, const IndexPath&) { return true; }
  // After people have chosen the row, not after a selectRow() of the program.
  virtual void tableViewDidSelectRowAt(UITableView&, const IndexPath&) {}
};

}  // namespace kestrova::platform
