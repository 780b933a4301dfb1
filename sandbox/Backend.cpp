#include "sandbox/Backend.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "sandbox/Answers.h"
#include "sandbox/Text.h"

namespace kestrova::sandbox {

namespace {

constexpr std::size_t recordedBody = std::size_t{64} << 10U;
constexpr std::size_t mostDeviations = 40;

bool isInterfacePath(std::string_view path) {
  return path == authenticationsPath || path == stepsPath || path == uploadsPath ||
         path == assessmentsPath;
}

Request recordOf(const HttpRequest& http) {
  Request request;
  request.received = timestamp(std::chrono::system_clock::now());
  request.method = http.method;
  request.target = http.target;
  request.head = http.head;
  request.headers = http.headers;
  request.body = http.body.substr(0, recordedBody);
  return request;
}

// The step of a request whose body may still be on its way; empty when it cannot be told yet.
std::string stepSoFar(const HttpRequest& soFar, bool complete) {
  if (soFar.method != "POST") return {};
  if (soFar.path() == assessmentsPath) return "authentication_assessments";
  if (soFar.path() == authenticationsPath) return "initialize";
  std::string_view body = soFar.body;
  if (soFar.path() == stepsPath && complete) {
    const auto form = readLooseForm(body);
    const auto* const step = form.find("step");
    return step != nullptr ? *step : std::string();
  }
  if (soFar.path() == uploadsPath) {
    constexpr std::string_view field = "; name=\"step\"\r\n\r\n";
    // The field stands before the file where the order is right; no need to search a whole video.
    if (!complete) body = body.substr(0, recordedBody);
    const auto at = body.find(field);
    if (at == body.npos) return {};
    body.remove_prefix(at + field.size());
    const auto end = body.find("\r\n");
    return end == body.npos ? std::string() : std::string(body.substr(0, end));
  }
  return {};
}

}  // namespace

Backend::Backend(Store& store, ScenarioSet& scenarios, Log log)
    : store_(store), scenarios_(scenarios), log_(std::move(log)) {}

HttpAnswer Backend::answer(const HttpRequest& http) {
  if (http.method == "GET" && (http.path() == "/terms/" || http.path() == "/privacy/")) {
    note("GET " + printable(http.target) + " 200");
    return http.path() == "/terms/" ? termsPage() : privacyPage();
  }
  // A look whether anybody answers, and at the clock, is no request of an application's.
  if (http.method == "HEAD" && http.target == "/") {
    note("HEAD / 200");
    return {200,
            "text/plain",
            "",
            Delivery::whole,
            {{"Date", httpDate(std::chrono::system_clock::now())}}};
  }
  auto judged = judge(http);
  if (judged.request.upload) {
    if (auto failure = store_.saveFile(judged.file, *judged.request.upload)) {
      note(failure->text);
      return errorAnswer(500, failure->text);
    }
  }
  if (judged.rule != nullptr) return answerStep(std::move(judged));
  judged.request.parameters = std::move(judged.fields.pairs);
  judged.request.deviations = std::move(judged.fields.deviations);
  return finish(std::move(judged.request), std::nullopt, std::move(judged.refusal));
}

Backend::Judged Backend::judge(const HttpRequest& http) {
  Judged judged;
  judged.request = recordOf(http);
  auto& deviations = judged.fields.deviations;
  if (http.method != "POST" || !isInterfacePath(http.path())) {
    deviations.push_back("nothing answers to " + printable(http.method) + " " +
                         printable(http.target));
    judged.refusal = errorAnswer(404, "no such resource");
  } else {
    readFields(http, judged);
    if (http.path() != http.target) {
      deviations.push_back("expected no query, came " + printable(http.target));
    }
    if (judged.refusal.body.empty()) findRule(http, judged);
  }
  return judged;
}

void Backend::readFields(const HttpRequest& http, Judged& judged) {
  const auto contentType = http.header("Content-Type");
  if (http.path() != uploadsPath) {
    judged.fields = readForm(contentType, http.body);
    return;
  }
  auto& form = judged.form;
  form = readMultipart(contentType, http.body);
  judged.fields.deviations = std::move(form.deviations);
  if (!form.understood) {
    judged.refusal =
        errorAnswer(400, "the form cannot be read: " + judged.fields.deviations.back());
    return;
  }
  for (const auto& part : form.parts) {
    if (!part.fileName) {
      judged.fields.pairs.emplace_back(part.name, part.data);
      if (!isUtf8(part.data)) {
        judged.fields.deviations.push_back("field " + printable(part.name) +
                                           ": expected well-formed UTF-8, came " +
                                           printable(part.data));
      }
    } else if (!judged.request.upload) {
      judged.request.upload =
          Upload{part.name, *part.fileName, part.contentType.value_or(""), {}, 0, {}};
      judged.file = part.data;
      const auto before = static_cast<std::size_t>(part.data.data() - http.body.data());
      judged.request.body =
          (http.body.substr(0, before) + http.body.substr(before + part.data.size()))
              .substr(0, recordedBody);
    }
  }
}

void Backend::findRule(const HttpRequest& http, Judged& judged) {
  auto& [request, rule, fields, form, file, refusal] = judged;
  if (http.path() == assessmentsPath) {
    request.step = "authentication_assessments";
  } else if (const auto* const step = fields.find("step")) {
    request.step = *step;
  }
  rule = findStep(request.step);
  // The assessments have no step by which to be asked for elsewhere.
  if (rule != nullptr && rule->path == assessmentsPath && http.path() != assessmentsPath) {
    rule = nullptr;
  }
  if (rule == nullptr) {
    const auto why = request.step.empty() ? std::string("field \"step\" is missing")
                                          : "no step is called " + printable(request.step);
    fields.deviations.push_back(why);
    refusal = errorAnswer(400, why);
    return;
  }
  if (rule->path != http.path()) {
    fields.deviations.push_back(std::string(rule->step) + " belongs to " + std::string(rule->path) +
                                ", came to " + std::string(http.path()));
  }
  checkFields(*rule, fields);
  if (rule->file && http.path() == uploadsPath) checkFile(*rule, form, fields.deviations);
}

HttpAnswer Backend::answerStep(Judged&& judged) {
  auto& [request, rule, fields, form, file, refusal] = judged;
  const std::lock_guard lock(orderMutex_);
  std::string documentType;
  StepResult result;
  std::optional<Authentication> opened;
  if (const auto field = authenticationField(*rule); field.empty()) {
    result.key = randomHex(16);
  } else if (const auto* const key = fields.find(field)) {
    if (const auto history = store_.history(*key)) {
      request.authentication = *key;
      documentType = history->documentType;
      checkOrder(*rule, fields, *history, fields.deviations);
    } else {
      fields.deviations.push_back("no authentication has the key " + printable(*key));
    }
  }
  // The choice itself tells the type too, and the answer must not lag behind it.
  if (const auto* const choice = fields.find("authentication_method")) documentType = *choice;
  result.nextStep = nextStep(rule->step, documentType);

  const auto scenario = scenarios_.take(rule->step);
  if (scenario) request.fault = faultName(*scenario);
  auto answer = scenario ? faultyAnswer(*scenario, result) : ordinaryAnswer(result);
  if (!result.key.empty() && (!scenario || deliversKey(scenario->fault))) {
    const auto* const apiKey = fields.find("api_key");
    request.authentication = result.key;
    opened = Authentication{result.key, apiKey != nullptr ? *apiKey : "", request.received};
  }
  request.parameters = std::move(fields.pairs);
  request.deviations = std::move(fields.deviations);
  return finish(std::move(request), opened, std::move(answer));
}

HttpAnswer Backend::finish(Request&& request, const std::optional<Authentication>& opened,
                           HttpAnswer answer) {
  const bool answered =
      answer.delivery == Delivery::whole || answer.delivery == Delivery::byteByByte;
  request.status = answered ? answer.status : 0;
  if (request.deviations.size() > mostDeviations) {
    const auto more = request.deviations.size() - mostDeviations;
    request.deviations.resize(mostDeviations);
    request.deviations.push_back(std::to_string(more) + " further deviations");
  }
  if (auto failure = store_.record(request, opened)) {
    note(failure->text);
    return errorAnswer(500, failure->text);
  }
  log(request);
  return answer;
}

bool Backend::cutsShort(const HttpRequest& soFar, bool complete) {
  if (!scenarios_.mayCut()) return false;
  const auto step = stepSoFar(soFar, complete);
  if (step.empty()) return false;
  const auto scenario = scenarios_.takeCut(step);
  if (!scenario) return false;
  auto request = recordOf(soFar);
  request.step = step;
  request.fault = faultName(*scenario);
  finish(std::move(request), std::nullopt, {0, "", "", Delivery::cut});
  return true;
}

void Backend::refused(const HttpRequest& soFar, int status, std::string_view why) {
  auto request = recordOf(soFar);
  request.deviations.push_back("HTTP: " + printable(why));
  finish(std::move(request), std::nullopt, errorAnswer(status, why));
}

std::optional<Failure> Backend::remove(const std::optional<std::string>& key) {
  const std::lock_guard lock(orderMutex_);
  return key ? store_.remove(*key) : store_.removeAll();
}

void Backend::note(std::string_view line) {
  if (!log_) return;
  const std::lock_guard lock(logMutex_);
  log_(timestamp(std::chrono::system_clock::now()) + ' ' + std::string(line));
}

void Backend::log(const Request& request) {
  // The usual characters of a method, a target and a step need no quotes.
  const auto word = [](std::string_view text) {
    auto shown = printable(text);
    const bool plain =
        !text.empty() && shown.size() == text.size() + 2 && text.find(' ') == text.npos;
    return plain ? std::string(text) : shown;
  };
  std::string line = word(request.method) + ' ' + word(request.target);
  if (!request.step.empty()) line += ' ' + word(request.step);
  line += ' ' + (request.status != 0 ? std::to_string(request.status) : std::string("unanswered"));
  if (!request.fault.empty()) line += " fault=" + request.fault;
  for (const auto& deviation : request.deviations) line += " deviation: " + deviation + ';';
  if (!request.deviations.empty()) line.pop_back();
  note(line);
}

}  // namespace kestrova::sandbox
