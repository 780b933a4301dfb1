#pragma once

#include <memory>

#include "platform/network/HTTPTransport.h"
#include "sdk/Platform.h"

namespace kestrova {

// The transport that API sends through. Any thread.
struct BackendTransport {
  // Made with the settings of the build where there is none. Null once the process is ending.
  static std::shared_ptr<HTTPTransport> current();
  // The settings of the build, to be changed for another transport.
  static HTTPTransportConfiguration defaultConfiguration();
  // Sends later requests through another transport: a test's, or a demo's with a port of its own.
  // With null the next request makes one.
  static void replace(std::shared_ptr<HTTPTransport> transport);
};

}  // namespace kestrova
