#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/network/HTTPTransport.h"
#include "platform/network/TemporaryFile.h"

namespace kestrova::walk {

using namespace platform;

// Sends requests to the sandbox at once and keeps their responses until the walk hands them on, in
// any order. Requests are numbered from 0.
class HeldTransport : public HTTPTransport {
 public:
  struct Request {
    std::string step;
    // The visit to a screen during which it was sent.
    unsigned visit = 0;
    std::optional<Result<HTTPResponse>> response{};
    Completion completion{};
    // True after the response was handed on.
    bool isAnswered = false;
    // True where a failure was handed on in place of the response.
    bool isLost = false;
  };

  HeldTransport(HTTPTransportConfiguration configuration, std::function<unsigned()> visit)
      : HTTPTransport(configuration.temporaryDirectory),
        visit_(std::move(visit)),
        inner_(HTTPTransport::make(std::move(configuration))) {}

  void send(HTTPRequest request, Completion completion) override {
    std::size_t id = 0;
    {
      const std::lock_guard lock(held_->mutex);
      id = held_->requests.size();
      held_->requests.push_back({stepOf(request), visit_(), {}, std::move(completion)});
    }
    inner_->send(std::move(request), [held = held_, id](Result<HTTPResponse> response) {
      const std::lock_guard lock(held->mutex);
      held->requests[id].response = std::move(response);
    });
  }

  std::size_t count() const {
    const std::lock_guard lock(held_->mutex);
    return held_->requests.size();
  }
  // Without its completion.
  Request at(std::size_t id) const {
    const std::lock_guard lock(held_->mutex);
    const auto& from = held_->requests[id];
    return {from.step, from.visit, from.response, {}, from.isAnswered, from.isLost};
  }
  // Hands on the response, or a failure of the connection in its place. Once for each request.
  void answer(std::size_t id, bool fails) {
    Completion completion;
    std::optional<Result<HTTPResponse>> response;
    {
      const std::lock_guard lock(held_->mutex);
      held_->requests[id].isAnswered = true;
      held_->requests[id].isLost = fails;
      completion = std::move(held_->requests[id].completion);
      response = held_->requests[id].response;
    }
    if (fails) response = NSError{"walk", 1, "the connection was lost"};
    completion(std::move(*response));
  }

 private:
  struct Held {
    std::mutex mutex;
    std::deque<Request> requests;
  };

  // As it goes over the wire; of an assessment its path.
  static std::string stepOf(const HTTPRequest& request) {
    if (request.url.ends_with("authentication_assessments")) return "authentication_assessments";
    std::string body = request.body;
    std::string begin = "step=";
    if (request.bodyFile) {
      body.resize(2048);
      const auto size = request.bodyFile->read(0, body);
      body.resize(size ? size.value() : 0);
      begin = "name=\"step\"\r\n\r\n";
    }
    const auto from = body.find(begin);
    if (from == std::string::npos) return "unknown";
    const auto value = body.substr(from + begin.size());
    return value.substr(0, value.find_first_of("&\r"));
  }

  const std::function<unsigned()> visit_;
  const std::shared_ptr<Held> held_ = std::make_shared<Held>();
  const std::shared_ptr<HTTPTransport> inner_;
};

}  // namespace kestrova::walk
