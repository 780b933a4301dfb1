#include "sandbox/Sandbox.h"

#include <array>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "sandbox/Backend.h"
#include "sandbox/Certificates.h"
#include "sandbox/Control.h"
#include "sandbox/Listener.h"
#include "sandbox/Listing.h"
#include "sandbox/ScenarioSet.h"
#include "sandbox/Store.h"

namespace kestrova::sandbox {

namespace {

// One of each for the right certificate and for every certificate fault.
struct TlsContexts {
  TlsContext right;
  TlsContext unknownAuthority;
  TlsContext expired;
  TlsContext wrongHost;
};

Outcome<TlsContexts> makeContexts(const std::filesystem::path& store) {
  const auto certificates = loadCertificates(store);
  if (!certificates) return Failure{certificates.error()};
  const auto& all = certificates.value();
  auto right = TlsContext::make(all.server);
  auto unknownAuthority = TlsContext::make(all.ofUnknownAuthority);
  auto expired = TlsContext::make(all.expired);
  auto wrongHost = TlsContext::make(all.ofWrongHost);
  for (const auto* const context : {&right, &unknownAuthority, &expired, &wrongHost}) {
    if (!*context) return Failure{context->error()};
  }
  return TlsContexts{std::move(right).value(), std::move(unknownAuthority).value(),
                     std::move(expired).value(), std::move(wrongHost).value()};
}

}  // namespace

std::filesystem::path defaultStore() {
  const char* const home = std::getenv("HOME");  // NOLINT(concurrency-mt-unsafe)
  if (home == nullptr || *home == '\0') return {};
  return std::filesystem::path(home) / ".local/share/kestrova-sandbox";
}

class Sandbox::Impl {
 public:
  Impl(const Options& options, std::unique_ptr<Store> store, TlsContexts tls)
      : directory_(options.store),
        store_(std::move(store)),
        tls_(std::move(tls)),
        backend_(*store_, scenarios_, options.log),
        control_(Console(*store_, scenarios_),
                 {[this] { return listing(); },
                  [this](Scenario scenario) { return setScenario(std::move(scenario)); },
                  [this] { clearScenarios(); },
                  [this](const std::optional<std::string>& key) { return backend_.remove(key); }}) {
  }

  // Takes both ports, then serves.
  std::optional<Failure> run(const Options& options) {
    auto https = Listener::open({options.port, options.limits, options.dripInterval,
                                 [this]() -> const TlsContext& { return certificateNow(); }});
    if (!https) return Failure{https.error()};
    auto pages = Listener::open({options.listingPort, options.limits, options.dripInterval, {}});
    if (!pages) return Failure{pages.error()};
    https_ = std::move(https).value();
    pages_ = std::move(pages).value();
    control_.setPort(pages_->port());
    https_->run(backend_);
    for (const auto& scenario : options.scenarios) {
      if (!setScenario(scenario)) return Failure{faultName(scenario) + " cannot be played"};
    }
    pages_->run(control_);
    return std::nullopt;
  }

  bool setScenario(Scenario scenario) {
    if (whyUnplayable(scenario)) return false;
    const std::lock_guard lock(scenarioMutex_);
    scenarios_.add(std::move(scenario));
    https_->setRefusing(scenarios_.refuses());
    return true;
  }

  void clearScenarios() {
    const std::lock_guard lock(scenarioMutex_);
    scenarios_.clear();
    https_->setRefusing(false);
  }

  std::string listing() const { return sandbox::listing(*store_, scenarios_); }

  void stop() {
    const std::lock_guard lock(stopMutex_);
    if (pages_) pages_->stop();
    if (https_) https_->stop();
  }

  const std::filesystem::path& directory() const { return directory_; }
  const Store& store() const { return *store_; }
  const Listener& https() const { return *https_; }
  const Listener& pages() const { return *pages_; }

 private:
  const TlsContext& certificateNow() const {
    const auto fault = scenarios_.certificateFault();
    if (fault == Fault::unknownAuthority) return tls_.unknownAuthority;
    if (fault == Fault::expiredCertificate) return tls_.expired;
    if (fault == Fault::wrongHost) return tls_.wrongHost;
    return tls_.right;
  }

  std::filesystem::path directory_;
  std::unique_ptr<Store> store_;
  TlsContexts tls_;
  ScenarioSet scenarios_;
  std::mutex scenarioMutex_;  // what is set is in force in the same order
  Backend backend_;
  Control control_;
  std::mutex stopMutex_;
  // Last, so that they stop first: their threads use what is above.
  std::unique_ptr<Listener> https_;
  std::unique_ptr<Listener> pages_;
};

Outcome<std::unique_ptr<Sandbox>> Sandbox::start(Options options) {
  if (options.store.empty()) options.store = defaultStore();
  if (options.store.empty()) return Failure{"there is no home directory to keep the store in"};
  auto store = Store::open(options.store);
  if (!store) return Failure{store.error()};
  auto tls = makeContexts(options.store);
  if (!tls) return Failure{tls.error()};
  std::unique_ptr<Impl, Sandbox::Destroy> impl(
      std::make_unique<Impl>(options, std::move(store).value(), std::move(tls).value()).release());
  if (auto failure = impl->run(options)) return *std::move(failure);
  return std::unique_ptr<Sandbox>(new Sandbox(std::move(impl)));
}

void Sandbox::Destroy::operator()(Impl* impl) const {
  std::default_delete<Impl>()(impl);
}

Sandbox::Sandbox(std::unique_ptr<Impl, Destroy> impl) : impl_(std::move(impl)) {}

std::uint16_t Sandbox::port() const {
  return impl_->https().port();
}

std::uint16_t Sandbox::listingPort() const {
  return impl_->pages().port();
}

std::filesystem::path Sandbox::authorityFile() const {
  return impl_->directory() / authorityFileName;
}

std::vector<Request> Sandbox::requests() const {
  return impl_->store().requests();
}

bool Sandbox::waitForRequests(std::size_t count, std::chrono::milliseconds deadline) const {
  return impl_->store().waitForRequests(count, deadline);
}

bool Sandbox::setScenario(Scenario scenario) {
  return impl_->setScenario(std::move(scenario));
}

void Sandbox::clearScenarios() {
  impl_->clearScenarios();
}

std::string Sandbox::listing() const {
  return impl_->listing();
}

std::size_t Sandbox::connectionsAccepted() const {
  return impl_->https().connectionsAccepted();
}

void Sandbox::stop() {
  impl_->stop();
}

}  // namespace kestrova::sandbox
