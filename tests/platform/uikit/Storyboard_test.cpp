#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <QtGui/QAccessible>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>

#include "platform/uikit/NSLayoutConstraint.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIClassRegistry.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UINib.h"
#include "platform/uikit/UIStoryboard.h"
#include "platform/uikit/UIStoryboardScene.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewCell.h"
#include "platform/uikit/UITableViewController.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/ViewPlaceholder.h"
#include "tests/platform/uikit/Interface.h"
#include "tests/support/StandardOutput.h"
#include "tests/support/TemporaryDirectory.h"

namespace kestrova::platform {
namespace {

namespace fs = std::filesystem;
using Calls = std::vector<std::string>;

Calls& calls() {
  static Calls made;
  return made;
}

class Gauge : public UIView {
 public:
  double level = 0;
  void bind(UIBindings& bindings) override { bindings.property("level", level); }
  void awakeFromNib() override { calls().push_back("gauge awake"); }
};

class FormScreen : public UIViewController,
                   public UITextFieldDelegate,
                   public UITableViewDataSource {
 public:
  std::size_t tableViewNumberOfRowsInSection(UITableView&, std::size_t) override { return 1; }
  std::shared_ptr<UITableViewCell> tableViewCellForRowAt(UITableView&, const IndexPath&) override {
    return std::make_shared<UITableViewCell>();
  }

  std::weak_ptr<UILabel> heading;
  std::weak_ptr<UITextField> nameField;
  std::weak_ptr<UIButton> nextButton;
  std::shared_ptr<Gauge> gauge;
  std::weak_ptr<NSLayoutConstraint> fieldHeight;

  void bind(UIBindings& bindings) override {
    bindings.outlet("heading", heading);
    bindings.outlet("nameField", nameField);
    bindings.outlet("nextButton", nextButton);
    bindings.outlet("gauge", gauge);
    bindings.outlet("fieldHeight", fieldHeight);
    bindings.action("nextTapped:", shared(this), &FormScreen::nextTapped);
  }
  void viewDidLoad() override { calls().push_back("form loaded"); }
  void nextTapped(const std::shared_ptr<UIControl>& sender) {
    calls().push_back("next by " + sender->accessibilityLabel());
    performSegue("showList", shared(this));
  }
  void prepare(const UIStoryboardSegue& segue, const std::shared_ptr<UIViewController>&) override {
    calls().push_back("prepare " + segue.identifier);
  }
};

// Performs what its screens inside leave to the responder chain.
class FrameScreen : public UIViewController {
 public:
  void bind(UIBindings& bindings) override {
    bindings.action("closeTapped:", shared(this), &FrameScreen::closeTapped);
  }
  void closeTapped(const std::shared_ptr<UIControl>&) { calls().push_back("close"); }
};

class RowCell : public UITableViewCell {
 public:
  std::weak_ptr<UILabel> name;
  void bind(UIBindings& bindings) override { bindings.outlet("name", name); }
  void awakeFromNib() override { calls().push_back("row awake"); }
};

class ListScreen : public UITableViewController {
 public:
  std::size_t tableViewNumberOfRowsInSection(UITableView&, std::size_t) override { return 2; }
  std::shared_ptr<UITableViewCell> tableViewCellForRowAt(UITableView& table,
                                                         const IndexPath& path) override {
    auto cell = table.dequeueReusableCell("row", path);
    std::dynamic_pointer_cast<RowCell>(cell)->name.lock()->setText("Row");
    return cell;
  }
};

fs::path samples() {
  return STORYBOARDS;
}

// Designed in a nib of its own.
class Badge : public UIView {
 public:
  std::weak_ptr<UILabel> caption;
  void bind(UIBindings& bindings) override { bindings.outlet("caption", caption); }
  std::shared_ptr<UIView> awakeAfter() override {
    if (!subviews().empty()) return shared(this);
    return UINib("Badge", *Bundle::at(samples())).instantiate().value().front();
  }
  void awakeFromNib() override { calls().push_back("badge awake"); }
};

// Loads the nib that it lies in.
class Mirror : public UIView {
 public:
  std::shared_ptr<UIView> awakeAfter() override {
    const auto again = UINib("Endless", *Bundle::at(samples())).instantiate();
    calls().push_back(again ? "endless" : again.error().localizedDescription);
    return shared(this);
  }
};

class Holder : public UIResponder {
 public:
  std::weak_ptr<Badge> badge;
  std::weak_ptr<NSLayoutConstraint> badgeWidth;
  void bind(UIBindings& bindings) override {
    bindings.outlet("badge", badge);
    bindings.outlet("badgeWidth", badgeWidth);
  }
};

class Storyboard : public test::Interface {
 protected:
  Storyboard() {
    UIClassRegistry::registerClass<Gauge>("Gauge");
    UIClassRegistry::registerClass<Badge>("Badge");
    UIClassRegistry::registerClass<Mirror>("Mirror");
    UIClassRegistry::registerClass<FormScreen>("FormScreen");
    UIClassRegistry::registerClass<FrameScreen>("FrameScreen");
    UIClassRegistry::registerClass<ListScreen>("ListScreen");
    UIClassRegistry::registerClass<RowCell>("RowCell");
    calls().clear();
  }
  static Calls take() { return std::exchange(calls(), {}); }

  static std::shared_ptr<UIStoryboard> good() {
    auto made = UIStoryboard::make("Good", *Bundle::at(samples()));
    if (!made) ADD_FAILURE() << made.error().localizedDescription;
    return made ? made.value() : nullptr;
  }

  // A copy of the good storyboard with `from` in `file` changed into `to`, and what is said to it:
  // when it is made, else when it is verified.
  Calls faultsOf(const std::string& file, const std::string& from, const std::string& to) const {
    fs::copy(samples(), folder_.path(),
             fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    const fs::path path = folder_.path() / "Good" / file;
    std::string text;
    std::getline(std::ifstream(path), text, '\0');
    const auto found = text.find(from);
    EXPECT_NE(found, std::string::npos) << from;
    if (found != std::string::npos) text.replace(found, from.size(), to);
    std::ofstream(path) << text;
    const auto made = UIStoryboard::make("Good", *Bundle::at(folder_.path()));
    if (!made) return lines(made.error());
    const auto verified = made.value()->verify();
    return verified ? Calls{} : lines(verified.error());
  }
  const fs::path& folder() const { return folder_.path(); }
  static Calls lines(const NSError& error) {
    Calls all;
    std::istringstream stream(error.localizedDescription);
    for (std::string line; std::getline(stream, line);) all.push_back(line);
    return all;
  }

 private:
  test::TemporaryDirectory folder_;
};

TEST_F(Storyboard, MakesScreensThatLoadWhenTheyAreShown) {
  const auto board = good();
  ASSERT_TRUE(board->verify());
  take();
  const auto initial = board->instantiateInitialViewController();
  ASSERT_TRUE(initial);
  const auto stack = std::dynamic_pointer_cast<UINavigationController>(initial.value());
  ASSERT_TRUE(stack);
  const auto form = std::dynamic_pointer_cast<FormScreen>(stack->topViewController());
  ASSERT_TRUE(form);
  EXPECT_EQ(form->navigationItem(), (UINavigationItem{"Form", true}));
  EXPECT_EQ(take(), Calls{});
  window().setRootViewController(stack);
  settle();
  EXPECT_EQ(take(), (Calls{"gauge awake", "prepare listEmbedded", "form loaded", "row awake",
                           "row awake"}));
  const auto named = [&](const char* name) {
    return form->scene()->viewNamed(*form->view(), name);
  };
  EXPECT_TRUE(std::static_pointer_cast<UITableView>(named("table"))->cellForRow({0}));
  EXPECT_EQ(named("box")->superview(), form->view());
  EXPECT_EQ(named("List"), nullptr) << "in a screen of its own";
  click(*form->nextButton.lock());
  advance(1);
  EXPECT_EQ(take(), (Calls{"next by Next step", "prepare showList", "row awake", "row awake"}));
  EXPECT_TRUE(std::dynamic_pointer_cast<ListScreen>(stack->topViewController()));
}

TEST_F(Storyboard, SetsWhatTheFilesSay) {
  const auto made = good()->instantiateViewController("form");
  const auto form = std::static_pointer_cast<FormScreen>(made.value());
  const auto root = form->view();
  EXPECT_EQ(root->backgroundColor(), UIColor(0xF3 / 255.0, 0xF5 / 255.0, 0xF9 / 255.0, 1));
  const auto heading = form->heading.lock();
  EXPECT_EQ(heading->text(), "What is your name?");
  EXPECT_EQ(heading->font(), UIFont::boldSystemFont(26));
  EXPECT_EQ(heading->textColor(), UIColor(0x10 / 255.0, 0x18 / 255.0, 0x28 / 255.0, 1));
  EXPECT_EQ(heading->textAlignment(), NSTextAlignment::center);
  EXPECT_EQ(heading->numberOfLines(), 0U);
  EXPECT_EQ(heading->lineHeight(), 32);
  EXPECT_EQ(heading->accessibilityRole(), UIAccessibilityRole::header);
  const auto field = form->nameField.lock();
  EXPECT_EQ(field->placeholder(), "Name");
  EXPECT_EQ(field->delegate.lock(), form);
  EXPECT_EQ(field->keyboardType(), UIKeyboardType::emailAddress);
  const auto next = form->nextButton.lock();
  EXPECT_EQ(next->title(), "Next");
  EXPECT_EQ(next->layer().cornerRadius(), 8);
  EXPECT_NEAR(next->layer().borderColor().alphaComponent(), 0.5, 0.01);
  EXPECT_TRUE(form->gauge->isHidden());
  EXPECT_EQ(form->gauge->level, 0.5);

  EXPECT_EQ(root->subviews().size(), 6U);
  EXPECT_EQ(heading->superview(), root);
  EXPECT_EQ(heading->frame().origin, (CGPoint{24, 16})) << "unstated margins are 0";
  EXPECT_EQ(heading->frame().size.width, 375 - 24);
  form->fieldHeight.lock()->setConstant(60);
  root->layoutIfNeeded();
  EXPECT_EQ(field->frame().size.height, 60);
  const auto below = root->subviews().back()->frame();
  EXPECT_EQ(root->subviews()[3]->frame().maxY() + 20, below.minY())
      << "a hidden view keeps its place";
}

TEST_F(Storyboard, MovesDesignedViewsWithTheirSuperview) {
  const auto form = good()->instantiateViewController("form").value();
  const auto root = form->view();
  const auto box = root->subviews().back();
  const auto corner = box->subviews()[1];
  const CGSize was = box->bounds().size;
  const CGPoint at = corner->frame().origin;
  EXPECT_EQ(at, (CGPoint{10, 20}));
  root->setFrame({{}, {475, 867}});
  root->layoutIfNeeded();
  EXPECT_EQ(box->bounds().size, (CGSize{was.width + 100, was.height + 200}));
  EXPECT_EQ(corner->frame(), (CGRect{{at.x + 100, at.y + 200}, {30, 40}}));
}

TEST_F(Storyboard, SendsAnActionWithoutTargetUpTheResponderChain) {
  const auto frame = std::make_shared<FrameScreen>();
  UIBindings bindings;
  frame->bind(bindings);
  frame->setActions(bindings.actions);
  const auto form = good()->instantiateViewController("form").value();
  const auto close = std::static_pointer_cast<UIControl>(form->view()->subviews()[3]);
  EXPECT_FALSE(close->isEnabled());
  close->setEnabled(true);
  {
    const test::StandardOutput output;
    close->sendActions(UIControlEvents::touchUpInside);
    EXPECT_EQ(output.lines(), Calls{"Kestrova: nobody performs the action \"closeTapped:\""});
  }
  frame->addChild(form);
  frame->view()->addSubview(form->view());
  take();
  close->sendActions(UIControlEvents::touchUpInside);
  EXPECT_EQ(take(), Calls{"close"});
}

TEST_F(Storyboard, ScreensOutliveIt) {
  const auto list = good()->instantiateViewController("list").value();
  window().setRootViewController(list);
  settle();
  EXPECT_EQ(take(), (Calls{"row awake", "row awake"}));
  const auto row =
      std::static_pointer_cast<UITableViewController>(list)->tableView()->cellForRow({1});
  ASSERT_TRUE(row);
  EXPECT_EQ(row->reuseIdentifier(), "row");
  EXPECT_EQ(row->accessibilityLabel(), "Row");
}

TEST_F(Storyboard, ReportsAllFaultsOfAFileAtOnce) {
  const auto held = std::make_shared<FormScreen>();
  const auto loaded = UINib("Faulty", *Bundle::at(samples())).instantiate(held);
  ASSERT_FALSE(loaded);
  EXPECT_EQ(lines(loaded.error()),
            (Calls{"Faulty.ui: the class \"FormScreen\" of screen is no view",
                   "Faulty.ui: the property \"textColor\" of caption cannot be \"mauve\"",
                   "Faulty.ui: caption, a UILabel, has no property \"placeholderText\"",
                   "Faulty.ui: the constraint \"height\" of button needs a minimum or maximum "
                   "length",
                   "Faulty.ui: the outlet \"heading\" is missing",
                   "Faulty.ui: the outlet \"nameField\" is missing",
                   "Faulty.ui: the outlet \"nextButton\" is missing",
                   "Faulty.ui: the outlet \"gauge\" is missing",
                   "Faulty.ui: the constraint \"fieldHeight\" is missing",
                   "Faulty.ui: the action of button: there is no action \"nobodyTapped:\"",
                   "Faulty.ui: button, a UIButton, has no property \"delegate\""}));
  EXPECT_FALSE(held->hasAction("nextTapped:"));
  EXPECT_FALSE(UINib("Nowhere", *Bundle::at(samples())).instantiate());
}

struct Fault {
  std::string file;
  std::string from;
  std::string to;
  std::string line;
};

TEST_F(Storyboard, NamesWhatDoesNotFit) {
  const std::vector<Fault> faults{
      {"Form.ui", "name=\"gauge\"", "name=\"gouge\"",
       "scene form: Form.ui: the outlet \"gauge\" is missing"},
      {"Form.ui", "class=\"Gauge\"", "class=\"QWidget\"",
       "scene form: Form.ui: the outlet \"gauge\" is of another class: UIView"},
      {"Form.ui", "class=\"Gauge\"", "class=\"Gouge\"",
       "Good: Form.ui: the widget \"gauge\" is of the unknown class \"Gouge\""},
      {"Form.ui", "name=\"closeButton\"", "name=\"nextButton\"",
       "Good: Form.ui: two widgets are called \"nextButton\""},
      {"Form.ui", "nextTapped:", "nextTaped:",
       "scene form: Form.ui: the action of nextButton: there is no action \"nextTaped:\""},
      {"Form.ui", ">fieldHeight<", ">height<",
       "scene form: Form.ui: the constraint \"fieldHeight\" is missing"},
      {"Form.ui", "<double>8</double>", "<double>round</double>",
       "scene form: Form.ui: the property \"cornerRadius\" of nextButton cannot be \"round\""},
      {"Form.ui", "<double>0.5</double>", "<double>half</double>",
       "scene form: Form.ui: the property \"level\" of gauge cannot be \"half\""},
      {"Form.ui", "flexibleLeftMargin", "flexible",
       "scene form: Form.ui: the property \"autoresizing\" of corner cannot be \"flexible "
       "flexibleTopMargin\""},
      {"Form.ui", "<width>30</width>", "<width>wide</width>",
       "Good: Form.ui: the property \"geometry\" of corner has a width that makes no sense"},
      {"Form.ui", "<connections/>", "<connections><connection/></connections>",
       "Good: Form.ui: connections are not used: name an action"},
      {"Form.ui", "QHBoxLayout", "QStackedLayout",
       "Good: Form.ui: a layout is of the unknown class \"QStackedLayout\""},
      {"storyboard.json", "Row.ui", "List.ui", "scene list: List.ui: it is no cell"},
      {"List.ui", "UITableView", "UIView",
       "scene list: List.ui: List, a UIView, has no property \"rowHeight\""},
      {"Row.ui", "</widget>\n </widget>",
       "</widget><layout class=\"QFormLayout\"><item row=\"0\" column=\"1\"><spacer/></item>"
       "<item row=\"0\" column=\"2\"><spacer/></item></layout></widget>",
       "Good: Row.ui: a layout has two items in row 0, column 1"},
      {"storyboard.json", "\"format\": 1", "\"format\": 2",
       "Good: storyboard.json: the storyboard: its format is not 1"},
      {"storyboard.json", "\"initial\": \"stack\"", "\"initial\": \"start\"",
       "Good: storyboard.json: there is no initial scene \"start\""},
      {"storyboard.json", "\"destination\": \"list\"", "\"destination\": \"lost\"",
       "Good: storyboard.json: scene form, the segue showList: there is no scene \"lost\""},
      {"storyboard.json", "\"kind\": \"push\"", "\"kind\": \"pull\"",
       "Good: storyboard.json: scene form, the segue showList: there is no kind \"pull\""},
      {"storyboard.json", "hidesBackButton", "hidesBack",
       "Good: storyboard.json: scene form: it has the unknown key \"hidesBack\""},
      {"storyboard.json", "\"destination\": \"list\", \"container\"",
       "\"destination\": \"stack\", \"container\"",
       "Good: storyboard.json: scene stack holds itself"},
      {"storyboard.json", "\"container\": \"box\"", "\"container\": \"bag\"",
       "Good: scene form: the container \"bag\" of the segue listEmbedded is missing"},
      {"storyboard.json", "\"table\": \"List\"", "\"table\": \"Lost\"",
       "Good: scene list: the table \"Lost\" of the prototype row is missing"},
      {"storyboard.json", "\"id\": \"list\"", "\"id\": \"form\"",
       "Good: storyboard.json: two scenes are called \"form\""},
      {"storyboard.json", "FormScreen", "ForumScreen",
       "Good: scene form: the class \"ForumScreen\" is unknown"},
      {"storyboard.json", "FormScreen", "UINavigationController",
       "scene form: the class \"UINavigationController\" is no screen"},
      {"storyboard.json", "\"Row.ui\"", "\"../Badge.ui\"",
       "Good: \"../Badge.ui\" is no name of a file"},
  };
  for (const auto& fault : faults) {
    const auto said = faultsOf(fault.file, fault.from, fault.to);
    EXPECT_NE(std::find(said.begin(), said.end(), fault.line), said.end())
        << fault.line << "\n  but was said: " << testing::PrintToString(said);
  }
  EXPECT_EQ(faultsOf("Row.ui", "</ui>", "").size(), 1U) << "XML that breaks off";
  EXPECT_EQ(faultsOf("storyboard.json", "[", "").size(), 1U) << "unreadable JSON";
  EXPECT_EQ(faultsOf("storyboard.json", "Row.ui", "Lost.ui").size(), 1U) << "a missing file";
}

TEST_F(Storyboard, AScreenThatDoesNotLoadIsEmptyAndNotHalfConnected) {
  EXPECT_EQ(faultsOf("Form.ui", "name=\"heading\"", "name=\"title\"").size(), 1U);
  const auto board = UIStoryboard::make("Good", *Bundle::at(folder())).value();
  const auto form =
      std::static_pointer_cast<FormScreen>(board->instantiateViewController("form").value());
  take();
  const test::StandardOutput output;
  EXPECT_TRUE(form->view()->subviews().empty());
  EXPECT_EQ(output.lines(), Calls{"Kestrova: the screen \"form\" cannot be loaded: Form.ui: the "
                                  "outlet \"heading\" is missing"});
  EXPECT_EQ(form->gauge, nullptr);
  EXPECT_TRUE(form->fieldHeight.expired());
  EXPECT_FALSE(form->hasAction("nextTapped:"));
}

TEST_F(Storyboard, AViewMayPutADesignedOneInItsPlace) {
  const auto holder = std::make_shared<Holder>();
  const auto loaded = UINib("Holder", *Bundle::at(samples())).instantiate(holder);
  ASSERT_TRUE(loaded) << loaded.error().localizedDescription;
  EXPECT_EQ(take(), Calls{"badge awake"}) << "once, in its own nib";
  const auto row = loaded.value().front();
  const auto badge = holder->badge.lock();
  ASSERT_TRUE(badge);
  EXPECT_EQ(badge->caption.lock()->text(), "Designed");
  ASSERT_EQ(row->subviews().size(), 3U);
  EXPECT_EQ(row->subviews()[1], badge);
  place(row, {{0, 0}, {300, 60}});
  EXPECT_EQ(badge->frame(), (CGRect{{105, 0}, {90, 60}}));
  holder->badgeWidth.lock()->setConstant(30);
  window().layoutIfNeeded();
  EXPECT_EQ(badge->frame().size.width, 30);
}

TEST_F(Storyboard, ANibThatHoldsItselfIsRefusedInside) {
  const auto loaded = UINib("Endless", *Bundle::at(samples())).instantiate();
  EXPECT_TRUE(loaded);
  EXPECT_EQ(take(), Calls{"the nib Endless holds itself"});
}

TEST_F(Storyboard, APlaceholderShowsAViewInAHostsForm) {
  QWidget host;
  auto* const column = new QVBoxLayout(&host);
  auto* const before = new QPushButton("Before");
  auto* const after = new QPushButton("After");
  auto button = std::make_shared<UIButton>();
  button->setTitle("Ours");
  auto* const placeholder = new ViewPlaceholder([&] { return button; }, nullptr);
  column->addWidget(before);
  column->addWidget(placeholder);
  column->addWidget(after);
  const auto controller = UIViewController::wrapping(host);
  host.resize(300, 400);
  host.show();
  host.activateWindow();
  settle();
  EXPECT_EQ(button->bounds().size.width, placeholder->width());
  EXPECT_EQ(placeholder->sizeHint(), button->widget()->sizeHint());
  EXPECT_EQ(button->next()->next(), controller);
  int taps = 0;
  button->addAction(UIControlEvents::touchUpInside, [&](const auto&) { ++taps; });
  click(*button);
  EXPECT_EQ(taps, 1);

  before->setFocus();
  QTest::keyClick(before, Qt::Key_Tab);
  EXPECT_TRUE(button->isFocused());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_TRUE(after->hasFocus());
  QTest::keyClick(after, Qt::Key_Backtab);
  EXPECT_TRUE(button->isFocused());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
  EXPECT_EQ(taps, 2);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
  EXPECT_TRUE(before->hasFocus());

  QAccessibleInterface* tree = QAccessible::queryAccessibleInterface(placeholder);
  while (tree->childCount() > 0) tree = tree->child(0);
  EXPECT_EQ(tree->text(QAccessible::Name), "Ours");
  EXPECT_EQ(tree->role(), QAccessible::Button);

  const int was = placeholder->width();
  column->setAlignment(placeholder, Qt::AlignLeft);
  settle();
  const int fitting = placeholder->width();
  EXPECT_LT(fitting, was);
  button->setTitle("Ours, at some more length");
  settle();
  EXPECT_GT(placeholder->width(), fitting) << "follows what the view wants";

  ViewPlaceholder empty([] { return nullptr; }, nullptr);
  EXPECT_EQ(empty.view(), nullptr);
  empty.grab();
}

}  // namespace
}  // namespace kestrova::platform
