#include "tests/walk/Walk.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <functional>
#include <iterator>
#include <sstream>
#include <thread>

#include <QtCore/QElapsedTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "platform/capture/CameraConfiguration.h"
#include "platform/capture/CameraSession.h"
#include "platform/capture/UIImagePickerController.h"
#include "platform/foundation/JSONSerialization.h"
#include "platform/liveness/DevelopmentEngine.h"
#include "platform/liveness/DevelopmentScreen.h"
#include "platform/uikit/AnimationClock.h"
#include "platform/uikit/UIAlertController.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIKeyboard.h"
#include "platform/uikit/UINavigationBar.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UITableViewCell.h"
#include "platform/uikit/UITextField.h"
#include "platform/uikit/UIWindow.h"
#include "sdk/backend/BackendTransport.h"
#include "sdk/core/Kestrova.h"
#include "sdk/flow/CheckEmailViewController.h"
#include "sdk/flow/ChooseCitizenViewController.h"
#include "sdk/flow/ChooseDocumentTypeViewController.h"
#include "sdk/flow/CongratsViewController.h"
#include "sdk/flow/MoveHeadViewController.h"
#include "sdk/flow/ScanBacksideViewController.h"
#include "sdk/flow/ScanIDInstructionsViewController.h"
#include "sdk/flow/WarningViewController.h"

namespace kestrova::walk {

namespace {

// Longer than any motion of the interface.
constexpr double kRest = 1;
// How long background work may take, in real time.
constexpr int kPatience = 2'000;

constexpr std::array kSizes{QSize(375, 667), QSize(667, 375),  QSize(320, 568),
                            QSize(800, 480), QSize(1280, 800), QSize(480, 272)};
constexpr std::array kTouches{"Next", "Start", "Take photo", "Finish", "Try again"};

Place placeOf(const UIViewController* screen) {
  if (dynamic_cast<const ChooseCitizenViewController*>(screen)) return Place::nationality;
  if (dynamic_cast<const CheckEmailViewController*>(screen)) return Place::email;
  if (dynamic_cast<const MoveHeadViewController*>(screen)) return Place::selfie;
  if (dynamic_cast<const ChooseDocumentTypeViewController*>(screen)) return Place::document;
  if (dynamic_cast<const ScanIDInstructionsViewController*>(screen)) return Place::frontSide;
  if (dynamic_cast<const ScanBacksideViewController*>(screen)) return Place::backSide;
  if (dynamic_cast<const CongratsViewController*>(screen)) return Place::congratulations;
  if (dynamic_cast<const WarningViewController*>(screen)) return Place::warning;
  return Place::host;
}

void handleEvents() {
  for (int round = 0; round < 4; ++round) {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
  }
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool waitFor(const std::function<bool()>& condition, int milliseconds = kPatience) {
  QElapsedTimer timer;
  timer.start();
  while (!condition()) {
    if (timer.elapsed() > milliseconds) return false;
    QCoreApplication::processEvents();
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  }
  return true;
}

void waitForQueue(const DispatchQueue& queue) {
  const auto isDone = std::make_shared<bool>(false);
  queue.async([isDone] { DispatchQueue::main().async([isDone] { *isDone = true; }); });
  waitFor([isDone] { return *isDone; });
}

bool isObject(const std::optional<Result<HTTPResponse>>& response) {
  if (!response || !*response) return false;
  const auto& body = response->value().body;
  const auto value = JSONSerialization::jsonObject(body);
  return value && value.value().dictionary();
}

bool isSeen(const UIView& view) {
  return view.widget() && view.widget()->isVisible();
}

// The entries of a folder, or what their links name.
std::vector<std::string> entries(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  std::error_code gone;
  for (const auto& entry : std::filesystem::directory_iterator(folder, gone)) {
    const auto link = std::filesystem::read_symlink(entry.path(), gone);
    names.push_back(link.empty() ? entry.path().filename() : link);
  }
  return names;
}

bool isEncoding() {
  return std::ranges::any_of(entries("/proc/self/fd"), [](const auto& name) {
    return name.find("exprotvideo") != std::string::npos;
  });
}

}  // namespace

// ---- What all walks share --------------------------------------------------------------------

Output::Output(int descriptor)
    : file_(::memfd_create("walk", MFD_CLOEXEC)),
      original_(::fcntl(descriptor, F_DUPFD_CLOEXEC, 3)) {
  ::dup2(file_, descriptor);
}

std::string Output::fresh() {
  std::fflush(stdout);
  std::string text(std::size_t(::lseek(file_, 0, SEEK_END) - read_), '\0');
  if (::pread(file_, text.data(), text.size(), read_) < 0) text.clear();
  read_ += long(text.size());
  return text;
}

Surroundings::Surroundings() : standardOutput(STDOUT_FILENO), standardError(STDERR_FILENO) {
  sandbox::Options options;
  options.port = 0;
  options.listingPort = 0;
  options.store = directory.path() / "store";
  options.limits.connections = 256;
  server = std::move(sandbox::Sandbox::start(std::move(options)).value());
  std::filesystem::create_directory(directory.path() / "uploads");
  ::setenv("XDG_DATA_HOME", (directory.path() / "data").c_str(), 1);
  QAccessible::setActive(true);
  UIApplication::shared()->openPage = [](std::string_view) { return true; };
  UIApplication::shared()->openSettings = [] {};
}

Surroundings::~Surroundings() {
  BackendTransport::replace(nullptr);
  CameraConfiguration::set({});
}

HTTPTransportConfiguration Surroundings::configuration() const {
  auto configuration = BackendTransport::defaultConfiguration();
  configuration.trustedAuthorities = server->authorityFile();
  configuration.connectTo =
      std::string(KESTROVA_BACKEND_HOST) + ":127.0.0.1:" + std::to_string(server->port());
  configuration.honoursProxy = false;
  configuration.temporaryDirectory = directory.path() / "uploads";
  return configuration;
}

std::map<std::string, std::size_t> Walk::held(const Surroundings& surroundings) {
  return {{"descriptors", entries("/proc/self/fd").size()},
          {"threads", entries("/proc/self/task").size()},
          {"temporary files", entries(surroundings.directory.path() / "uploads").size()}};
}

// ---- Steps -----------------------------------------------------------------------------------

Walk::Walk(Surroundings& surroundings, bool usesRealClock)
    : surroundings_(surroundings),
      usesRealClock_(usesRealClock),
      firstRequest_(surroundings.server->requests().size()) {
  if (!usesRealClock) AnimationClock::shared().useManualTime();
  transport_ = std::make_shared<HeldTransport>(surroundings.configuration(),
                                               [visit = visit_] { return visit->load(); });
  BackendTransport::replace(transport_);
  Kestrova::authentication_key.reset();
  Kestrova::next_step.reset();
  Kestrova::email.reset();
  Kestrova::initialize("K");
  act("camera", "works");
  act("engine", "works");
  makeHost();
}

Walk::~Walk() {
  surroundings_.server->clearScenarios();
  BackendTransport::replace(nullptr);
  CameraConfiguration::set({});
  host_.reset();
  handleEvents();
}

void Walk::makeHost() {
  host_ = std::make_unique<QWidget>();
  auto* const layout = std::make_unique<QVBoxLayout>(host_.get()).release();
  layout->addWidget(std::make_unique<QLineEdit>().release());
  auto* const button = std::make_unique<QPushButton>("Verify").release();
  layout->addWidget(button);
  QObject::connect(button, &QPushButton::clicked, [this] {
    if (flow() && !flow()->isBeingDismissed()) {
      note("host-out-of-reach", "the host's button was pressed under the flow");
    }
    startFromHost();
  });
  host_->resize(kSizes[0]);
  host_->show();
  host_->activateWindow();
  wrapper_ = UIViewController::wrapping(*host_);
  handleEvents();
}

void Walk::startFromHost() {
  ++requests_["initialize"];
  if (!flow() || flow()->isBeingDismissed()) ++ways_[Place::nationality];
  Kestrova::startVerification(wrapper_);
}

std::optional<Finding> Walk::perform(const std::string& step) {
  try {
    const bool isHasty = step.find('!') < step.find(' ');
    const auto verb = step.substr(0, step.find_first_of(" !"));
    const auto space = step.find(' ');
    const auto object = space == std::string::npos ? std::string() : step.substr(space + 1);
    if (!exitDue_ && !isAsking()) ways_[Place::host] = 0;
    observe();
    mayFocusExit_ = verb == "focus" || verb == "open" || verb == "mash" || object == "Close" ||
                    object == "Back" || object.ends_with("Tab") || object == "Up" ||
                    object == "Down" || verb == "reach";
    if (verb == "reach") {
      reach(object);
    } else {
      act(verb, object);
      settle(!isHasty);
    }
    check();
  } catch (const Fault& fault) {
    return fault;
  }
  return found_;
}

void Walk::act(const std::string& verb, const std::string& object) {
  const auto number = [&object] { return std::atof(object.c_str()); };
  if (verb == "wait") return advance(number());
  if (verb == "answer" || verb == "lose") return answer(object, verb == "lose");
  if (verb == "backend") {
    if (auto scenario = sandbox::parseScenario(object)) {
      surroundings_.server->setScenario(scenario.value());
    }
    return;
  }
  if (verb == "camera") {
    using Code = CameraErrorCode;
    device_->refusal.reset();
    if (object == "denied") device_->refusal = cameraError(Code::notPermitted, "denied");
    if (object == "busy") device_->refusal = cameraError(Code::busy, "busy");
    if (object == "unplugged") return device_->unplug();
    CameraConfiguration cameras;
    if (object != "missing") cameras.frontSource = cameras.rearSource = device_->maker();
    return CameraConfiguration::set(cameras);
  }
  if (verb == "engine") {
    using Ending = DevelopmentEngine::Rehearsal::Ending;
    DevelopmentEngine::Rehearsal rehearsal;
    rehearsal.initializes = object != "fails";
    rehearsal.answersElsewhere = object == "elsewhere";
    if (object == "times-out") rehearsal.ending = Ending::timedOut;
    if (object == "gives-nothing") rehearsal.ending = Ending::withoutAuditTrail;
    return DevelopmentEngine::shared()->setRehearsal(rehearsal);
  }
  if (verb == "keys") {
    if (object == "forgotten") return Kestrova::authentication_key.reset();
    return Kestrova::apiKey.reset();
  }
  if (verb == "open") {
    if (!host_) makeHost();
    host_->showNormal();
    host_->activateWindow();
    return;
  }
  if (!host_) return;
  if (verb == "start") return startFromHost();
  if (verb == "press" || verb == "press-stale" || verb == "focus") {
    pressThroughAccessibility(verb == "focus" ? object + "\n" : object, verb == "press-stale");
    return;
  }
  if (verb == "resize") {
    int width = 0;
    int height = 0;
    if (std::sscanf(object.c_str(), "%dx%d", &width, &height) == 2) host_->resize(width, height);
    return;
  }
  if (verb == "rotate") return host_->resize(host_->height(), host_->width());
  if (verb == "minimise") return host_->showMinimized();
  if (verb == "hide") return host_->hide();
  if (verb == "close") return void(host_->close());
  if (verb == "destroy") {
    happened(place_, Event::leave);
    host_.reset();
    wrapper_.reset();
    return;
  }
  if (!host_->isVisible() || host_->isMinimized()) return;
  if (verb == "keyboard") {
    const double height = object == "up" ? 260 : 0;
    return UIKeyboard::shared().inputMethodChanged(
        height > 0, {{0, host_->height() - height}, {double(host_->width()), height}});
  }
  if (verb == "tap" || verb == "double-tap") {
    auto* const ofHost = host_->findChild<QPushButton*>();
    if (object == "Verify") return clickAt(ofHost->geometry().center(), verb == "double-tap");
    if (const auto found = target(object)) click(*found, verb == "double-tap");
    return;
  }
  if (verb == "touch") {
    int x = 0;
    int y = 0;
    if (std::sscanf(object.c_str(), "%d%% %d%%", &x, &y) == 2) {
      clickAt({(host_->width() - 1) * x / 100, (host_->height() - 1) * y / 100}, false);
    }
    return;
  }
  if (verb == "type") {
    for (const char letter : object) key(std::string(1, letter));
    return;
  }
  if (verb == "paste") {
    if (auto* const edit = qobject_cast<QLineEdit*>(QApplication::focusWidget())) {
      edit->insert(QString(10'000, 'x'));
    }
    return;
  }
  if (verb == "mash") {
    std::istringstream keys(object);
    for (std::string name; keys >> name;) key(name);
    return;
  }
  if (verb == "key") key(object);
}

void Walk::click(const UIView& view, bool isDouble) {
  if (!view.widget()) return;
  clickAt(view.widget()->mapTo(host_.get(), view.widget()->rect().center()), isDouble);
}

void Walk::clickAt(QPoint inHost, bool isDouble) {
  for (int tap = 0; tap <= int(isDouble); ++tap) {
    observe();
    if (!host_ || !host_->rect().contains(inHost)) return;
    QWidget* const found = host_->childAt(inHost);
    QWidget* const widget = found ? found : host_.get();
    const QPoint point = widget->mapFrom(host_.get(), inHost);
    const QPointer<QWidget> pressed = widget;
    QTest::mousePress(widget, Qt::LeftButton, {}, point);
    if (pressed) QTest::mouseRelease(pressed, Qt::LeftButton, {}, point);
    handleEvents();
  }
}

void Walk::key(const std::string& name) {
  observe();
  if (!host_ || !host_->isVisible()) return;
  QWidget* const focused = QApplication::focusWidget();
  QWidget* const target = focused ? focused : host_.get();
  auto* const field = qobject_cast<QLineEdit*>(focused);
  const auto sequence = QKeySequence::fromString(QString::fromStdString(name));
  if (name == "Return" && field && place_ == Place::email) happened(place_, Event::primary);
  if (name == "Escape") happened(place_, Event::leave);
  if (name == "Alt+Left") happened(place_, Event::goBack);
  if (name.ends_with("Tab") || name == "Up" || name == "Down") exitFocusedIn_ = *visit_;
  if (name == "Shift+Tab") {
    QTest::keyClick(target, Qt::Key_Backtab, Qt::ShiftModifier);
  } else if (name.size() == 1) {
    QTest::keyClick(target, name[0]);
  } else {
    const auto pressed = sequence[0];
    QTest::keyClick(target, pressed.key(), pressed.keyboardModifiers());
  }
  handleEvents();
}

bool Walk::pressThroughAccessibility(const std::string& name, bool isStale) {
  const bool focuses = name.ends_with('\n');
  const auto label = QString::fromStdString(focuses ? name.substr(0, name.size() - 1) : name);
  // The objects of the tree, their identifiers kept as a screen reader does.
  std::map<std::string, QAccessible::Id> now;
  const std::function<void(QAccessibleInterface*)> collect = [&](QAccessibleInterface* object) {
    if (!object || !object->isValid()) return;
    const auto text = object->text(QAccessible::Name).toStdString();
    if (object->actionInterface() && !text.empty()) {
      now.emplace(text, QAccessible::uniqueId(object));
    }
    for (int index = 0; index < object->childCount(); ++index) collect(object->child(index));
  };
  collect(QAccessible::queryAccessibleInterface(host_.get()));
  const auto stale = known_;
  for (const auto& [text, id] : now) known_[text] = id;
  const auto& from = isStale ? stale : now;
  const auto found = from.find(label.toStdString());
  if (found == from.end()) return false;
  auto* const object = QAccessible::accessibleInterface(found->second);
  if (!object || !object->isValid() || !object->actionInterface()) return false;
  object->actionInterface()->doAction(focuses ? QAccessibleActionInterface::setFocusAction()
                                              : QAccessibleActionInterface::pressAction());
  // The toolkit's buttons stay down for a while.
  const QPointer<QPushButton> ofHost = host_->findChild<QPushButton*>();
  waitFor([ofHost] { return !ofHost || !ofHost->isDown(); });
  return true;
}

std::vector<std::size_t> Walk::pending() const {
  std::vector<std::size_t> ids;
  for (std::size_t id = 0; id < transport_->count(); ++id) {
    if (!transport_->at(id).isAnswered) ids.push_back(id);
  }
  return ids;
}

void Walk::answer(const std::string& step, bool fails) {
  for (const auto id : pending()) {
    if (transport_->at(id).step != step) continue;
    if (!waitFor([&] { return transport_->at(id).response.has_value(); }, 10'000)) {
      fail("backend", "the sandbox does not answer " + step);
    }
    const auto request = transport_->at(id);
    const auto asker = std::ranges::find_if(flowModel(), [&](const Rule& rule) {
      return std::ranges::find(rule.requests, step) != rule.requests.end();
    });
    if (asker != flowModel().end()) {
      const auto event = fails || !isObject(request.response)      ? Event::silence
                         : request.visit == *visit_ && !isLeaving_ ? Event::answer
                                                                   : Event::lateAnswer;
      const bool isCheck = step.starts_with("check_") || step == "authentication_assessments";
      if (!isCheck || step.ends_with("success")) happened(asker->at, event);
    }
    return transport_->answer(id, fails);
  }
}

void Walk::advance(double seconds) {
  if (usesRealClock_) return QTest::qWait(int(seconds * 1000));
  constexpr double kStep = 0.25;
  for (double left = seconds; left > 0; left -= kStep) {
    AnimationClock::shared().advance(std::min(left, kStep));
    handleEvents();
    observe();
  }
}

void Walk::settle(bool waitsForQueues) {
  handleEvents();
  observe();
  if (!waitsForQueues) return;
  for (int round = 0; round < 2; ++round) {
    waitForQueue(CameraSession::queue());
    waitForQueue(DispatchQueue::global(DispatchQoS::userInitiated));
    waitForQueue(DispatchQueue::global(DispatchQoS::background));
    handleEvents();
  }
  observe();
  const bool isThere = waitFor([this] {
    observe();
    return !awaited();
  });
  if (!isThere && host_ && host_->isVisible()) fail("sends-what-is-due", *awaited());
  handleEvents();
  observe();
}

// What the events so far must lead to soon.
std::optional<std::string> Walk::awaited() const {
  const bool hasKeys = Kestrova::authentication_key && Kestrova::apiKey;
  for (const auto& [step, count] : requests_) {
    if (count > 0 && (hasKeys || step.starts_with("check_")) &&
        (step.starts_with("record_") || step.starts_with("check_"))) {
      return step + " was not sent";
    }
  }
  if (isEncoding()) return "the movie is still being encoded";
  return std::nullopt;
}

std::string Walk::sensibleStep() const {
  const auto shown = flow();
  if (!host_ || !host_->isVisible() || host_->isMinimized()) return "open";
  if (!shown) return "tap Verify";
  if (isMoving()) return "wait 0.5";
  const auto has = [this](const char* name) { return target(name) != nullptr; };
  if (const auto above = modal()) {
    for (const auto* name : {"OK", "Stay", "Use photo", "Take photo"}) {
      if (has(name)) return std::string("tap ") + name;
    }
    return "wait 1";
  }
  for (const auto id : pending()) {
    const auto request = transport_->at(id);
    if (request.visit == *visit_ || request.step == "initialize") return "answer " + request.step;
  }
  if (overlay())
    return pending().empty() ? "tap Close" : "answer " + transport_->at(pending()[0]).step;
  const auto top = screen();
  if (const auto citizen = std::dynamic_pointer_cast<ChooseCitizenViewController>(top)) {
    if (citizen->selectedCountryCode.empty()) {
      if (has("row 2")) return "tap row 2";
      return citizen->shouldShowKeyboard ? "wait 0.3" : "tap Country";
    }
  }
  if (const auto mail = std::dynamic_pointer_cast<CheckEmailViewController>(top)) {
    if (mail->emailAddress.empty()) {
      return qobject_cast<QLineEdit*>(QApplication::focusWidget()) ? "type a@b.cd"
                                                                   : "tap E-mail address";
    }
  }
  if (const auto document = std::dynamic_pointer_cast<ChooseDocumentTypeViewController>(top)) {
    if (document->selectedDocumentType.empty()) {
      return "tap row " + std::to_string(1 + flows_.size() % 2);
    }
  }
  for (const auto* name : kTouches) {
    if (has(name)) return std::string("tap ") + name;
  }
  return "wait 0.5";
}

void Walk::reach(const std::string& place) {
  for (int round = 0; round < 60; ++round) {
    if (nameOf(place_) == place && !isMoving() && !modal()) return;
    const auto step = sensibleStep();
    const auto space = step.find(' ');
    act(step.substr(0, space), space == std::string::npos ? "" : step.substr(space + 1));
    advance(0.3);
    settle(true);
    check();
  }
}

std::string Walk::choose(std::mt19937_64& random) {
  const auto roll = [&random](std::size_t below) { return std::size_t(random() % below); };
  const auto pick = [&](const auto& from) { return from[roll(std::size(from))]; };
  const std::string haste = roll(3) == 0 ? "! " : " ";
  if (roll(100) < (flows_.empty() ? 60U : 2U)) {
    return "reach " + std::string(nameOf(Place(1 + roll(std::size_t(Place::congratulations)))));
  }
  if (roll(100) < 45) {
    const auto step = sensibleStep();
    const auto space = step.find(' ');
    return space == std::string::npos ? step
                                      : step.substr(0, space) + haste + step.substr(space + 1);
  }
  const auto visible = targets();
  const auto name = [&]() -> std::string {
    return visible.empty() ? "Close" : visible[roll(visible.size())].name;
  };
  const auto waiting = pending();
  constexpr std::array kKeys{"Return",   "Space", "Escape", "Tab",      "Shift+Tab",
                             "Alt+Left", "Down",  "Up",     "Left",     "Right",
                             "PgDown",   "Home",  "End",    "Backspace"};
  switch (roll(30)) {
    case 0:
    case 1:
    case 2:
    case 3:
      return "tap" + haste + name();
    case 4:
      return "double-tap" + haste + name();
    case 5:
      return "touch" + haste + std::to_string(roll(101)) + "% " + std::to_string(roll(101)) + "%";
    case 6:
    case 7:
    case 8:
    case 9:
      return "key" + haste + pick(kKeys);
    case 10:
      return "key" + haste + (roll(2) ? "Return" : "Space");
    case 11:
      return "key" + haste + (roll(2) ? "Tab" : "Alt+Left");
    case 12: {
      std::string keys = "mash";
      for (int count = 0; count < 6; ++count) keys += std::string(" ") + pick(kKeys);
      return keys;
    }
    case 13:
      return "type" + haste + pick(std::array{"ger", "a@b.cd", "x y", "@"});
    case 14:
      return "paste";
    case 15:
    case 16:
      return "press" + haste + (roll(4) ? name() : "Verify");
    case 17:
      return "press-stale" + haste +
             (known_.empty() ? name()
                             : std::next(known_.begin(), long(roll(known_.size())))->first);
    case 18:
      return "focus" + haste + name();
    case 19: {
      const auto size = pick(kSizes);
      return "resize " + std::to_string(size.width()) + "x" + std::to_string(size.height());
    }
    case 20:
      return pick(std::array{"rotate", "minimise", "hide", "open", "open", "open"});
    case 21:
      return std::string("keyboard ") + (roll(2) ? "up" : "down");
    case 22:
      return std::string("camera ") +
             pick(std::array{"works", "works", "denied", "busy", "unplugged", "missing"});
    case 23:
      return std::string("engine ") +
             pick(std::array{"works", "works", "elsewhere", "fails", "times-out", "gives-nothing"});
    case 24:
      return pick(std::array{"close", "destroy", "start", "start", "keys forgotten", "open"});
    case 25:
      return std::string("backend ") +
             pick(std::array{"status-500-object:once", "status-500-text:once",
                             "malformed-json:once", "top-level-array:once", "no-next-step:once"});
    case 26:
    case 27:
      if (!waiting.empty()) {
        return std::string(roll(4) ? "answer" : "lose") + haste +
               transport_->at(pick(waiting)).step;
      }
      [[fallthrough]];
    default:
      return "wait" + haste + pick(std::array{"0.1", "0.2", "0.3", "0.5", "1", "2"});
  }
}

// ---- What the interface shows ----------------------------------------------------------------

std::shared_ptr<UIViewController> Walk::flow() const {
  return wrapper_ ? wrapper_->presentedViewController() : nullptr;
}

std::shared_ptr<UIViewController> Walk::screen() const {
  const auto shown = flow();
  if (!shown || shown->children().empty()) return nullptr;
  const auto stack = std::dynamic_pointer_cast<UINavigationController>(shown->children().front());
  return stack ? stack->topViewController() : nullptr;
}

std::shared_ptr<UIViewController> Walk::modal() const {
  const auto shown = flow();
  auto above = shown ? shown->presentedViewController() : nullptr;
  while (above && above->presentedViewController()) above = above->presentedViewController();
  return above;
}

std::shared_ptr<UIView> Walk::overlay() const {
  const auto top = screen();
  std::shared_ptr<UIView> found;
  if (const auto face = std::dynamic_pointer_cast<MoveHeadViewController>(top)) {
    found = face->loadingView.lock();
  } else if (const auto side = std::dynamic_pointer_cast<DocumentCaptureViewController>(top)) {
    found = side->loadingView.lock();
  } else if (const auto mail = std::dynamic_pointer_cast<CheckEmailViewController>(top)) {
    found = mail->veil.lock();
  }
  return found && !found->isHidden() ? found : nullptr;
}

bool Walk::isMoving() const {
  const auto shown = flow();
  const auto window = shown && shown->viewIfLoaded() ? shown->view()->window() : nullptr;
  if (!window || !window->widget()) return false;
  // A picture of the motion is the one widget that is no view and takes touches.
  return std::ranges::any_of(window->widget()->findChildren<QWidget*>(), [](const QWidget* widget) {
    return widget->metaObject() == &QWidget::staticMetaObject && !UIView::of(widget) &&
           widget->isVisible() && !widget->testAttribute(Qt::WA_TransparentForMouseEvents);
  });
}

std::vector<Walk::Target> Walk::targets() const {
  std::vector<Target> found;
  const std::function<void(const std::shared_ptr<UIView>&)> collect =
      [&](const std::shared_ptr<UIView>& view) {
        if (!isSeen(*view)) return;
        if (const auto control = std::dynamic_pointer_cast<UIControl>(view)) {
          const auto label = view->accessibilityLabel();
          if (!label.empty()) found.push_back({label, view});
        }
        if (const auto table = std::dynamic_pointer_cast<UITableView>(view)) {
          for (std::size_t row = 0; row < std::min<std::size_t>(5, table->accessibilityRowCount());
               ++row) {
            const auto cell = table->cellForRow({row, 0});
            const auto middle = cell ? cell->widget()->visibleRegion().boundingRect() : QRect();
            if (middle.height() > 8) found.push_back({"row " + std::to_string(row), cell});
          }
        }
        for (const auto& each : view->subviews()) collect(each);
      };
  const auto shown = flow();
  const auto window = shown && shown->viewIfLoaded() ? shown->view()->window() : nullptr;
  if (window) collect(window);
  return found;
}

std::shared_ptr<UIView> Walk::target(const std::string& name) const {
  // The last one lies on top.
  const auto all = targets();
  const auto found =
      std::find_if(all.rbegin(), all.rend(), [&](const Target& each) { return each.name == name; });
  return found == all.rend() ? nullptr : found->view;
}

// ---- The model -------------------------------------------------------------------------------

void Walk::fail(const std::string& invariant, const std::string& text) {
  const char* const without = std::getenv("WALK_WITHOUT");
  if (without &&
      ("," + std::string(without) + ",").find("," + invariant + ",") != std::string::npos)
    return;
  Fault fault;
  fault.invariant = invariant;
  fault.text = text;
  throw fault;
}

void Walk::note(const std::string& invariant, const std::string& text) {
  try {
    fail(invariant, text);
  } catch (const Fault& fault) {
    if (!found_) found_ = fault;
  }
}

void Walk::happened(Place at, Event event) {
  if (event == Event::primary) {
    const bool hasKeys = Kestrova::authentication_key && Kestrova::apiKey;
    if (!hasKeys && ruleFor(at, Event::missingKey)) event = Event::missingKey;
    const auto* const first = event == Event::primary ? ruleFor(at, event) : nullptr;
    for (const auto id : pending()) {
      const auto request = transport_->at(id);
      // Not the one that this event has just sent.
      const bool isEarlier = id < counted_ && request.visit == *visit_;
      if (isEarlier && first && std::ranges::count(first->requests, request.step) > 0) {
        event = Event::repeat;
      }
    }
    ++primaries_;
  }
  const auto* const rule = ruleFor(at, event);
  if (!rule) return;
  for (const auto next : rule->next) ++ways_[next];
  for (const auto step : rule->requests) ++requests_[std::string(step)];
}

void Walk::watchControls(const std::shared_ptr<UIView>& below) {
  if (const auto control = std::dynamic_pointer_cast<UIControl>(below)) {
    auto& [watched, label] = watched_[control.get()];
    if (watched.expired()) {
      watched = control;
      control->addAction(UIControlEvents::touchUpInside,
                         [this](const std::shared_ptr<UIControl>& sender) { activated(*sender); });
    }
    label = control->accessibilityLabel();
  }
  for (const auto& each : below->subviews()) watchControls(each);
}

void Walk::activated(UIControl& control) {
  // The control's own action comes first and may have renamed it.
  const auto label = watched_[&control].second;
  const auto shown = flow();
  const auto was = screen_.lock();
  const bool isOnScreen = was && was->viewIfLoaded() && control.isDescendant(*was->view());
  // Without a motion the screen is out of its stack by now.
  const auto stack =
      shown && !shown->children().empty()
          ? std::dynamic_pointer_cast<UINavigationController>(shown->children().front())
          : nullptr;
  const auto bar = stack ? stack->navigationBar() : nullptr;
  const bool isBack = bar && control.isDescendant(*bar);
  if (isOnScreen || isBack) {
    if (hadOverlay_) note("nothing-under-an-overlay", label + " was used under the overlay");
    if (!modal_.expired())
      note("nothing-under-a-modal", label + " was used under an alert, camera or engine");
  }
  if (isBack) return happened(place_, Event::goBack);
  if (isOnScreen) {
    if (label == "Finish" || label == "Close") return happened(place_, Event::leave);
    const bool isPrimary = std::ranges::find(kTouches, label) != kTouches.end();
    if (isPrimary) happened(place_, Event::primary);
    return;
  }
  if (label == "Use photo" && !modal_.expired()) {
    const bool hasKeys = Kestrova::authentication_key && Kestrova::apiKey;
    return happened(place_, hasKeys ? Event::pictures : Event::missingKey);
  }
  if (label == "Leave" || label == "Close") happened(place_, Event::leave);
  if ((label == "Close" || label == "Leave") && !isLeaving_) {
    exitDue_ = exitDue_.value_or(AnimationClock::shared().now() + kRest);
  }
}

void Walk::observe() {
  // Those of the former screen first.
  observeRequests(false);
  observeVisit();
  for (std::istringstream lines(surroundings_.standardOutput.fresh()); lines;) {
    std::string line;
    std::getline(lines, line);
    if (line.starts_with("sessionID: ") &&
        line.find("auditTrail: Optional(") != std::string::npos &&
        line.find("Optional(0 pictures)") == std::string::npos && place_ == Place::selfie) {
      // The keys are asked for when the movie is made.
      happened(Place::selfie, Event::pictures);
      happened(Place::selfie, Event::missingKey);
    }
  }
  observeRequests(true);
  hadOverlay_ = overlay() != nullptr;
  if (const auto shown = flow(); shown && shown->viewIfLoaded()) {
    if (const auto window = shown->view()->window()) watchControls(window);
  }
}

void Walk::observeVisit() {
  const auto shown = flow();
  isLeaving_ = shown && shown->isBeingDismissed();
  const auto top = isLeaving_ ? nullptr : screen();
  const Place place = placeOf(top.get());
  const auto above = isLeaving_ ? nullptr : modal();
  const auto stack = top ? top->navigationController() : nullptr;
  const std::size_t depth = stack ? stack->viewControllers().size() : 0;
  const auto modalBefore = modal_.lock();
  modal_ = above && !above->isBeingDismissed() ? above : nullptr;
  if (top == screen_.lock() && place == place_) return observeModal(modalBefore);

  const bool isPop = depth < depth_ && place != Place::host && place_ != Place::host;
  const auto way = ways_[isPop ? Place::below : place];
  const std::string name = std::string(nameOf(place_)) + " to " + std::string(nameOf(place));
  if (way == 0) fail("moves-by-itself", name);
  if (place != Place::host && hadOverlay_ && isPop) fail("no-back-during-wait", name);
  if (place != Place::host && place_ != Place::host && modalBefore && modal_.lock()) {
    fail("nothing-under-a-modal", name + " under an alert, camera or engine");
  }
  if (shown && (flows_.empty() || flows_.back().lock() != shown)) flows_.push_back(shown);
  ways_.clear();
  // What was begun on the former screen goes on; what it has only prepared does not.
  std::erase_if(requests_, [this](const auto& each) {
    const bool isFace =
        each.first == "record_face_video" || each.first == "authentication_assessments";
    const bool goesOn = each.first.starts_with("check_") || each.first == "initialize" ||
                        each.first.starts_with("record_authentication");
    return isFace ? !hadOverlay_ : !goesOn;
  });
  if (place == Place::host) exitDue_.reset();
  place_ = place;
  screen_ = top;
  depth_ = depth;
  primaries_ = 0;
  ++*visit_;
  if (Kestrova::authentication_key && Kestrova::apiKey) happened(place, Event::arrival);
}

void Walk::observeModal(const std::shared_ptr<UIViewController>& before) {
  const auto above = modal_.lock();
  if (!above || above == before) return;
  const auto* const alert = dynamic_cast<const UIAlertController*>(above.get());
  const bool isCamera = dynamic_cast<const UIImagePickerController*>(above.get()) != nullptr;
  const bool isEngine = dynamic_cast<const DevelopmentScreen*>(above.get()) != nullptr;
  const bool isAccess = alert && alert->message().find("camera") != std::string::npos;
  const bool fits = isCamera               ? place_ == Place::frontSide || place_ == Place::backSide
                    : isEngine || isAccess ? place_ == Place::selfie
                                           : true;
  if (!fits || ((isEngine || isAccess) && primaries_ == 0)) {
    fail("own-modals", (alert      ? alert->message()
                        : isCamera ? "the camera"
                                   : "the engine") +
                           " over " + std::string(nameOf(place_)));
  }
  if (hadOverlay_ && !alert) fail("nothing-under-an-overlay", "a camera opened over the overlay");
}

void Walk::observeRequests(bool isFinal) {
  for (; counted_ < transport_->count(); ++counted_) {
    const auto step = transport_->at(counted_).step;
    const bool isAllowed = requests_[step] > 0;
    if (!isAllowed && !isFinal) return;
    if (isAllowed) --requests_[step];
    if (!isAllowed)
      fail("one-request-per-cause", step + " was sent on " + std::string(nameOf(place_)));
  }
}

void Walk::check() {
  for (std::istringstream lines(surroundings_.standardError.fresh()); lines;) {
    std::string line;
    std::getline(lines, line);
    // Of the platform without a display.
    if (line.find("propagateSizeHints") == std::string::npos && !line.empty()) fail("quiet", line);
  }
  checkFocus();
  const auto shown = flow();
  if (!shown || isLeaving_) return;
  const auto above = modal();
  const auto* const question = dynamic_cast<const UIAlertController*>(above.get());
  // The question whether to leave is the one exit with a step between.
  if (question && question->actions().size() > 1) exitDue_.reset();
  if (exitDue_ && AnimationClock::shared().now() > *exitDue_) {
    exitDue_.reset();
    fail("exit-works", "Close did not end the flow");
  }
  if (isMoving() || above) return;
  const auto over = overlay();
  if (!over) return;
  bool isExplained = awaited().has_value();
  for (std::size_t id = 0; id < transport_->count(); ++id) {
    const auto request = transport_->at(id);
    const bool isDone = request.isAnswered && !request.isLost && isObject(request.response);
    isExplained |= request.visit == *visit_ && !isDone;
  }
  if (!isExplained)
    fail("overlay-has-a-request",
         "the overlay shows on " + std::string(nameOf(place_)) + " for no request");
  const auto bar = screen()->navigationController()->navigationBar();
  if (isSeen(*bar->backButton()))
    fail("no-back-during-wait", "Back shows on " + std::string(nameOf(place_)));
}

// While the question whether to leave is up or on its way out.
bool Walk::isAsking() const {
  const auto above = modal();
  const auto* const question = dynamic_cast<const UIAlertController*>(above.get());
  return question && question->actions().size() > 1;
}

void Walk::checkFocus() {
  QWidget* const focused = QApplication::focusWidget();
  const auto shown = flow();
  const auto window = shown && shown->viewIfLoaded() ? shown->view()->window() : nullptr;
  if (!focused || !window || !window->widget() || isLeaving_) return exitHadFocus_ = false, void();
  if (focused == window->widget()) return exitHadFocus_ = false, void();
  if (!window->widget()->isAncestorOf(focused)) {
    if (focused != host_.get()) fail("focus", "a widget of the host has the focus under the flow");
    return;
  }
  const auto view = UIView::of(UIView::of(focused) ? focused : focused->parentWidget());
  if (!view) return;
  const auto name = view->accessibilityLabel();
  if (!focused->isVisible()) fail("focus", "hidden " + name + " has the focus");
  const auto* const control = dynamic_cast<const UIControl*>(view.get());
  if (control && !control->isEnabled())
    fail("enabled-focus", "disabled " + name + " has the focus");
  const auto above = modal();
  const bool isIn = !above || (above->viewIfLoaded() && view->isDescendant(*above->view()));
  if (!isIn && !isMoving()) fail("focus", name + " has the focus under an alert, camera or engine");
  const auto top = screen();
  const auto over = overlay();
  const bool isOnScreen = top && top->viewIfLoaded() && view->isDescendant(*top->view());
  if (over && isOnScreen && !view->isDescendant(*over))
    fail("focus", name + " has the focus under the overlay");
  const bool isExit = !above && !isOnScreen;
  // Once the user has put it there, it may come back from an alert or camera.
  if (isExit && mayFocusExit_) exitFocusedIn_ = *visit_;
  if (isExit && !exitHadFocus_ && exitFocusedIn_ != *visit_) {
    fail("focus-by-itself", name + " got the focus by itself");
  }
  exitHadFocus_ = isExit;
}

std::optional<Finding> Walk::finish(const std::map<std::string, std::size_t>& before) {
  try {
    act("open", "");
    settle(true);
    for (int round = 0; flow() && round < 8; ++round) {
      mayFocusExit_ = true;
      advance(kRest);
      for (const auto* name : {"Leave", "Cancel", "Retake", "OK", "Close"}) {
        const auto found = flow() ? target(name) : nullptr;
        if (!found) continue;
        click(*found, false);
        break;
      }
      advance(kRest);
      settle(true);
      check();
    }
    if (flow()) fail("exit-works", "the flow cannot be left from " + std::string(nameOf(place_)));
    for (int round = 0; round < 6 && !pending().empty(); ++round) {
      for (const auto id : pending()) answer(transport_->at(id).step, false);
      settle(true);
    }
    check();
    const auto all = surroundings_.server->requests();
    for (auto each = all.begin() + std::ptrdiff_t(firstRequest_); each != all.end(); ++each) {
      for (const auto& deviation : each->deviations) {
        // With the key of another verification of the same walk, or after a lost request.
        if (deviation.find(" came before ") == std::string::npos) fail("contract", deviation);
      }
    }
    host_->hide();
    handleEvents();
    waitForQueue(CameraSession::queue());
    for (const auto& each : flows_) {
      if (!each.expired()) fail("memory", "a flow that has ended is still there");
    }
    BackendTransport::replace(nullptr);
    transport_.reset();
    std::string grown;
    const bool isBack = waitFor([&] {
      grown.clear();
      for (const auto& [name, count] : held(surroundings_)) {
        // Idle threads of the queues come and go, and what they hold.
        constexpr std::size_t kQueues = 4;
        const std::size_t most = before.contains(name)
                                     ? before.at(name) + (name == "temporary files" ? 0 : kQueues)
                                     : count;
        if (count > most)
          grown += std::to_string(most) + " " + name + " became " + std::to_string(count) + " ";
      }
      return grown.empty();
    });
    if (!isBack) fail("resources", grown);
  } catch (const Fault& fault) {
    return fault;
  }
  return found_;
}

}  // namespace kestrova::walk
