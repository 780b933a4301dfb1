#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/Scenario.h"

namespace kestrova::sandbox {

// Why a scenario cannot be played; nothing when it can.
std::optional<std::string> whyUnplayable(const Scenario& scenario);

// The faults that play. Any thread may call.
class ScenarioSet {
 public:
  void add(Scenario scenario);
  void clear();

  // The first fault that fits the step; gone with this where it plays once.
  std::optional<Scenario> take(std::string_view step);
  // As take(), for the connection's end in the middle of a request, before the step's answer.
  std::optional<Scenario> takeCut(std::string_view step);
  // Whether take() or takeCut() could return a cut.
  bool mayCut() const;

  // The latest certificate fault; nothing: the right certificate.
  std::optional<Fault> certificateFault() const;
  bool refuses() const;

  std::vector<Scenario> all() const;
  // Grows with every change.
  std::uint64_t changes() const;
  // As parseScenario() reads them.
  std::vector<std::string> names() const;

 private:
  std::optional<Scenario> takeFirst(std::string_view step, bool cut);

  mutable std::mutex mutex_;
  std::vector<Scenario> scenarios_;
  std::uint64_t changes_ = 0;
};

}  // namespace kestrova::sandbox
