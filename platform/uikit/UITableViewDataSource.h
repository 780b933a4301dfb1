#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/uikit/IndexPath.h"

namespace kestrova::platform {

class UITableView;
class UITableViewCell;

// What a table shows. Main thread.
class UITableViewDataSource {
 public:
  virtual ~UITableViewDataSource() = default;

  virtual std::size_t numberOfSections(UITableView&) { return 1; }
  virtual std::size_t tableViewNumberOfRowsInSection(UITableView&, std::size_t section) = 0;
  // A cell from dequeueReusableCell(), or any other that is in no superview. Asked only for rows
  // that come on screen; the table keeps the cell until the row leaves it.
  virtual std::shared_ptr<UITableViewCell> tableViewCellForRowAt(UITableView&,
                                                                 const IndexPath& indexPath) = 0;
  // What assistive technology calls a row that is not on screen.
  virtual std::string tableViewAccessibilityLabelForRowAt(UITableView&, const IndexPath&) {
    return {};
  }
};

}  // namespace kestrova::platform
