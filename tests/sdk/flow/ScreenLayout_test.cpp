// Every screen of the flow in host windows from 320 x 480 to 1280 x 800 points, with and without an
// on-screen keyboard.

#include <algorithm>
#include <cmath>

#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UIKeyboard.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITextField.h"
#include "sdk/flow/CheckEmailViewController.h"
#include "sdk/flow/ChooseCitizenViewController.h"
#include "sdk/flow/VerificationStart.h"
#include "sdk/ui/HeadingLabel.h"
#include "tests/sdk/flow/FlowTest.h"

namespace kestrova {
namespace {

using Views = std::vector<std::shared_ptr<UIView>>;

constexpr double kUnbounded = 1e6;
constexpr double kHeader = 56;
constexpr double kTouchTarget = 44;

CGRect intersection(const CGRect& a, const CGRect& b) {
  const double x = std::max(a.minX(), b.minX());
  const double y = std::max(a.minY(), b.minY());
  return {{x, y},
          {std::max(0.0, std::min(a.maxX(), b.maxX()) - x),
           std::max(0.0, std::min(a.maxY(), b.maxY()) - y)}};
}

CGRect inWindow(const UIView& view) {
  const CGPoint origin = view.convert(view.bounds().origin, nullptr);
  return {origin, view.bounds().size};
}

template <typename View>
View* as(const std::shared_ptr<UIView>& view) {
  return dynamic_cast<View*>(view.get());
}

std::string textOf(const std::shared_ptr<UIView>& view) {
  const std::string text = view->accessibilityLabel();
  return text.empty() ? view->widget()->objectName().toStdString() : text;
}

class ScreenLayout : public test::FlowTest, public testing::WithParamInterface<CGSize> {
 protected:
  ScreenLayout() {
    host().resize(int(size.width), int(size.height));
    start();
  }
  ~ScreenLayout() override { setKeyboard(0); }

  void setKeyboard(double height) {
    keyboard = height;
    UIKeyboard::shared().inputMethodChanged(height > 0,
                                            {{0, size.height - height}, {size.width, height}});
    settle();
    finishMotion();
  }
  double visibleHeight() const { return size.height - keyboard; }
  CGRect sheet() const { return inWindow(*flow()->view()); }
  std::shared_ptr<UIViewController> flow() const { return wrapper->presentedViewController(); }

  // Everything that can be seen or used, from the frame around the screens down.
  Views contents() const {
    Views found;
    collect(flow()->view(), found);
    return found;
  }
  static void collect(const std::shared_ptr<UIView>& view, Views& found) {
    if (view->isHidden() || view->bounds().size.width < 1 || view->bounds().size.height < 1) return;
    const bool isText = as<UILabel>(view) && !as<UILabel>(view)->text().empty();
    if (isText || as<UIControl>(view) || as<UIImageView>(view)) found.push_back(view);
    for (const auto& each : view->subviews()) collect(each, found);
  }

  // The part of a view that is not clipped by those around it.
  CGRect visiblePart(const UIView& view) const {
    CGRect part = inWindow(view);
    for (auto above = view.superview(); above; above = above->superview()) {
      part = intersection(part, inWindow(*above));
    }
    return intersection(part, {{0, 0}, {size.width, visibleHeight()}});
  }
  bool isWhole(const UIView& view) const {
    const CGSize part = visiblePart(view).size;
    const CGSize whole = view.bounds().size;
    return part.width > whole.width - 1 && part.height > whole.height - 1;
  }
  // Scrolls every scroll view around the view, as a user could.
  bool canBeScrolledIntoSight(const UIView& view) const {
    std::vector<std::pair<UIScrollView*, CGPoint>> moved;
    for (auto above = view.superview(); above; above = above->superview()) {
      auto* const scroll = as<UIScrollView>(above);
      if (!scroll || !scroll->canScroll()) continue;
      moved.emplace_back(scroll, scroll->contentOffset());
      scroll->scrollRectToVisible({view.convert({}, scroll), view.bounds().size}, false);
      EXPECT_TRUE(hintsThatItScrolls(*scroll)) << scroll->widget()->objectName().toStdString();
    }
    const bool isInSight = isWhole(view);
    for (const auto& [scroll, offset] : moved) scroll->setContentOffset(offset);
    return isInSight;
  }
  static bool hintsThatItScrolls(const UIScrollView& scroll) {
    const auto children = scroll.widget()->children();
    return std::any_of(children.begin(), children.end(), [](const QObject* child) {
      const auto* const widget = qobject_cast<const QWidget*>(child);
      return widget && !UIView::of(widget) && widget->isVisible();
    });
  }

  void expectWellLaidOut() const {
    const Views views = contents();
    const auto top = navigation()->topViewController();
    for (const auto& view : views) {
      const std::string text = textOf(view);
      const CGSize given = view->bounds().size;
      if (const auto* const label = as<UILabel>(view)) {
        const double width = label->numberOfLines() == 1 ? kUnbounded : given.width;
        const CGSize needed = label->sizeThatFits({width, kUnbounded});
        EXPECT_LE(needed.height, given.height + 1) << text << " is clipped";
        EXPECT_LE(needed.width, given.width + 1) << text << " is elided";
      }
      if (const auto* const button = as<UIButton>(view)) {
        EXPECT_GE(given.height, kTouchTarget) << text;
        EXPECT_GE(given.width, kTouchTarget) << text;
        EXPECT_LE(button->sizeThatFits({kUnbounded, kUnbounded}).width, given.width + 1) << text;
      }
      if (!as<UIImageView>(view)) {
        EXPECT_TRUE(isWhole(*view) || canBeScrolledIntoSight(*view)) << text << " is out of reach";
      }
      for (const auto& other : views) {
        if (other == view) break;
        if (view->isDescendant(*other) || other->isDescendant(*view)) continue;
        // The button is opaque.
        if (textOf(other) == "bottomRightImg" && as<UIButton>(view)) continue;
        const CGSize both = intersection(visiblePart(*view), visiblePart(*other)).size;
        EXPECT_FALSE(both.width > 1 && both.height > 1) << text << " lies over " << textOf(other);
      }
    }
    expectAligned(views);
  }

  // Headings, fields and primary buttons share their left edge, or stand in the two columns of a
  // window that is wider than high; artwork and text share an axis.
  void expectAligned(const Views& views) const {
    CGRect heading, button;
    double top = kUnbounded, bottom = 0;
    std::shared_ptr<UIView> artwork;
    for (const auto& view : views) {
      const CGRect rect = inWindow(*view);
      const bool isPrimary = as<UIButton>(view) && !as<UIButton>(view)->title().empty();
      if (as<HeadingLabel>(view)) heading = rect;
      if (isPrimary) button = rect;
      if (as<UILabel>(view)) {
        top = std::min(top, rect.minY());
        bottom = std::max(bottom, rect.maxY());
      }
      const bool isArtwork = as<UIImageView>(view) && rect.size.height > kTouchTarget;
      if (isArtwork && textOf(view) != "bottomRightImg") artwork = view;
    }
    const CGRect whole = sheet();
    const bool hasColumns = size.width > size.height && size.height < 600;
    EXPECT_EQ(button.minX() == heading.minX(), !hasColumns || artwork);
    constexpr double kMaxColumns = 840;
    const double margin = size.width < 360 ? 20 : 24;
    EXPECT_EQ(whole.maxX() - button.maxX(),
              hasColumns ? std::max(margin, (size.width - kMaxColumns) / 2) : margin);
    if (!artwork || visibleHeight() < size.height) return;
    const CGRect drawn = inWindow(*artwork);
    if (drawn.maxX() < heading.minX()) {
      EXPECT_NEAR(drawn.midY(), (top + bottom) / 2, 2) << "artwork and text in a row";
    } else {
      EXPECT_NEAR(drawn.midX(), whole.midX(), 1) << "artwork above text";
    }
  }

  void turn() {
    size = {size.height, size.width};
    host().resize(int(size.width), int(size.height));
    settle();
  }

  CGSize size = GetParam();
  double keyboard = 0;
};

TEST_P(ScreenLayout, ShowsEverythingOnEveryScreen) {
  expectWellLaidOut();
  for (const char* scene : {"CheckEmail", "MoveHead", "ChooseDocumentType", "ScanIDInstructions",
                            "ScanBackside", "Congrats", "Warning"}) {
    SCOPED_TRACE(scene);
    navigation()->pushViewController(
        navigation()->topViewController()->scene()->instantiate(scene).value(), false);
    settle();
    finishMotion();
    expectWellLaidOut();
    turn();
    constexpr double kLeastWidth = 320;
    if (size.width >= kLeastWidth) expectWellLaidOut();
    turn();
  }
}

TEST_P(ScreenLayout, KeepsTheCountryListAboveAKeyboard) {
  const auto screen = top<ChooseCitizenViewController>();
  const auto table = screen->tableView.lock();
  const auto rowsInSight = [&] {
    const double rows = visiblePart(*table).size.height / kTouchTarget;
    return isWhole(*screen->countryTextfield.lock()) ? int(rows + 0.01) : 0;
  };
  click(*screen->countryTextfield.lock());
  finishMotion();
  finishMotion();
  EXPECT_GE(rowsInSight(), 2);
  expectWellLaidOut();
  click(*screen->countryTextfield.lock());
  ASSERT_TRUE(screen->countryTextfield.lock()->isEditing());
  setKeyboard(std::min(260.0, std::floor(size.height / 2)));
  // A header, the field and one row; in lower windows the field alone.
  constexpr double kOneRow = kHeader + 60 + kTouchTarget;
  if (visibleHeight() >= kOneRow) {
    EXPECT_GE(rowsInSight(), visibleHeight() >= kOneRow + kTouchTarget ? 2 : 1);
    expectWellLaidOut();
  }
  EXPECT_TRUE(isWhole(*screen->countryTextfield.lock()));
  setKeyboard(0);
  expectWellLaidOut();
}

TEST_P(ScreenLayout, KeepsTheEmailButtonAboveAKeyboard) {
  const auto screen = push<CheckEmailViewController>("CheckEmail");
  const auto field = screen->emailTextfield.lock();
  field->becomeFirstResponder();
  setKeyboard(std::min(260.0, std::floor(size.height / 2)));
  EXPECT_TRUE(isWhole(*field));
  // The field and the button below the header, without a motion of the user's.
  if (visibleHeight() >= kHeader + 52 + 16 + 52 + 16) {
    EXPECT_TRUE(isWhole(*screen->startButton.lock()));
  }
  expectWellLaidOut();
  setKeyboard(0);
  EXPECT_TRUE(isWhole(*screen->startButton.lock()));
}

INSTANTIATE_TEST_SUITE_P(Sizes, ScreenLayout,
                         testing::Values(CGSize{320, 480}, CGSize{320, 568}, CGSize{375, 667},
                                         CGSize{430, 932}, CGSize{480, 272}, CGSize{533, 320},
                                         CGSize{568, 320}, CGSize{667, 375}, CGSize{800, 480},
                                         CGSize{820, 1180}, CGSize{1024, 600}, CGSize{1280, 800}),
                         [](const auto& each) {
                           return std::to_string(int(each.param.width)) + "x" +
                                  std::to_string(int(each.param.height));
                         });

}  // namespace
}  // namespace kestrova
