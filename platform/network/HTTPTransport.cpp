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
  // Moved on, not copied: what the handler holds must be let go of on the main thread.
  send(std::move(request),
       [handler = std::move(handler)](const Result<HTTPResponse>& response) mutable {
         DispatchQueue::main().async(
             [handler = std::move(handler), answer = decode(response)]() mutable {
               handler(std::move(answer));
             });
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
    MultipartFormData form;
    build(form);
    auto encoded = form.encode(self->temporaryDirectory_);
    if (!encoded) {
      DispatchQueue::main().async([encodingFailed = std::move(encodingFailed),
                                   handler = std::move(handler),
                                   error = encoded.error()] { encodingFailed(error); });
      return;
    }
    HTTPRequest request;
    request.url = std::move(url);
    request.headers = std::move(headers);
    std::erase_if(request.headers,
                  [](const auto& header) { return lowercased(header.first) == "content-type"; });
    request.headers.emplace_back("Content-Type", form.contentType());
    request.bodyFile = std::move(encoded).value();
    self->sendForJSON(std::move(request), std::move(handler));
  });
}

}  // namespace kestrova::platform
