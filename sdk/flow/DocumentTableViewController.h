#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/uikit/UITableViewController.h"
#include "sdk/Platform.h"
#include "sdk/flow/DocumentSelectionDelegate.h"

namespace kestrova {

// The list of the kinds of documents.
class DocumentTableViewController : public UITableViewController {
 public:
  std::weak_ptr<DocumentSelectionDelegate> delegate;
  // Names as shown, and what the backend calls them, in the order of the rows.
  const std::vector<std::pair<std::string, std::string>> documents{
      {"Passport", "PASSPORT"},
      {"Driving License", "DRIVERS_LICENSE"},
      {"National ID Card", "NATIONAL_ID_CARD"}};
  // The backend's names in the order in which rows were made; a row that is made again adds another
  // entry. A choice does not depend on it.
  std::vector<std::string> documentsInOrder;

  void viewDidLoad() override;
  std::size_t numberOfSections(UITableView& table) override;
  std::size_t tableViewNumberOfRowsInSection(UITableView& table, std::size_t section) override;
  std::shared_ptr<UITableViewCell> tableViewCellForRowAt(UITableView& table,
                                                         const IndexPath& indexPath) override;
  void tableViewDidSelectRowAt(UITableView& table, const IndexPath& indexPath) override;
  std::string tableViewAccessibilityLabelForRowAt(UITableView& table,
                                                  const IndexPath& indexPath) override;
};

}  // namespace kestrova
