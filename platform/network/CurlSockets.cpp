#include "platform/network/CurlSockets.h"

#include <algorithm>

#include <curl/curl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kestrova::platform {

namespace {

int localPortOf(int socket) {
  sockaddr_in6 address{};
  socklen_t size = sizeof address;
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) return 0;
  // The port is at the same offset in an IPv4 address.
  return ntohs(address.sin6_port);
}

}  // namespace

void CurlSockets::serve(CURL* handle) {
  const curl_opensocket_callback opened = [](void* self, curlsocktype, curl_sockaddr* address) {
    // Without this flag, programs that the host starts would inherit the socket.
    const int socket =
        ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    if (socket != CURL_SOCKET_BAD) static_cast<CurlSockets*>(self)->open_.insert(socket);
    return socket;
  };
  const curl_closesocket_callback closed = [](void* self, curl_socket_t socket) {
    static_cast<CurlSockets*>(self)->open_.erase(socket);
    return ::close(socket);
  };
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, opened);
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETDATA, this);
  curl_easy_setopt(handle, CURLOPT_CLOSESOCKETFUNCTION, closed);
  curl_easy_setopt(handle, CURLOPT_CLOSESOCKETDATA, this);
}

bool CurlSockets::shutDownIfReadable(int localPort) const {
  const auto found = std::ranges::find(open_, localPort, &localPortOf);
  if (found == open_.end()) return false;
  pollfd kept{.fd = *found, .events = POLLIN, .revents = 0};
  if (::poll(&kept, 1, 0) <= 0) return false;
  ::shutdown(*found, SHUT_RDWR);
  return true;
}

}  // namespace kestrova::platform
