#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "sandbox/Connection.h"
#include "sandbox/Descriptor.h"
#include "sandbox/Http.h"
#include "sandbox/Outcome.h"
#include "sandbox/Sandbox.h"

namespace kestrova::sandbox {

// Listens on 127.0.0.1 and serves each connection in a thread of its own. The handler is called
// from those threads and must outlive the listener.
class Listener {
 public:
  struct Settings {
    std::uint16_t port = 0;  // 0: a free one
    Limits limits;
    std::chrono::milliseconds dripInterval{};
    // The certificate that a new connection meets; empty: plain HTTP.
    std::function<const TlsContext&()> tls;
  };

  // Takes the port. Nobody is served before run().
  static Outcome<std::unique_ptr<Listener>> open(Settings settings);

  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  Listener(Listener&&) = delete;
  Listener& operator=(Listener&&) = delete;
  ~Listener();  // stops

  void run(HttpHandler& handler);
  // Ends every connection and returns when all threads have ended. Not from a handler.
  void stop();

  std::uint16_t port() const { return port_; }
  std::size_t connectionsAccepted() const { return accepted_; }
  std::size_t connectionsOpen();

  // While true, connections are refused, though the port stays taken; open ones are ended. In force
  // on return. Not from a handler of this listener.
  void setRefusing(bool refusing);

 private:
  struct Client {
    Descriptor socket;
    bool done = false;
    std::thread thread;
  };

  Listener(Settings settings, Descriptor socket, std::uint16_t port);

  void acceptLoop();
  void accept();
  // Joins the clients that are done, or waits for all.
  void reap(bool all);
  void cutClients();
  void applyRefusing();

  void serve(Client& client);
  void serveRequests(Connection& connection);
  // False where the connection is over.
  bool send(Connection& connection, const HttpAnswer& answer, bool keepAlive);

  Settings settings_;
  std::uint16_t port_;
  HttpHandler* handler_ = nullptr;
  Descriptor wake_;
  std::thread acceptor_;
  std::atomic<std::size_t> accepted_{0};

  std::mutex mutex_;  // of what follows
  std::condition_variable applied_;
  Descriptor socket_;  // the acceptor's; bound, and listening unless refusing
  std::list<Client> clients_;
  bool refusing_ = false;
  bool refusingApplied_ = false;
  bool stopping_ = false;
};

}  // namespace kestrova::sandbox
