#pragma once

#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <QtGui/QAccessible>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QWidget>

#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIViewController.h"
#include "sandbox/Sandbox.h"
#include "tests/platform/capture/ScriptedCamera.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/walk/FlowModel.h"
#include "tests/walk/HeldTransport.h"

namespace kestrova::walk {

// Reads from a file descriptor that was redirected into memory.
class Output {
 public:
  explicit Output(int descriptor);
  // What was written since the last call.
  std::string fresh();
  // The descriptor's former target.
  int original() const { return original_; }

 private:
  int file_;
  int original_;
  long read_ = 0;
};

struct Finding {
  // The invariant that was broken, one word.
  std::string invariant;
  std::string text;
};

// The sandbox, the cameras and the standard streams that all walks of a process share.
class Surroundings {
 public:
  Surroundings();
  ~Surroundings();
  Surroundings(const Surroundings&) = delete;
  Surroundings& operator=(const Surroundings&) = delete;

  HTTPTransportConfiguration configuration() const;

  const test::TemporaryDirectory directory;
  std::unique_ptr<sandbox::Sandbox> server;
  Output standardOutput;
  Output standardError;
};

// One random end user, at one host window. A step is one line of text: a verb and what it acts on.
// A verb that ends in "!" leaves cameras, encoders and queues no time before the next step. Steps
// that find nothing to act on do nothing. Main thread.
class Walk {
 public:
  Walk(Surroundings& surroundings, bool usesRealClock);
  ~Walk();
  Walk(const Walk&) = delete;
  Walk& operator=(const Walk&) = delete;

  std::string choose(std::mt19937_64& random);
  // The invariant that the step broke.
  std::optional<Finding> perform(const std::string& step);
  // Leaves the flow as a user would, lets everything be answered, and compares what the process
  // holds with `before`.
  std::optional<Finding> finish(const std::map<std::string, std::size_t>& before);
  // Descriptors, threads and temporary files of this process.
  static std::map<std::string, std::size_t> held(const Surroundings& surroundings);

 private:
  struct Fault : Finding {};
  struct Target {
    std::string name;
    std::shared_ptr<UIView> view;
  };

  // Steps.
  void makeHost();
  void act(const std::string& verb, const std::string& object);
  void click(const UIView& view, bool isDouble);
  void clickAt(QPoint inHost, bool isDouble);
  void key(const std::string& name);
  void startFromHost();
  void answer(const std::string& step, bool fails);
  bool pressThroughAccessibility(const std::string& name, bool isStale);
  void advance(double seconds);
  void reach(const std::string& place);
  void settle(bool waitsForQueues);
  // The step that brings the verification on.
  std::string sensibleStep() const;

  // What the interface shows.
  std::shared_ptr<UIViewController> flow() const;
  std::shared_ptr<UIViewController> screen() const;
  // The innermost alert, camera or engine over the flow.
  std::shared_ptr<UIViewController> modal() const;
  std::shared_ptr<UIView> overlay() const;
  bool isMoving() const;
  bool isAsking() const;
  std::vector<Target> targets() const;
  std::shared_ptr<UIView> target(const std::string& name) const;
  std::vector<std::size_t> pending() const;

  // The model.
  void watchControls(const std::shared_ptr<UIView>& below);
  void activated(UIControl& control);
  void happened(Place at, Event event);
  void observe();
  void observeVisit();
  void observeModal(const std::shared_ptr<UIViewController>& before);
  void observeRequests(bool isFinal);
  void check();
  void checkFocus();
  std::optional<std::string> awaited() const;
  // Ends the step, unless the environment's WALK_WITHOUT names the invariant.
  static void fail(const std::string& invariant, const std::string& text);
  // The same at the end of the step, from calls that must not throw.
  void note(const std::string& invariant, const std::string& text);

  Surroundings& surroundings_;
  const bool usesRealClock_;
  const std::size_t firstRequest_;
  std::unique_ptr<QWidget> host_;
  std::shared_ptr<UIViewController> wrapper_;
  std::shared_ptr<test::ScriptedDevice> device_ = std::make_shared<test::ScriptedDevice>();
  std::shared_ptr<std::atomic<unsigned>> visit_ = std::make_shared<std::atomic<unsigned>>(0);
  std::shared_ptr<HeldTransport> transport_;
  std::vector<std::weak_ptr<UIViewController>> flows_;
  // With the name before the event that is being handled.
  std::map<const UIControl*, std::pair<std::weak_ptr<UIControl>, std::string>> watched_;
  std::map<std::string, QAccessible::Id> known_;

  // Before the event that is being handled.
  Place place_ = Place::host;
  bool isLeaving_ = false;
  bool hadOverlay_ = false;
  std::weak_ptr<UIViewController> screen_;
  std::weak_ptr<UIViewController> modal_;
  std::size_t depth_ = 0;
  // What the events so far allow.
  std::map<Place, int> ways_;
  std::map<std::string, int> requests_;
  std::size_t counted_ = 0;
  int primaries_ = 0;
  std::optional<double> exitDue_;
  bool mayFocusExit_ = false;
  bool exitHadFocus_ = false;
  unsigned exitFocusedIn_ = 0;
  std::optional<Finding> found_;
};

}  // namespace kestrova::walk
