#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sandbox/Outcome.h"

namespace kestrova::sandbox {

enum class Fault {
  statusObject,   // another status, with a JSON object
  statusText,     // another status, with plain text
  malformedJson,  // 200, JSON that breaks off
  topLevelArray,  // 200, a JSON array
  emptyBody,      // 200 without a body
  noContent,      // 204
  noNextStep,     // the ordinary answer without next_step
  slowBytes,      // the ordinary answer, byte by byte
  stall,          // head and half of the body, then silence
  neverAnswers,   // silence
  cut,            // connection reset in the middle of the request's body
  // Of the whole HTTPS listener. Certificate faults meet connections made after they were set; one
  // of them holds at a time, the latest. While connections are refused, open ones are cut.
  unknownAuthority,
  expiredCertificate,
  wrongHost,
  refuse,
};

// A fault to play, for one step or for all.
struct Scenario {
  Fault fault = Fault::statusObject;
  int status = 500;    // of statusObject and statusText: 200 to 599, but for 204, 205 and 304
  std::string step{};  // as on the wire, "authentication_assessments" for those; empty: all
  bool once = false;   // gone after the first request that it met
};

// Faults of the whole listener know neither step nor once.
bool concernsListener(Fault fault);

// Reads FAULT[@STEP][:once], where FAULT is one of faultNames() or status-NUMBER-object or
// status-NUMBER-text.
Outcome<Scenario> parseScenario(std::string_view text);

// The name that parseScenario() reads.
std::string faultName(const Scenario& scenario);

// The names of all faults, for help texts.
std::vector<std::string> faultNames();

}  // namespace kestrova::sandbox
