#include "examples/enduser/CountingTransport.h"

#include <utility>

namespace kestrova {

CountingTransport::CountingTransport(HTTPTransportConfiguration configuration)
    : HTTPTransport(configuration.temporaryDirectory),
      inner_(HTTPTransport::make(std::move(configuration))) {}

void CountingTransport::send(HTTPRequest request, Completion completion) {
  inner_->send(std::move(request),
               [ended = ended_, completion = std::move(completion)](Result<HTTPResponse> response) {
                 completion(std::move(response));
                 ++*ended;
               });
}

}  // namespace kestrova
