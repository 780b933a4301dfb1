#include "tests/sandbox/TestClient.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <utility>

#include <arpa/inet.h>
#include <fcntl.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509_vfy.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kestrova::sandbox {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds patience{20000};

struct FreeContext {
  void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
};

}  // namespace

void TestClient::Free::operator()(ssl_st* tls) const {
  SSL_free(tls);
}

TestClient::TestClient(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
  std::signal(SIGPIPE, SIG_IGN);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    close(std::exchange(socket_, -1));
  } else {
    fcntl(socket_, F_SETFL, O_NONBLOCK);
  }
}

TestClient::Ready TestClient::await(int result, milliseconds deadline) const {
  short events = 0;
  if (tls_) {
    const int error = SSL_get_error(tls_.get(), result);
    ERR_clear_error();
    if (error == SSL_ERROR_WANT_READ) events = POLLIN;
    if (error == SSL_ERROR_WANT_WRITE) events = POLLOUT;
  } else if (result < 0 && errno == EAGAIN) {
    events = POLLIN;
  }
  if (events == 0) return Ready::never;
  pollfd watched{socket_, events, 0};
  const int count = poll(&watched, 1, static_cast<int>(std::max(deadline.count(), 0L)));
  return count > 0 ? Ready::now : Ready::late;
}

TestClient::TestClient(TestClient&& other) noexcept
    : socket_(std::exchange(other.socket_, -1)),
      tls_(std::move(other.tls_)),
      failure_(std::move(other.failure_)),
      buffer_(std::move(other.buffer_)),
      ended_(other.ended_) {}

TestClient::~TestClient() {
  if (socket_ >= 0) close(socket_);
}

TestClient TestClient::plain(std::uint16_t port) {
  return TestClient(port);
}

TestClient TestClient::tls(std::uint16_t port, const std::filesystem::path& authority) {
  TestClient client(port);
  if (client.socket_ < 0) return client;
  const std::unique_ptr<SSL_CTX, FreeContext> context(SSL_CTX_new(TLS_client_method()));
  SSL_CTX_load_verify_file(context.get(), authority.c_str());
  SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, nullptr);
  X509_VERIFY_PARAM_set_flags(SSL_CTX_get0_param(context.get()), X509_V_FLAG_X509_STRICT);
  client.tls_.reset(SSL_new(context.get()));
  SSL_set_fd(client.tls_.get(), client.socket_);
  SSL_set1_host(client.tls_.get(), "localhost");
  SSL_set_mode(client.tls_.get(), SSL_MODE_ENABLE_PARTIAL_WRITE);
  int result = 0;
  do {
    result = SSL_connect(client.tls_.get());
  } while (result != 1 && client.await(result, patience) == Ready::now);
  if (result != 1) {
    const long verified = SSL_get_verify_result(client.tls_.get());
    client.failure_ =
        verified == X509_V_OK ? "no handshake" : X509_verify_cert_error_string(verified);
  }
  ERR_clear_error();
  return client;
}

bool TestClient::send(std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = tls_ ? SSL_write(tls_.get(), bytes.data(), static_cast<int>(bytes.size()))
                            : static_cast<int>(::send(socket_, bytes.data(), bytes.size(), 0));
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (await(count, patience) != Ready::now) {
      return false;
    }
  }
  return true;
}

bool TestClient::fill(milliseconds deadline) {
  const auto end = steady_clock::now() + deadline;
  std::array<char, 65536> chunk{};
  while (!ended_) {
    const auto count = tls_ ? SSL_read(tls_.get(), chunk.data(), static_cast<int>(chunk.size()))
                            : static_cast<int>(recv(socket_, chunk.data(), chunk.size(), 0));
    if (count > 0) {
      buffer_.append(chunk.data(), static_cast<std::size_t>(count));
      return true;
    }
    reset_ = count < 0 && errno == ECONNRESET;
    // Readable without a byte for us: TLS talks to itself.
    const auto left = std::chrono::ceil<milliseconds>(end - steady_clock::now());
    const auto ready = await(count, left);
    ended_ = ready == Ready::never;
    if (ready != Ready::now) return false;
  }
  return false;
}

std::optional<TestAnswer> TestClient::receive() {
  std::size_t headEnd = 0;
  while ((headEnd = buffer_.find("\r\n\r\n")) == std::string::npos) {
    if (!fill(patience)) return std::nullopt;
  }
  TestAnswer answer;
  answer.head = buffer_.substr(0, headEnd + 4);
  buffer_.erase(0, headEnd + 4);
  std::from_chars(answer.head.data() + 9, answer.head.data() + 12, answer.status);
  constexpr std::string_view field = "\r\nContent-Length: ";
  std::size_t length = 0;
  if (const auto at = answer.head.find(field); at != std::string::npos) {
    std::from_chars(answer.head.data() + at + field.size(), answer.head.data() + answer.head.size(),
                    length);
  }
  while (buffer_.size() < length) {
    if (!fill(patience)) return std::nullopt;
  }
  answer.body = buffer_.substr(0, length);
  buffer_.erase(0, length);
  return answer;
}

std::string TestClient::receiveUntil(milliseconds deadline) {
  const auto end = steady_clock::now() + deadline;
  while (true) {
    const auto left = std::chrono::ceil<milliseconds>(end - steady_clock::now());
    if (left.count() <= 0 || !fill(left)) return std::exchange(buffer_, {});
  }
}

bool TestClient::endsWithin(milliseconds deadline) {
  receiveUntil(deadline);
  return ended_;
}

}  // namespace kestrova::sandbox
