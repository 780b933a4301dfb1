// The flow as a user walks through it: real taps and keys on the laid-out screens.

#include <sstream>
#include <thread>

#include <QtGui/QAccessible>
#include <QtWidgets/QDialog>

#include "platform/uikit/NSLayoutConstraint.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIBindings.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIClassRegistry.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UIKeyboard.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UINavigationBar.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UIWindow.h"
#include "sdk/flow/CheckEmailViewController.h"
#include "sdk/flow/ChooseCitizenViewController.h"
#include "sdk/flow/ChooseDocumentTypeViewController.h"
#include "sdk/flow/CongratsViewController.h"
#include "sdk/flow/DocumentTableViewCell.h"
#include "sdk/flow/DocumentTableViewController.h"
#include "sdk/flow/MoveHeadViewController.h"
#include "sdk/flow/ScanIDInstructionsViewController.h"
#include "sdk/flow/VerificationStart.h"
#include "sdk/flow/WarningViewController.h"
#include "sdk/ui/DeviceModel.h"
#include "sdk/ui/Extensions.h"
#include "sdk/ui/ProgressStepsView.h"
#include "sdk/ui/SpinnerView.h"
#include "tests/sdk/flow/FlowTest.h"

namespace kestrova {
namespace {

class Flow : public test::FlowTest {
 protected:
  // A tap on the row of the list.
  static void tapRow(UITableView& table, std::size_t row) {
    const CGRect rect = table.rectForRow({row, 0});
    const CGPoint offset = table.contentOffset();
    click(table, {rect.midX() - offset.x, rect.midY() - offset.y});
  }
  static void typeInto(UITextField& field, const std::string& text) {
    field.becomeFirstResponder();
    settle();
    QTest::keyClicks(QApplication::focusWidget(), QString::fromStdString(text));
    settle();
  }
  static double dropdown(const ChooseCitizenViewController& screen) {
    return screen.dropdownHeightConstraint.lock()->constant();
  }
  // Taps the close control, which lies on top of every screen.
  void close() {
    click(*wrapper->presentedViewController()->view()->window(), {345, 28});
    finishMotion();
  }
  static void chooseFirst(ChooseCitizenViewController& screen) {
    click(*screen.countryTextfield.lock());
    finishMotion();
    tapRow(*screen.tableView.lock(), 0);
    finishMotion();
  }
};

TEST_F(Flow, GoesFromTheHostsScreenToTheSelfie) {
  start();
  const auto nationality = top<ChooseCitizenViewController>();
  ASSERT_TRUE(nationality);
  EXPECT_FALSE(nationality->chooseButton.lock()->isEnabled());
  chooseFirst(*nationality);
  EXPECT_EQ(nationality->selectedCountryCode, "us");
  EXPECT_EQ(nationality->countryTextfield.lock()->text(), "United States");
  EXPECT_EQ(nationality->chooseButton.lock()->backgroundColor(), UIColorExtensions::kestrovaBlue());
  click(*nationality->chooseButton.lock());
  const auto email = waitForTop<CheckEmailViewController>();
  ASSERT_TRUE(email);
  EXPECT_EQ(linesThatBegin("setNationality response: [").size(), 1U);
  EXPECT_NE(lastRequest().body.find("country_code=us"), std::string::npos);

  EXPECT_TRUE(email->spinner.lock()->isHidden());
  typeInto(*email->emailTextfield.lock(), "  Ada@Example.com ");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_FALSE(email->spinner.lock()->isHidden());
  EXPECT_EQ(Kestrova::email, "Ada@Example.com");
  ASSERT_TRUE(waitForTop<MoveHeadViewController>());
  EXPECT_TRUE(email->spinner.lock()->isHidden());
  EXPECT_EQ(linesThatBegin("singup response: [").size(), 1U);
  EXPECT_NE(lastRequest().body.find("identifier=Ada%40Example.com"), std::string::npos);
  EXPECT_TRUE(navigation()->goBack());
}

TEST_F(Flow, PresentsNothingWhereTheLastScreenLacksAnOutlet) {
  class Demanding : public CongratsViewController {
   public:
    void bind(UIBindings& bindings) override {
      CongratsViewController::bind(bindings);
      bindings.outlet("seal", seal_);
    }

   private:
    std::weak_ptr<UIView> seal_;
  };
  registerFlowClasses();
  UIClassRegistry::registerClass<Demanding>("CongratsViewController");
  start();
  UIClassRegistry::registerClass<CongratsViewController>("CongratsViewController");
  EXPECT_FALSE(wrapper->presentedViewController());
  EXPECT_TRUE(
      hasLine("Kestrova: nothing is presented: scene Congrats: "
              "Congrats.ui: the outlet \"seal\" is missing"));
}

TEST_F(Flow, LeavesTheHostUnharmedWhenItIsStartedOffTheMainThread) {
  Kestrova::initialize("K");
  std::thread([this] { Kestrova::startVerification(wrapper); }).join();
  finishMotion();
  EXPECT_EQ(output.lines(), std::vector<std::string>{
                                "Kestrova: the verification cannot be started: startVerification "
                                "was called off the main thread"});
  EXPECT_FALSE(wrapper->presentedViewController());
  start();
  EXPECT_TRUE(top<ChooseCitizenViewController>());
  EXPECT_EQ(server->requests().size(), 1U);
}

TEST_F(Flow, SaysInOneLineWhyItCannotBeSeen) {
  Kestrova::initialize("K");
  const auto linesOf = [this](const std::shared_ptr<UIViewController>& from) {
    const auto before = linesThatBegin("Kestrova: ").size();
    Kestrova::startVerification(from);
    finishMotion();
    auto lines = linesThatBegin("Kestrova: ");
    lines.erase(lines.begin(), lines.begin() + std::ptrdiff_t(before));
    return lines;
  };
  using Lines = std::vector<std::string>;
  EXPECT_EQ(linesOf(nullptr),
            Lines{"Kestrova: nothing is presented: the presenting screen is null"});

  QWidget hidden;
  const auto unseen = UIViewController::wrapping(hidden);
  EXPECT_EQ(linesOf(unseen),
            Lines{"Kestrova: the presented screen cannot be seen: the host's window is not shown"});
  hidden.show();
  EXPECT_TRUE(unseen->presentedViewController()->view()->widget()->isVisible());
  unseen->dismiss(false);

  QDialog dialog(&host());
  dialog.open();
  EXPECT_EQ(
      linesOf(wrapper),
      Lines{"Kestrova: the presented screen cannot be used: a modal dialog of the host is open"});
  dialog.close();
  EXPECT_TRUE(top<ChooseCitizenViewController>());
  wrapper->dismiss(false);
  const auto inDialog = UIViewController::wrapping(dialog);
  dialog.open();
  EXPECT_EQ(linesOf(inDialog), Lines{});
  inDialog->dismiss(false);
}

TEST_F(Flow, MovesOnAfterAnyAnswerThatIsAnObjectAndOnlyOnce) {
  start();
  const auto nationality = top<ChooseCitizenViewController>();
  chooseFirst(*nationality);
  play("status-500-object:once");
  // Twice before the first answer can come.
  const auto button = nationality->chooseButton.lock();
  for (int tap = 0; tap < 2; ++tap) {
    press(*button, middle(*button));
    release(*button, middle(*button));
  }
  ASSERT_TRUE(waitForTop<CheckEmailViewController>());
  ASSERT_TRUE(waitFor([&] { return linesThatBegin("setNationality response: ").size() == 2; }));
  finishMotion();
  EXPECT_EQ(navigation()->viewControllers().size(), 2U);
}

TEST_F(Flow, LeadsToTheWarningWhereAKeyIsMissing) {
  start(false);
  const auto nationality = top<ChooseCitizenViewController>();
  chooseFirst(*nationality);
  Kestrova::apiKey.reset();
  Kestrova::authentication_key.reset();
  click(*nationality->chooseButton.lock());
  auto warning = waitForTop<WarningViewController>();
  ASSERT_TRUE(warning);
  EXPECT_EQ(linesThatBegin("Api key not initialized").size(), 1U);
  EXPECT_TRUE(linesThatBegin("Auth key not initialized").empty());
  // Back, for the backend may have answered meanwhile.
  EXPECT_EQ(warning->leaveButton.lock()->title(), "Try again");
  EXPECT_EQ(warning->messageLabel.lock()->text(),
            "We couldn’t start the verification. Please try again.");
  click(*warning->leaveButton.lock());
  finishMotion();
  ASSERT_TRUE(top<ChooseCitizenViewController>());
  Kestrova::apiKey = "K";
  click(*nationality->chooseButton.lock());
  ASSERT_TRUE(waitForTop<WarningViewController>());
  EXPECT_EQ(linesThatBegin("Auth key not initialized").size(), 1U);
  navigation()->popViewController(false);

  const auto email = push<CheckEmailViewController>("CheckEmail");
  typeInto(*email->emailTextfield.lock(), "a@b.cc");
  click(*email->startButton.lock());
  warning = waitForTop<WarningViewController>();
  ASSERT_TRUE(warning);
  EXPECT_EQ(Kestrova::email, "a@b.cc");
  // Up behind the warning, and gone on the screen that comes back.
  EXPECT_FALSE(email->spinner.lock()->isHidden());
  click(*warning->leaveButton.lock());
  finishMotion();
  ASSERT_EQ(top<CheckEmailViewController>(), email);
  EXPECT_TRUE(email->spinner.lock()->isHidden());
  EXPECT_TRUE(email->veil.lock()->isHidden());

  // This screen tests the other key first, and its second way is dropped.
  const auto type = push<ChooseDocumentTypeViewController>("ChooseDocumentType");
  type->didClickOnCell("PASSPORT");
  Kestrova::apiKey.reset();
  click(*type->nextButton.lock());
  warning = waitForTop<WarningViewController>();
  ASSERT_TRUE(warning);
  EXPECT_EQ(linesThatBegin("Auth key not initialized").size(), 3U);
  EXPECT_EQ(linesThatBegin("Api key not initialized").size(), 1U);
  EXPECT_EQ(linesThatBegin("Kestrova: the segue \"prepareDocumentSegue\" is dropped").size(), 1U);
}

TEST_F(Flow, OpensSearchesAndClosesTheListOfCountries) {
  start();
  const auto screen = top<ChooseCitizenViewController>();
  const auto field = screen->countryTextfield.lock();
  const auto table = screen->tableView.lock();
  EXPECT_EQ(dropdown(*screen), 60);
  click(*field);
  EXPECT_EQ(dropdown(*screen), 300);
  EXPECT_TRUE(screen->shouldShowKeyboard);
  EXPECT_FALSE(field->isEditing());
  finishMotion();
  EXPECT_EQ(screen->borderView.lock()->frame().size.height, 300);

  // The first five, a divider of 20 points that nothing chooses, the rest.
  EXPECT_EQ(table->rectForRow({5, 0}).size.height, 20);
  EXPECT_EQ(table->rectForRow({4, 0}).size.height, 44);
  tapRow(*table, 5);
  EXPECT_EQ(screen->selectedCountryCode, "");
  EXPECT_EQ(dropdown(*screen), 300);
  tapRow(*table, 2);
  finishMotion();
  EXPECT_EQ(screen->selectedCountryCode, "de");
  EXPECT_EQ(screen->borderView.lock()->frame().size.height, 60);
  EXPECT_FALSE(screen->shouldShowKeyboard);

  // The second tap clears the choice and types.
  click(*field);
  finishMotion();
  click(*field);
  EXPECT_TRUE(field->isEditing());
  EXPECT_EQ(field->text(), "");
  EXPECT_EQ(screen->selectedCountryCode, "");
  EXPECT_FALSE(screen->chooseButton.lock()->isEnabled());
  EXPECT_EQ(screen->chooseButton.lock()->backgroundColor(), UIColor::lightGray());
  const auto all = screen->countries.size();
  QTest::keyClicks(QApplication::focusWidget(), "GER");
  settle();
  ASSERT_EQ(screen->searchCountries.size(), 1U);
  EXPECT_EQ(screen->tableViewNumberOfRowsInSection(*table, 0), 1U);
  QTest::keyClicks(QApplication::focusWidget(), "xx");
  settle();
  EXPECT_EQ(screen->tableViewNumberOfRowsInSection(*table, 0), all);
  for (int step = 0; step < 5; ++step) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace);
  }
  settle();
  EXPECT_EQ(screen->searchCountries.size(), all);

  // A tap elsewhere closes both and keeps what was chosen: nothing.
  click(*screen->view(), {20, 640 - 120});
  EXPECT_FALSE(field->isEditing());
  EXPECT_EQ(dropdown(*screen), 60);
  // Escape first closes the list, then the flow.
  screen->tapOnArrow(nullptr);
  QWidget* const window = screen->view()->window()->widget();
  QTest::keyClick(window, Qt::Key_Escape);
  EXPECT_EQ(dropdown(*screen), 60);
  ASSERT_TRUE(wrapper->presentedViewController());
  QTest::keyClick(window, Qt::Key_Escape);
  finishMotion();
  EXPECT_FALSE(wrapper->presentedViewController());
}

TEST_F(Flow, LetsTheKeyboardOpenTheListMoveAndChoose) {
  start();
  const auto screen = top<ChooseCitizenViewController>();
  const auto field = screen->countryTextfield.lock();
  const auto table = screen->tableView.lock();
  const auto press = [](Qt::Key key, int times = 1) {
    for (int time = 0; time < times; ++time) QTest::keyClick(QApplication::focusWidget(), key);
    finishMotion();
  };
  // The field has the focus from the beginning.
  EXPECT_EQ(dropdown(*screen), 60);
  press(Qt::Key_Down);
  EXPECT_EQ(dropdown(*screen), 300);
  press(Qt::Key_Down);
  EXPECT_EQ(table->focusedRow(), (IndexPath{0, 0}));
  // From the last pinned country over the divider, and back.
  press(Qt::Key_Down, 5);
  EXPECT_EQ(table->focusedRow(), (IndexPath{6, 0}));
  press(Qt::Key_Up);
  EXPECT_EQ(table->focusedRow(), (IndexPath{4, 0}));
  press(Qt::Key_Return);
  EXPECT_EQ(screen->selectedCountryCode, "es");
  EXPECT_EQ(dropdown(*screen), 60);

  // Typing begins with the first letter, and the arrows move through what is found.
  QTest::keyClicks(QApplication::focusWidget(), "ge");
  finishMotion();
  EXPECT_TRUE(field->isEditing());
  EXPECT_EQ(field->text(), "ge");
  press(Qt::Key_Down, 2);
  press(Qt::Key_Return);
  EXPECT_EQ(screen->selectedCountryCode, codeOf(screen->searchCountries.at(1)));
  EXPECT_TRUE(screen->chooseButton.lock()->isEnabled());

  // Return chooses the only match without an arrow key; straight apostrophes find typographic ones.
  for (const char* const text : {"ger", "cote d'"}) {
    QTest::keyClicks(QApplication::focusWidget(), text);
    EXPECT_EQ(field->text(), text);
    press(Qt::Key_Return);
    EXPECT_EQ(dropdown(*screen), 60) << text;
  }
  EXPECT_EQ(screen->selectedCountryCode, "ci");
  press(Qt::Key_Backspace);
  EXPECT_EQ(field->text(), "");
  EXPECT_EQ(screen->selectedCountryCode, "");
  press(Qt::Key_Escape);

  // Tab passes the closed list by, and reaches the open one.
  press(Qt::Key_Tab, 2);
  EXPECT_FALSE(table->isFocused());
  press(Qt::Key_Backtab);
  press(Qt::Key_Space);
  press(Qt::Key_Tab);
  EXPECT_TRUE(table->isFocused());
  press(Qt::Key_Return);
  // The last search's results stay until the next edit.
  EXPECT_EQ(screen->selectedCountryCode, "ci");
  EXPECT_TRUE(field->isFocused());
}

TEST_F(Flow, AsksForANationality) {
  start();
  const auto screen = top<ChooseCitizenViewController>();
  screen->startButton(nullptr);
  finishMotion();
  const auto alert =
      std::dynamic_pointer_cast<UIAlertController>(screen->presentedViewController());
  ASSERT_TRUE(alert);
  EXPECT_EQ(alert->title(), "Error");
  EXPECT_EQ(alert->message(), "Please select your nationality");
  ASSERT_EQ(alert->actions().size(), 1U);
  EXPECT_EQ(alert->actions().front()->title(), "OK");
  EXPECT_TRUE(hasLine("Nothing is selected"));
  EXPECT_EQ(server->requests().size(), 1U);
}

TEST_F(Flow, OpensThePagesOfTheLinksButNotAtTheirFirstCharacter) {
  start();
  const auto screen = top<ChooseCitizenViewController>();
  const auto label = screen->disclaimerLabel.lock();
  std::vector<std::string> pages;
  UIApplication::shared()->openPage = [&](std::string_view url) {
    pages.emplace_back(url);
    return true;
  };
  // A point in the middle of the first place of a character.
  const auto tapCharacter = [&](std::size_t index) {
    const CGSize size = label->bounds().size;
    for (double y = 2; y < size.height; y += 4) {
      for (double x = 1; x < size.width; x += 1) {
        if (indexOfAttributedTextCharacterAtPoint(*label, {x, y}) != index) continue;
        click(*label, {x + 1, y + 3});
        return;
      }
    }
    ADD_FAILURE() << "the character " << index << " is nowhere";
  };
  const auto terms = rangeOf(screen->termText, screen->term).location;
  const auto policy = rangeOf(screen->termText, screen->policy).location;
  tapCharacter(terms);
  tapCharacter(policy);
  EXPECT_TRUE(pages.empty());
  tapCharacter(terms + 1);
  tapCharacter(policy + 1);
  EXPECT_EQ(pages, (std::vector<std::string>{"https://" KESTROVA_BACKEND_HOST "/terms/",
                                             "https://" KESTROVA_BACKEND_HOST "/privacy/"}));
}

TEST_F(Flow, ChecksTheAddressBeforeItIsSent) {
  start();
  const auto screen = push<CheckEmailViewController>("CheckEmail");
  const auto field = screen->emailTextfield.lock();
  const auto button = screen->startButton.lock();
  EXPECT_FALSE(button->isEnabled());
  click(*field);
  EXPECT_TRUE(button->isEnabled());
  EXPECT_EQ(button->backgroundColor(), UIColorExtensions::kestrovaBlue());
  click(*button);
  EXPECT_EQ(screen->presentedViewController(), nullptr);
  for (const auto* text : {"   ", "a@b", "Ada"}) {
    field->setText("");
    typeInto(*field, text);
    click(*button);
    finishMotion();
    const auto alert =
        std::dynamic_pointer_cast<UIAlertController>(screen->presentedViewController());
    ASSERT_TRUE(alert) << text;
    EXPECT_EQ(alert->message(), "Please enter a valid email address.");
    screen->dismiss(false);
    finishMotion();
  }
  // A tap beside the field ends the editing; the button stays.
  click(*screen->view(), {20, 400});
  EXPECT_FALSE(field->isEditing());
  EXPECT_TRUE(screen->emailTextfield.expired());
  EXPECT_TRUE(button->isEnabled());
  EXPECT_EQ(server->requests().size(), 1U);
}

TEST_F(Flow, KeepsTheFieldClearOfAnOnScreenKeyboardUntilTheScreenIsLeft) {
  start();
  const auto screen = push<CheckEmailViewController>("CheckEmail");
  const auto scroll = screen->scrollView.lock();
  typeInto(*screen->emailTextfield.lock(), "a");
  auto& keyboard = UIKeyboard::shared();
  keyboard.inputMethodChanged(true, {{0, 120}, {375, 547}});
  finishMotion();
  EXPECT_TRUE(scroll->isScrollEnabled());
  EXPECT_EQ(scroll->contentInset().bottom, 547);
  EXPECT_GT(scroll->contentOffset().y, 0);
  keyboard.inputMethodChanged(false, {});
  EXPECT_EQ(scroll->contentInset().bottom, -547);
  EXPECT_FALSE(scroll->isScrollEnabled());
  EXPECT_TRUE(screen->emailTextfield.expired());
  NotificationCenter::defaultCenter().post({std::string(UIKeyboardWillShowNotification), {}, {}});
  EXPECT_EQ(scroll->contentInset().bottom, -547);

  push<MoveHeadViewController>("MoveHead");
  navigation()->popViewController(false);
  keyboard.inputMethodChanged(true, {{0, 300}, {375, 100}});
  EXPECT_EQ(scroll->contentInset().bottom, -547);
  keyboard.inputMethodChanged(false, {});
}

TEST_F(Flow, HidesTheDecorationOnSmallPhones) {
  start();
  for (const auto& [machine, hidden] :
       {std::pair{"iPhone5,3", true}, {"iPhone6,1", true}, {"iPhone7,2", false}}) {
    UIDeviceExtensions::setMachineIdentifier(machine);
    const auto screen = push<CheckEmailViewController>("CheckEmail");
    EXPECT_EQ(screen->bottomRightImg.lock()->isHidden(), hidden) << machine;
    navigation()->popViewController(false);
  }
  UIDeviceExtensions::setMachineIdentifier(std::nullopt);
}

TEST_F(Flow, HandsTheChosenDocumentOnWithoutWaiting) {
  start();
  const auto screen = push<ChooseDocumentTypeViewController>("ChooseDocumentType");
  EXPECT_FALSE(screen->nextButton.lock()->isEnabled());
  ASSERT_EQ(screen->children().size(), 1U);
  const auto list =
      std::dynamic_pointer_cast<DocumentTableViewController>(screen->children().front());
  ASSERT_TRUE(list);
  const auto table = std::dynamic_pointer_cast<UITableView>(list->view());
  const auto card = [&](std::size_t row) {
    return std::dynamic_pointer_cast<DocumentTableViewCell>(table->cellForRow({row, 0}));
  };
  tapRow(*table, 0);
  EXPECT_EQ(screen->selectedDocumentType, "PASSPORT");
  EXPECT_FALSE(card(0)->selectionCheckmark.lock()->isHidden());
  EXPECT_EQ(card(0)->cardView.lock()->layer().borderWidth(), 3);
  tapRow(*table, 1);
  EXPECT_EQ(screen->selectedDocumentType, "DRIVERS_LICENSE");
  EXPECT_EQ(card(1)->documentName.lock()->text(), "Driving License");
  EXPECT_TRUE(card(0)->selectionCheckmark.lock()->isHidden());
  EXPECT_EQ(card(0)->cardView.lock()->layer().borderWidth(), 1.5);
  // The mark outlives a layout pass.
  host().resize(430, 700);
  finishMotion();
  EXPECT_EQ(card(1)->cardView.lock()->layer().borderColor(), UIColorExtensions::kestrovaBlue());
  EXPECT_EQ(card(1)->cardView.lock()->layer().borderWidth(), 3);
  // The row that keys act on has a ring over its card.
  navigation()->view()->window()->widget()->setFocus();
  while (!table->isFocused()) QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  settle();
  const QImage chosen = picture(*card(1));
  EXPECT_EQ(chosen.pixelColor(100, 6), QColor(0, 87, 255));
  EXPECT_EQ(chosen.pixelColor(100, 4), QColor(Qt::white)) << "apart from the border";

  play("stall:once");
  click(*screen->nextButton.lock());
  const auto front = top<ScanIDInstructionsViewController>();
  ASSERT_TRUE(front);
  EXPECT_EQ(front->selectedDocumentType, "DRIVERS_LICENSE");
}

// A table that was designed low makes its first row again before it makes its last.
TEST_F(Flow, SendsTheDocumentOfTheTappedRowInALowTable) {
  class Choice : public DocumentSelectionDelegate {
   public:
    std::string document;
    void didClickOnCell(const std::string& selectedDocument) override {
      document = selectedDocument;
    }
  };
  const auto choice = std::make_shared<Choice>();
  const auto list = std::make_shared<DocumentTableViewController>();
  list->delegate = choice;
  const auto table = std::make_shared<UITableView>();
  table->setRowHeight(96);
  table->registerPrototype("documentCell", [] { return std::make_shared<UITableViewCell>(); });
  table->dataSource = list;
  table->delegate = list;
  place(table, {{}, {375, 90}});
  for (const double offset : {96, 0, 192}) {
    table->setContentOffset({0, offset});
    settle();
  }
  tapRow(*table, 2);
  EXPECT_EQ(choice->document, "NATIONAL_ID_CARD");
}

TEST_F(Flow, StoresTheNextStepOfAChosenDocumentAlsoWhenTheFlowIsGone) {
  start();
  const auto screen = push<ChooseDocumentTypeViewController>("ChooseDocumentType");
  screen->didClickOnCell("PASSPORT");
  Kestrova::next_step.reset();
  click(*screen->nextButton.lock());
  wrapper->dismiss(false);
  ASSERT_TRUE(waitFor([] { return Kestrova::next_step.has_value(); }));
  EXPECT_EQ(linesThatBegin("chooseAuthenticationDocument response: [").size(), 1U);
}

// What a screen reader reads, in its order: the texts of the tree, with the state of rows.
std::vector<std::string> readAloud(const UIWindow& window) {
  std::vector<std::string> names;
  std::istringstream tree(accessibilityTree(window));
  for (std::string line; std::getline(tree, line);) {
    const auto begin = line.find('"');
    if (begin == std::string::npos) continue;
    const auto end = line.find('"', begin + 1);
    const bool isSelected = line.find(" selected", end) != std::string::npos;
    names.push_back(line.substr(begin + 1, end - begin - 1) + (isSelected ? ", selected" : ""));
  }
  return names;
}

TEST_F(Flow, ReadsInTheOrderOfTheEye) {
  using Texts = std::vector<std::string>;
  start();
  const auto window = wrapper->presentedViewController()->view()->window();
  const auto* const dialog = QAccessible::queryAccessibleInterface(window->widget())->child(0);
  EXPECT_EQ(dialog->role(), QAccessible::Dialog);
  EXPECT_TRUE(dialog->state().modal);
  const auto nationality = top<ChooseCitizenViewController>();
  EXPECT_EQ(readAloud(*window),
            (Texts{"What’s your nationality?", "Step 1 of 6", "Close", "What’s your nationality?",
                   "You’ll take a selfie and photograph an ID. It takes about three minutes.",
                   "Country", "Show countries", "Countries", nationality->termText, "Next"}));
  nationality->tapOnArrow(nullptr);
  finishMotion();
  auto texts = readAloud(*window);
  const auto list = std::find(texts.begin(), texts.end(), "Countries");
  ASSERT_GT(texts.end() - list, 200);
  EXPECT_EQ(Texts(list + 1, list + 8), (Texts{"United States", "United Kingdom", "Germany",
                                              "France", "Spain", "All countries", "Afghanistan"}));

  push<CheckEmailViewController>("CheckEmail");
  EXPECT_EQ(readAloud(*window),
            (Texts{"What’s your email address?", "Step 2 of 6", "Close", "Back",
                   "What’s your email address?", "We’ll use it for this verification.",
                   "Email address", "Next"}));
  const auto type = push<ChooseDocumentTypeViewController>("ChooseDocumentType");
  tapRow(dynamic_cast<UITableView&>(*type->children().front()->view()), 1);
  EXPECT_EQ(readAloud(*window),
            (Texts{"Choose your document", "Step 4 of 6", "Close", "Back", "Choose your document",
                   "Have it ready. You’ll photograph it next.", "Documents", "Passport",
                   "Driving License, selected", "National ID Card", "Next"}));
}

TEST_F(Flow, EndsWithABadgeAndTheSuccessStep) {
  start();
  const auto screen = push<CongratsViewController>("Congrats");
  const auto badge = screen->verifiedBadgeContainer.lock();
  ASSERT_EQ(badge->subviews().size(), 1U);
  EXPECT_EQ(badge->subviews().front()->center(), (CGPoint{80, 80}));
  ASSERT_TRUE(waitFor([&] {
    return linesThatBegin("checkAuthenticationDocumentSuccess response: [").size() == 1;
  }));
  push<MoveHeadViewController>("MoveHead");
  EXPECT_TRUE(badge->subviews().empty());
  navigation()->popViewController(false);
  EXPECT_EQ(badge->subviews().size(), 1U);
  EXPECT_FALSE(navigation()->goBack());
  screen->finishTapped(nullptr);
  finishMotion();
  EXPECT_FALSE(wrapper->presentedViewController());

  const auto alone = std::make_shared<CongratsViewController>();
  alone->finishTapped(nullptr);
}

TEST_F(Flow, CanBeLeftFromEveryScreenWhileARequestIsUnderWay) {
  for (const auto* scene : {"ChooseCitizen", "CheckEmail", "MoveHead", "ChooseDocumentType",
                            "ScanIDInstructions", "ScanBackside", "Congrats", "Warning"}) {
    start();
    play("stall:once");
    const auto nationality = top<ChooseCitizenViewController>();
    nationality->selectedCountryCode = "de";
    nationality->startButton(nullptr);
    if (scene != std::string_view("ChooseCitizen")) push<UIViewController>(scene);
    close();
    EXPECT_FALSE(wrapper->presentedViewController()) << scene;
  }
}

TEST_F(Flow, WritesLateAnswersDownAndTouchesNoScreen) {
  start();
  const auto nationality = top<ChooseCitizenViewController>();
  play("slow-bytes:once");
  nationality->selectedCountryCode = "de";
  nationality->startButton(nullptr);
  close();
  ASSERT_TRUE(waitFor([&] { return !linesThatBegin("setNationality response: [").empty(); }));
  EXPECT_FALSE(wrapper->presentedViewController());

  // Screens that were covered meanwhile and have come back wait for no answer any more.
  start();
  const auto again = top<ChooseCitizenViewController>();
  play("slow-bytes:once");
  again->selectedCountryCode = "de";
  again->startButton(nullptr);
  push<CheckEmailViewController>("CheckEmail");
  navigation()->popViewController(false);
  ASSERT_TRUE(waitFor([&] { return linesThatBegin("setNationality response: [").size() == 2; }));
  finishMotion();
  EXPECT_EQ(top<ChooseCitizenViewController>(), again);
  const auto email = push<CheckEmailViewController>("CheckEmail");
  play("slow-bytes:once");
  email->emailAddress = "ada@example.com";
  email->enterEmailAddress();
  // Nor is a second request made while the first one is under way.
  email->enterEmailAddress();
  push<ChooseDocumentTypeViewController>("ChooseDocumentType");
  navigation()->popViewController(false);
  ASSERT_TRUE(waitFor([&] { return !linesThatBegin("singup response: [").empty(); }));
  finishMotion();
  EXPECT_TRUE(email->spinner.lock()->isHidden());
  EXPECT_EQ(top<CheckEmailViewController>(), email);
  EXPECT_EQ(server->requests().size(), 5U);
}

TEST_F(Flow, SaysThatTheEmailIsNotSentYetOrNotAtAll) {
  for (const auto* scenario : {"never-answers:once", "malformed-json:once"}) {
    start();
    const auto email = push<CheckEmailViewController>("CheckEmail");
    const auto label = email->waitLabel.lock();
    play(scenario);
    typeInto(*email->emailTextfield.lock(), "ada@example.com");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(label->isHidden());
    if (scenario == std::string_view("never-answers:once")) {
      advance(15);
      EXPECT_EQ(label->text(), "Still sending. Check the connection, or close and start again.");
    } else {
      EXPECT_TRUE(waitFor([&] { return !label->isHidden(); }));
      EXPECT_EQ(label->text(),
                "Your email wasn’t sent. Check the connection, then close and start again.");
    }
    EXPECT_FALSE(label->isHidden());
    EXPECT_FALSE(email->spinner.lock()->isHidden());
    close();
  }
}

TEST_F(Flow, IsPresentedWhateverTheBackendDoesAndRunsTwice) {
  play("stall:once");
  start(false);
  ASSERT_TRUE(top<ChooseCitizenViewController>());
  const auto steps =
      std::dynamic_pointer_cast<VerificationStart>(wrapper->presentedViewController())
          ->progressSteps.lock();
  push<CheckEmailViewController>("CheckEmail");
  EXPECT_EQ(steps->currentStep(), 1U);
  wrapper->dismiss(true);
  finishMotion();
  start();
  const auto nationality = top<ChooseCitizenViewController>();
  chooseFirst(*nationality);
  click(*nationality->chooseButton.lock());
  ASSERT_TRUE(waitForTop<CheckEmailViewController>());
  // A host that goes takes the flow with it.
  destroyHost();
  EXPECT_FALSE(wrapper->presentedViewController());
}

}  // namespace
}  // namespace kestrova
