#pragma once

#include "sandbox/Http.h"
#include "sandbox/ScenarioSet.h"
#include "sandbox/Store.h"
#include "sandbox/console/Page.h"
#include "sandbox/console/ScenarioPage.h"

namespace kestrova::sandbox {

// The pages that show a sandbox in a browser. Reads only; any thread may call.
//   /                        authentications; ?email=, ?step=, ?before= a position
//   /authentications/KEY     one of them; ?after= a request's id
//   /strays                  requests of no authentication; ?before= a request's id
//   /uploads/ID, /files/ID   an uploaded file: its page, its bytes
//   /scenarios               the faults that play
//   /console/...             what the pages are made of
//   /console/revision        changes whenever a page does
class Console {
 public:
  // Owns neither.
  Console(const Store& store, const ScenarioSet& scenarios);

  // The answer to a GET; 404 where nothing is at the address.
  HttpAnswer get(const HttpRequest& request) const;
  // The scenarios with a form that was refused.
  HttpAnswer refused(const ScenarioForm& form) const;

 private:
  std::string revision() const;
  Frame frame() const;

  const Store& store_;
  const ScenarioSet& scenarios_;
};

}  // namespace kestrova::sandbox
