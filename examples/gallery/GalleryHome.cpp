#include "examples/gallery/GalleryHome.h"

#include "examples/gallery/GalleryPage.h"
#include "examples/gallery/Look.h"
#include "platform/uikit/UINavigationBar.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewCell.h"

namespace kestrova::gallery {

namespace {

class PageRow : public UITableViewCell {
 public:
  PageRow() { addSubview(title); }

  std::shared_ptr<UILabel> title = text({}, exo("Medium", 17), kInk);

  void layoutSubviews() override {
    const CGSize size = bounds().size;
    title->setFrame({{24, 0}, {size.width - 48, size.height}});
  }
};

}  // namespace

GalleryHome::GalleryHome() {
  setNavigationItem({.title = "Gallery", .hidesBackButton = false});
}

void GalleryHome::viewDidLoad() {
  UITableViewController::viewDidLoad();
  const auto table = tableView();
  table->setAccessibilityLabel("Pages");
  table->setBackgroundColor(UIColor::white());
  table->setContentInset({UINavigationBar::kHeight, 0, 0, 0});
  table->setScrollIndicatorInsets({UINavigationBar::kHeight, 0, 0, 0});
  table->setContentOffset({0, -UINavigationBar::kHeight});
  table->registerPrototype("page", [] { return std::make_shared<PageRow>(); });
}

void GalleryHome::viewWillAppear(bool animated) {
  UITableViewController::viewWillAppear(animated);
  if (const auto row = tableView()->indexPathForSelectedRow()) {
    tableView()->deselectRow(*row, animated);
  }
}

std::size_t GalleryHome::tableViewNumberOfRowsInSection(UITableView&, std::size_t) {
  return galleryPages().size();
}

std::shared_ptr<UITableViewCell> GalleryHome::tableViewCellForRowAt(UITableView& table,
                                                                    const IndexPath& indexPath) {
  auto cell = table.dequeueReusableCell("page", indexPath);
  dynamic_cast<PageRow&>(*cell).title->setText(galleryPages().at(indexPath.row).title);
  return cell;
}

std::string GalleryHome::tableViewAccessibilityLabelForRowAt(UITableView&,
                                                             const IndexPath& indexPath) {
  return galleryPages().at(indexPath.row).title;
}

void GalleryHome::tableViewDidSelectRowAt(UITableView&, const IndexPath& indexPath) {
  navigationController()->pushViewController(galleryPages().at(indexPath.row).make(), true);
}

}  // namespace kestrova::gallery
