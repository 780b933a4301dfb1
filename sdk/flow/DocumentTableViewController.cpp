#include "sdk/flow/DocumentTableViewController.h"

#include "platform/uikit/UITableView.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/DocumentTableViewCell.h"

namespace kestrova {

void DocumentTableViewController::viewDidLoad() {
  UITableViewController::viewDidLoad();
}

std::size_t DocumentTableViewController::numberOfSections(UITableView&) {
  return 1;
}

std::size_t DocumentTableViewController::tableViewNumberOfRowsInSection(UITableView&, std::size_t) {
  return documents.size();
}

std::shared_ptr<UITableViewCell> DocumentTableViewController::tableViewCellForRowAt(
    UITableView& table, const IndexPath& indexPath) {
  auto cell = table.dequeueReusableCell("documentCell", indexPath);
  const auto& [name, identifier] = documents[indexPath.row];
  if (const auto typed = std::dynamic_pointer_cast<DocumentTableViewCell>(cell)) {
    if (const auto label = typed->documentName.lock()) label->setText(name);
    const auto bundle = Kestrova::bundle();
    const auto icon = typed->documentIcon.lock();
    if (icon && bundle) icon->setImage(UIImage::named(identifier, *bundle));
  }
  documentsInOrder.push_back(identifier);
  return cell;
}

void DocumentTableViewController::tableViewDidSelectRowAt(UITableView&,
                                                          const IndexPath& indexPath) {
  if (indexPath.row >= documents.size()) return;
  if (const auto told = delegate.lock()) told->didClickOnCell(documents[indexPath.row].second);
}

std::string DocumentTableViewController::tableViewAccessibilityLabelForRowAt(
    UITableView&, const IndexPath& indexPath) {
  return documents[indexPath.row].first;
}

}  // namespace kestrova
