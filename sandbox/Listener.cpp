#include "sandbox/Listener.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include "sandbox/HttpReader.h"

namespace kestrova::sandbox {

namespace {

// How long a refused client may go on sending, so that it finds the answer and not a reset.
constexpr std::chrono::milliseconds lastWords{2000};

// A socket that holds the port, not listening yet.
Outcome<Descriptor> bound(std::uint16_t port) {
  Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  const int on = 1;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (!socket || setsockopt(socket.number(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
      bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    return Failure{"port " + std::to_string(port) +
                   " cannot be used: " + std::generic_category().message(errno)};
  }
  return socket;
}

bool listenOn(const Descriptor& socket) {
  return listen(socket.number(), SOMAXCONN) == 0;
}

std::uint16_t portOf(const Descriptor& socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  getsockname(socket.number(), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

// The threads leave every signal to the program. A write to a closed socket stays an error.
void blockSignals() {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

}  // namespace

Outcome<std::unique_ptr<Listener>> Listener::open(Settings settings) {
  auto socket = bound(settings.port);
  if (!socket) return Failure{socket.error()};
  // Two sockets may be bound to a port until one of them listens.
  if (!listenOn(socket.value())) {
    return Failure{"port " + std::to_string(settings.port) +
                   " cannot be used: " + std::generic_category().message(errno)};
  }
  const auto port = portOf(socket.value());
  std::unique_ptr<Listener> listener(
      new Listener(std::move(settings), std::move(socket).value(), port));
  if (!listener->wake_) return Failure{"no more files can be opened"};
  return listener;
}

Listener::Listener(Settings settings, Descriptor socket, std::uint16_t port)
    : settings_(std::move(settings)),
      port_(port),
      wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      socket_(std::move(socket)) {}

Listener::~Listener() {
  stop();
}

void Listener::run(HttpHandler& handler) {
  handler_ = &handler;
  acceptor_ = std::thread([this] {
    blockSignals();
    acceptLoop();
  });
}

void Listener::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  eventfd_write(wake_.number(), 1);
  if (acceptor_.joinable()) acceptor_.join();
}

void Listener::setRefusing(bool refusing) {
  std::unique_lock lock(mutex_);
  refusing_ = refusing;
  eventfd_write(wake_.number(), 1);
  applied_.wait(lock, [&] { return refusingApplied_ == refusing_ || stopping_; });
}

void Listener::acceptLoop() {
  while (true) {
    {
      const std::lock_guard lock(mutex_);
      if (stopping_) break;
      applyRefusing();
    }
    // A bound socket that does not listen reports a hang-up for ever, so it is left out.
    std::array<pollfd, 2> watched{pollfd{wake_.number(), POLLIN, 0},
                                  pollfd{socket_.number(), POLLIN, 0}};
    poll(watched.data(), refusingApplied_ ? 1 : 2, -1);
    eventfd_t ignored = 0;
    if (watched[0].revents != 0) eventfd_read(wake_.number(), &ignored);
    if (watched[1].revents != 0) accept();
    reap(false);
  }
  {
    const std::lock_guard lock(mutex_);
    socket_.reset();
    applied_.notify_all();
  }
  cutClients();
  reap(true);
}

void Listener::applyRefusing() {
  if (refusing_ == refusingApplied_) return;
  if (refusing_) {
    socket_.reset();
    if (auto socket = bound(port_)) socket_ = std::move(socket).value();
    for (const auto& client : clients_) shutdown(client.socket.number(), SHUT_RDWR);
  } else if (!socket_ || !listenOn(socket_)) {
    handler_->note("the port was lost, connections stay refused");
  }
  refusingApplied_ = refusing_;
  applied_.notify_all();
}

void Listener::accept() {
  Descriptor socket(accept4(socket_.number(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
  if (!socket) {
    // Out of descriptors the connection stays in the queue: no spinning meanwhile.
    if (errno == EMFILE || errno == ENFILE) poll(nullptr, 0, 50);
    return;
  }
  ++accepted_;
  const std::lock_guard lock(mutex_);
  if (clients_.size() >= settings_.limits.connections) return;
  const int on = 1;
  setsockopt(socket.number(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  auto& client = clients_.emplace_back();
  client.socket = std::move(socket);
  try {
    client.thread = std::thread([this, &client] {
      blockSignals();
      serve(client);
    });
  } catch (const std::system_error&) {  // no more threads
    clients_.pop_back();
  }
}

std::size_t Listener::connectionsOpen() {
  const std::lock_guard lock(mutex_);
  return static_cast<std::size_t>(
      std::ranges::count(clients_, false, [](const auto& client) { return client.done; }));
}

void Listener::reap(bool all) {
  std::list<Client> ended;
  {
    const std::lock_guard lock(mutex_);
    for (auto client = clients_.begin(); client != clients_.end();) {
      const auto next = std::next(client);
      if (all || client->done) ended.splice(ended.end(), clients_, client);
      client = next;
    }
  }
  for (auto& client : ended) client.thread.join();
}

void Listener::cutClients() {
  const std::lock_guard lock(mutex_);
  for (const auto& client : clients_) shutdown(client.socket.number(), SHUT_RDWR);
}

void Listener::serve(Client& client) {
  try {
    Connection connection(client.socket.number(), settings_.limits.idle);
    const auto failure = settings_.tls ? connection.handshake(settings_.tls()) : std::string();
    if (failure.empty()) {
      serveRequests(connection);
    } else {
      handler_->note("TLS handshake failed: " + failure);
    }
  } catch (const std::exception& error) {  // out of memory: this connection ends, no other
    handler_->note(std::string("connection given up: ") + error.what());
  }
  {
    const std::lock_guard lock(mutex_);
    client.socket.reset();
    client.done = true;
  }
  eventfd_write(wake_.number(), 1);
}

void Listener::serveRequests(Connection& connection) {
  HttpReader reader(connection, settings_.limits.headBytes, settings_.limits.bodyBytes);
  while (true) {
    const auto result = reader.next([this](const HttpRequest& soFar, bool complete) {
      return handler_->cutsShort(soFar, complete);
    });
    switch (result.end) {
      case HttpReader::End::request:
        // An answer has a body; who asked for none must not take it for the next answer.
        if (!send(connection, handler_->answer(result.request),
                  result.keepAlive && result.request.method != "HEAD")) {
          return;
        }
        break;
      case HttpReader::End::refused:
        handler_->refused(result.request, result.status, result.why);
        send(connection, errorAnswer(result.status, result.why), false);
        connection.drain(lastWords);
        return;
      case HttpReader::End::cut:
        connection.reset();
        return;
      case HttpReader::End::closed:
        if (result.inside) handler_->note("a connection ended in the middle of a request");
        connection.close();
        return;
    }
  }
}

bool Listener::send(Connection& connection, const HttpAnswer& answer, bool keepAlive) {
  const auto bytes = serialized(answer, keepAlive);
  const std::string_view view = bytes;
  switch (answer.delivery) {
    case Delivery::whole:
      if (!connection.write(view)) return false;
      break;
    case Delivery::byteByByte:
      for (std::size_t i = 0; i < view.size(); ++i) {
        if (!connection.write(view.substr(i, 1)) || !connection.pause(settings_.dripInterval)) {
          return false;
        }
      }
      break;
    case Delivery::stalled:
      connection.write(view.substr(0, view.size() - (answer.body.size() + 1) / 2));
      connection.waitForEnd();
      return false;
    case Delivery::never:
      connection.waitForEnd();
      return false;
    case Delivery::cut:
      connection.reset();
      return false;
    case Delivery::closed:
      connection.close();
      return false;
  }
  if (!keepAlive) connection.close();
  return keepAlive;
}

}  // namespace kestrova::sandbox
