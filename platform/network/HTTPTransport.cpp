#include "platform/network/HTTPTransport.h"

#include "platform/foundation/JSONSerialization.h"
#include "platform/foundation/Text.h"
#include "platform/network/CurlTransport.h"
#include "platform/network/MultipartFormData.h"

namespace kestrova::platform {

namespace {

Result<JSONValue> decode(const Result<HTTPResponse>& response) {
  if (!response) return response.error();
  const auto& [status, body] = response.value();
  const bool isEmptyByDefinition = status == 204 || status == 205;
  return JSONSerialization::jsonObject(isEmptyByDefinition ? std::string_view() : body,
                                       {.fragmentsAllowed = true});
}

}  // namespace

std::shared_ptr<HTTPTransport> HTTPTransport::make(HTTPTransportConfiguration configuration) {
  return std::make_shared<CurlTransport>(std::move(configuration));
}

void HTTPTransport::sendForJSON(HTTPRequest request, AnswerHandler handler) {
  send(std::move(request), [handler = std::move(handler)](const Result<HTTPResponse>& response) {
    DispatchQueue::main().async(
        [handler, answer = decode(response)]() mutable { handler(std::move(answer)); });
  });
}

void HTTPTransport::upload(std::string url, HTTPHeaders headers,
                           std::function<void(MultipartFormData&)> build,
                           std::function<void(const NSError&)> encodingFailed,
                           AnswerHandler handler) {
  encodingQueue_.async([self = shared_from_this(), url = std::move(url),
                        headers = std::move(headers), build = std::move(build),
                        encodingFailed = std::move(encodingFailed),
                        handler = std::move(handler)]() mutable {
    HTTPRequest request;
    request.url = std::move(url);
    request.headers = std::move(headers);
    {
      MultipartFormData form;
      build(form);
      auto encoded = form.encode(self->temporaryDirectory_);
      if (!encoded) {
        DispatchQueue::main().async(
            [encodingFailed, error = encoded.error()] { encodingFailed(error); });
        return;
      }
      request.bodyFile = std::move(encoded).value();
      std::erase_if(request.headers,
                    [](const auto& header) { return lowercased(header.first) == "content-type"; });
      request.headers.emplace_back("Content-Type", form.contentType());
    }
    self->sendForJSON(std::move(request), std::move(handler));
  });
}

}  // namespace kestrova::platform
