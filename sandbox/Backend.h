#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "sandbox/Http.h"
#include "sandbox/MultipartContract.h"
#include "sandbox/Sandbox.h"
#include "sandbox/ScenarioSet.h"
#include "sandbox/StepContract.h"
#include "sandbox/Store.h"

namespace kestrova::sandbox {

// The verification backend: checks each request against the contract, records it, and answers.
class Backend final : public HttpHandler {
 public:
  using Log = std::function<void(std::string_view line)>;

  // Neither the store nor the scenarios are owned. `log` takes one line a call, one call at a time.
  Backend(Store& store, ScenarioSet& scenarios, Log log);

  HttpAnswer answer(const HttpRequest& request) override;
  bool cutsShort(const HttpRequest& soFar, bool complete) override;
  void refused(const HttpRequest& soFar, int status, std::string_view why) override;
  void note(std::string_view line) override;

  // Removes from the store: an authentication; where the key is empty the requests of none; without
  // a key everything. No request is recorded halfway between.
  std::optional<Failure> remove(const std::optional<std::string>& key);

 private:
  // A request as it will be recorded, with what judging it brought to light.
  struct Judged {
    Request request;
    const StepRule* rule = nullptr;  // nullptr: no step could be made out
    Fields fields;
    Multipart form;         // of an upload
    std::string_view file;  // the bytes of request.upload
    HttpAnswer refusal;     // where there is no rule
  };

  static Judged judge(const HttpRequest& http);
  static void readFields(const HttpRequest& http, Judged& judged);
  static void findRule(const HttpRequest& http, Judged& judged);

  HttpAnswer answerStep(Judged&& judged);
  // Records and logs; the answer, or an error where the store refuses.
  HttpAnswer finish(Request&& request, const std::optional<Authentication>& opened,
                    HttpAnswer answer);
  void log(const Request& request);

  Store& store_;
  ScenarioSet& scenarios_;
  Log log_;
  std::mutex logMutex_;
  std::mutex orderMutex_;  // what is judged next to each other is recorded in that order
};

}  // namespace kestrova::sandbox
