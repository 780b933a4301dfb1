#include "examples/gallery/Countries.h"

#include <array>
#include <string_view>

#include "examples/gallery/Look.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UITableViewCell.h"
#include "sdk/core/Kestrova.h"

namespace kestrova::gallery {

namespace {

struct Country {
  const char* code;
  const char* name;
};
constexpr std::size_t kDivider = 3;
constexpr double kDividerHeight = 17;
constexpr std::array<Country, 15> kRows{{{"de", "Germany"},
                                         {"fr", "France"},
                                         {"gb", "United Kingdom"},
                                         {"", ""},
                                         {"at", "Austria"},
                                         {"be", "Belgium"},
                                         {"ca", "Canada"},
                                         {"dk", "Denmark"},
                                         {"ee", "Estonia"},
                                         {"fi", "Finland"},
                                         {"gr", "Greece"},
                                         {"in", "India"},
                                         {"jp", "Japan"},
                                         {"no", "Norway"},
                                         {"us", "United States"}}};

class CountryRow : public UITableViewCell {
 public:
  CountryRow() {
    flag_->setContentMode(UIViewContentMode::scaleAspectFill);
    addSubview(flag_);
    addSubview(name_);
  }

  void show(const Country& country) {
    const auto bundle = Kestrova::bundle();
    flag_->setImage(bundle ? UIImage::named(country.code, *bundle) : std::nullopt);
    name_->setText(country.name);
  }

  void layoutSubviews() override {
    const CGSize size = bounds().size;
    flag_->setFrame({{16, (size.height - 24) / 2}, {24, 24}});
    name_->setFrame({{52, 0}, {size.width - 68, size.height}});
  }

 private:
  std::shared_ptr<UIImageView> flag_ = std::make_shared<UIImageView>();
  std::shared_ptr<UILabel> name_ = text({}, exo("Regular", 17), kInk);
};

class DividerRow : public UITableViewCell {
 public:
  DividerRow() {
    setSelectionStyle(UITableViewCellSelectionStyle::none);
    setAccessibilityLabel("Divider");
    line_->setBackgroundColor(kLine);
    addSubview(line_);
  }

  void layoutSubviews() override {
    const CGSize size = bounds().size;
    line_->setFrame({{16, 8}, {size.width - 32, 1}});
  }

 private:
  std::shared_ptr<UIView> line_ = std::make_shared<UIView>();
};

}  // namespace

std::shared_ptr<UITableView> Countries::makeTable() {
  auto table = std::make_shared<UITableView>();
  table->setAccessibilityLabel("Countries");
  table->registerPrototype("country", [] { return std::make_shared<CountryRow>(); });
  table->registerPrototype("divider", [] { return std::make_shared<DividerRow>(); });
  table->dataSource = shared_from_this();
  table->delegate = shared_from_this();
  return table;
}

std::size_t Countries::tableViewNumberOfRowsInSection(UITableView&, std::size_t) {
  return kRows.size();
}

double Countries::tableViewHeightForRowAt(UITableView& table, const IndexPath& indexPath) {
  return indexPath.row == kDivider ? kDividerHeight : table.rowHeight();
}

std::shared_ptr<UITableViewCell> Countries::tableViewCellForRowAt(UITableView& table,
                                                                  const IndexPath& indexPath) {
  if (indexPath.row == kDivider) return table.dequeueReusableCell("divider", indexPath);
  auto cell = table.dequeueReusableCell("country", indexPath);
  dynamic_cast<CountryRow&>(*cell).show(kRows.at(indexPath.row));
  return cell;
}

std::string Countries::tableViewAccessibilityLabelForRowAt(UITableView&,
                                                           const IndexPath& indexPath) {
  return indexPath.row == kDivider ? "Divider" : kRows.at(indexPath.row).name;
}

void Countries::tableViewDidSelectRowAt(UITableView&, const IndexPath& indexPath) {
  if (indexPath.row != kDivider && onChosen) onChosen(kRows.at(indexPath.row).name);
}

}  // namespace kestrova::gallery
