#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "sandbox/Connection.h"
#include "sandbox/Http.h"

namespace kestrova::sandbox {

// Reads one request after another from a connection.
class HttpReader {
 public:
  enum class End {
    request,  // a whole request came
    closed,   // the connection ended; `inside`: in the middle of a request
    cut,      // the caller ended it
    refused,  // answer `status` and close
  };

  struct Result {
    End end = End::closed;
    HttpRequest request;  // what came of it
    bool inside = false;
    bool keepAlive = false;
    int status = 0;
    std::string why;
  };

  HttpReader(Connection& connection, std::size_t headBytes, std::size_t bodyBytes);

  // `cutsShort` is asked as HttpHandler::cutsShort() says.
  Result next(const std::function<bool(const HttpRequest&, bool complete)>& cutsShort);

 private:
  Connection& connection_;
  std::size_t headBytes_;
  std::size_t bodyBytes_;
  std::string buffer_;
};

}  // namespace kestrova::sandbox
