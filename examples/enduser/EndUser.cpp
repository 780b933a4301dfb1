#include "examples/enduser/EndUser.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include "examples/enduser/UsableButton.h"
#include "platform/capture/UIImagePickerController.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UIWindow.h"
#include "sdk/flow/CheckEmailViewController.h"
#include "sdk/flow/ChooseCitizenViewController.h"
#include "sdk/flow/ChooseDocumentTypeViewController.h"
#include "sdk/flow/CongratsViewController.h"
#include "sdk/flow/DocumentTableViewController.h"
#include "sdk/flow/MoveHeadViewController.h"
#include "sdk/flow/ScanBacksideViewController.h"
#include "sdk/flow/ScanIDInstructionsViewController.h"

namespace kestrova {

namespace {

constexpr std::chrono::seconds kPatience{30};
// Longer than any transition.
constexpr double kRest = 0.8;

void click(const UIView& view, CGPoint point) {
  QWidget* const top = view.widget()->window();
  const QPoint inTop =
      view.widget()->mapTo(top, QPoint(int(std::lround(point.x)), int(std::lround(point.y))));
  QWidget* const found = top->childAt(inTop);
  QWidget* const widget = found ? found : top;
  QTest::mouseClick(widget, Qt::LeftButton, {}, widget->mapFrom(top, inTop));
}

void click(const UIView& view) {
  const auto size = view.bounds().size;
  click(view, {size.width / 2, size.height / 2});
}

}  // namespace

EndUser::EndUser(std::shared_ptr<UIViewController> host, Person person)
    : pass([] { QTest::qWait(10); }), host_(std::move(host)), person_(std::move(person)) {}

std::optional<std::string> EndUser::verify() {
  try {
    waitUntil("the flow", [this] { return navigation() != nullptr; });
    choosesNationality();
    givesAddress();
    takesSelfie();
    choosesDocument();
    photographs<ScanIDInstructionsViewController>("front");
    if (person_.document != "PASSPORT") photographs<ScanBacksideViewController>("back");
    const auto end = waitForTop<CongratsViewController>("congratulations");
    tap(*end, "Finish");
    waitUntil("the host's screen", [this] { return !host_->presentedViewController(); });
    return std::nullopt;
  } catch (const Vain& vain) {
    return vain.waitedFor;
  }
}

void EndUser::choosesNationality() {
  const auto screen = waitForTop<ChooseCitizenViewController>("nationality");
  const auto field = screen->countryTextfield.lock();
  const auto country = std::ranges::find(screen->countries, person_.country,
                                         [](const auto& entry) { return codeOf(entry); });
  if (country == screen->countries.end()) throw Vain{"a country with the code " + person_.country};
  // The first tap opens the list, the second one begins to type.
  click(*field);
  rest();
  look("nationality-open");
  click(*field);
  type(nameOf(*country));
  rest();
  look("nationality-searching");
  const auto row = std::ranges::find(screen->searchCountries, person_.country,
                                     [](const auto& entry) { return codeOf(entry); });
  if (row == screen->searchCountries.end()) throw Vain{"the country among those found"};
  tapRow(*screen->tableView.lock(), std::size_t(row - screen->searchCountries.begin()));
  rest();
  look("nationality-chosen");
  tap(*screen, "Next");
}

void EndUser::givesAddress() {
  const auto screen = waitForTop<CheckEmailViewController>("email");
  click(*screen->emailTextfield.lock());
  type(person_.email);
  rest();
  look("email-typed");
  tap(*screen, "Next");
}

void EndUser::takesSelfie() {
  const auto screen = waitForTop<MoveHeadViewController>("selfie");
  tap(*screen, "Start");
  waitUntil("the engine's screen", [&] { return screen->presentedViewController() != nullptr; });
  rest();
  look("selfie-oval");
  waitUntil("the end of the selfie", [&] { return !screen->presentedViewController(); });
}

void EndUser::choosesDocument() {
  const auto screen = waitForTop<ChooseDocumentTypeViewController>("document");
  const auto list =
      std::dynamic_pointer_cast<DocumentTableViewController>(screen->children().front());
  const auto row = std::ranges::find(list->documents, person_.document,
                                     &std::pair<std::string, std::string>::second);
  if (row == list->documents.end()) throw Vain{"a document called " + person_.document};
  tapRow(dynamic_cast<UITableView&>(*list->view()), std::size_t(row - list->documents.begin()));
  rest();
  look("document-chosen");
  tap(*screen, "Next");
}

template <typename Screen>
void EndUser::photographs(const std::string& side) {
  const auto screen = waitForTop<Screen>(side);
  tap(*screen, "Take photo");
  waitUntil("the camera", [&] { return screen->presentedViewController() == screen->mediaUI; });
  rest();
  waitForButton(*screen->mediaUI, "Take photo");
  look(side + "-camera");
  tap(*screen->mediaUI, "Take photo");
  waitForButton(*screen->mediaUI, "Use photo");
  look(side + "-taken");
  tap(*screen->mediaUI, "Use photo");
}

void EndUser::waitUntil(std::string_view what, const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) throw Vain{std::string(what)};
    pass();
  }
}

void EndUser::rest() {
  const double until = AnimationClock::shared().now() + kRest;
  waitUntil("rest", [until] { return AnimationClock::shared().now() >= until; });
}

template <typename Screen>
std::shared_ptr<Screen> EndUser::waitForTop(std::string_view name) {
  std::shared_ptr<Screen> found;
  waitUntil("the screen " + std::string(name), [&] {
    const auto stack = navigation();
    found = stack ? std::dynamic_pointer_cast<Screen>(stack->topViewController()) : nullptr;
    return found != nullptr;
  });
  rest();
  look(std::string(name));
  return found;
}

std::shared_ptr<UINavigationController> EndUser::navigation() const {
  const auto flow = host_->presentedViewController();
  if (!flow || flow->children().empty()) return nullptr;
  return std::dynamic_pointer_cast<UINavigationController>(flow->children().front());
}

std::shared_ptr<UIButton> EndUser::waitForButton(UIViewController& on, std::string_view label) {
  std::shared_ptr<UIButton> button;
  waitUntil("the button " + std::string(label),
            [&] { return (button = usableButton(*on.view(), label)) != nullptr; });
  return button;
}

void EndUser::tap(UIViewController& on, std::string_view label) {
  click(*waitForButton(on, label));
}

void EndUser::tapRow(UITableView& table, std::size_t row) {
  const CGRect rect = table.rectForRow({row, 0});
  const double room = table.bounds().size.height;
  if (rect.maxY() > table.contentOffset().y + room) {
    table.setContentOffset({0, rect.maxY() - room}, false);
    pass();
  }
  const CGPoint offset = table.contentOffset();
  click(table, {rect.midX() - offset.x, rect.midY() - offset.y});
}

void EndUser::type(const std::string& text) {
  QWidget* const focused = QApplication::focusWidget();
  if (!focused) throw Vain{"the keyboard's focus"};
  QTest::keyClicks(focused, QString::fromStdString(text));
}

}  // namespace kestrova
