#pragma once

#include <set>

using CURL = void;

namespace kestrova::platform {

// The sockets of a transport's connections. Used on the I/O thread; outlives every handle it has
// prepared and the connections that they made.
class CurlSockets {
 public:
  // Lets this object open and close the handle's sockets.
  void serve(CURL* handle);
  // Shuts down the connection with this local port if the server has sent something on it; false
  // if it has not. Between two requests that can only mean that the server has closed it.
  bool shutDownIfReadable(int localPort) const;

 private:
  std::set<int> open_;
};

}  // namespace kestrova::platform
