#include <array>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <optional>
#include <string_view>

#include <curl/curl.h>

#include "doctor/Checks.h"
#include "platform/foundation/ProcessInfo.h"
#include "platform/foundation/Text.h"

namespace kestrova::doctor {

namespace {

using Clock = std::chrono::system_clock;

struct EasyDeleter {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
using Easy = std::unique_ptr<CURL, EasyDeleter>;

// What a HEAD request brought.
struct Visit {
  CURLcode code = CURLE_OK;
  std::string error;
  std::string date;
  std::string expires;
  std::string issuer;
};

std::optional<Clock::time_point> timeOf(const std::string& text) {
  const auto seconds = curl_getdate(text.c_str(), nullptr);
  if (seconds < 0) return std::nullopt;
  return Clock::from_time_t(seconds);
}

std::size_t noteHeader(char* line, std::size_t size, std::size_t count, void* visit) {
  constexpr std::string_view kDate = "date:";
  const std::string_view header(line, size * count);
  if (platform::lowercased(header.substr(0, kDate.size())) == kDate) {
    static_cast<Visit*>(visit)->date =
        platform::trimmingWhitespacesAndNewlines(header.substr(kDate.size()));
  }
  return size * count;
}

void readCertificate(CURL* handle, Visit& visit) {
  curl_certinfo* chain = nullptr;
  if (curl_easy_getinfo(handle, CURLINFO_CERTINFO, &chain) != CURLE_OK || !chain ||
      chain->num_of_certs < 1) {
    return;
  }
  for (const auto* field = chain->certinfo[0]; field; field = field->next) {
    const std::string_view text = field->data;
    constexpr std::string_view kExpires = "Expire date:";
    constexpr std::string_view kIssuer = "Issuer:";
    if (text.starts_with(kExpires)) visit.expires = text.substr(kExpires.size());
    if (text.starts_with(kIssuer)) visit.issuer = text.substr(kIssuer.size());
  }
}

// As the SDK does it: a folder of authorities beside the file is not trusted.
void setTrust(CURL* handle, const std::filesystem::path& authorities) {
  const char* const systemStore = curl_version_info(CURLVERSION_NOW)->cainfo;
  if (authorities.empty() && !systemStore) return;
  curl_easy_setopt(handle, CURLOPT_CAINFO, authorities.empty() ? systemStore : authorities.c_str());
  curl_easy_setopt(handle, CURLOPT_CAPATH, nullptr);
}

Visit visitBackend(const Machine& machine) {
  Visit visit;
  const Easy easy(curl_easy_init());
  if (!easy) {
    visit.code = CURLE_FAILED_INIT;
    return visit;
  }
  CURL* const handle = easy.get();
  std::array<char, CURL_ERROR_SIZE> error{};
  curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, error.data());
  curl_easy_setopt(handle, CURLOPT_URL, ("https://" + machine.backend + "/").c_str());
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "https");
  curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
  curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  curl_easy_setopt(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  // What a proxy answers to CONNECT is the proxy's, its clock included.
  curl_easy_setopt(handle, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
  curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, static_cast<long>(machine.patience.count()));
  curl_easy_setopt(handle, CURLOPT_CERTINFO, 1L);
  curl_easy_setopt(handle, CURLOPT_USERAGENT, "kestrova-doctor");
  setTrust(handle, machine.authorities);
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &noteHeader);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, &visit);
  visit.code = curl_easy_perform(handle);
  visit.error = error.front() ? error.data() : curl_easy_strerror(visit.code);
  if (visit.code == CURLE_OK) readCertificate(handle, visit);
  return visit;
}

Finding finding(Severity severity, std::string found, std::string advice = {}) {
  return {"backend", severity, std::move(found), std::move(advice)};
}

std::string adviceFor(CURLcode code, const Machine& machine) {
  switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return "Check the name and this machine's name service (/etc/resolv.conf).";
    case CURLE_COULDNT_CONNECT:
      return machine.backend.starts_with("localhost")
                 ? "Start the sandbox: kestrova-sandbox."
                 : "Check the port, the network and the firewall.";
    case CURLE_OPERATION_TIMEDOUT:
      return "Check the network and the firewall: something takes the connection and is silent.";
    case CURLE_SSL_CACERT_BADFILE:
      return "The trusted authorities are missing: " + machine.authorities.string() +
             ". The sandbox writes its own when it starts.";
    case CURLE_PEER_FAILED_VERIFICATION:
      return "The SDK refuses this server. Check its certificate, the authorities that this "
             "machine trusts, and this machine's clock.";
    case CURLE_SSL_CONNECT_ERROR:
      return "The server must speak TLS 1.2 or newer.";
    default:
      return "The flow cannot reach its backend.";
  }
}

// The proxy that the environment names, without the user and the password in it.
std::string proxy() {
  for (const auto* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
    auto value = platform::ProcessInfo::environment(name).value_or("");
    if (value.empty()) continue;
    const auto begin = value.find("://") == value.npos ? 0 : value.find("://") + 3;
    const auto at = value.rfind('@');
    if (at != value.npos && at > begin) value.erase(begin, at + 1 - begin);
    return value;
  }
  return {};
}

Finding certificate(const Visit& visit, const Machine& machine) {
  const auto expires = timeOf(visit.expires);
  if (!expires) {
    return finding(Severity::note, "the certificate's end could not be read",
                   "Nothing: it was accepted.");
  }
  const auto left = std::chrono::duration_cast<std::chrono::hours>(*expires - Clock::now());
  const auto text = "the certificate is good for " + std::to_string(left.count() / 24) +
                    " days (until " + visit.expires + "), issued by " + visit.issuer;
  if (left >= machine.certificateMargin) return finding(Severity::ok, text);
  return finding(Severity::warning, text, "Have the backend's operator renew it.");
}

Finding clock(const Visit& visit, const Machine& machine) {
  const auto theirs = timeOf(visit.date);
  if (!theirs) {
    return finding(Severity::note, "the backend does not say what time it is",
                   "Compare this machine's clock with a radio clock.");
  }
  const auto difference =
      std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - *theirs).count();
  if (std::abs(difference) <= machine.clockMargin.count()) {
    return finding(Severity::ok,
                   "the clocks differ by " + std::to_string(std::abs(difference)) + " s at most");
  }
  return finding(Severity::warning,
                 "this machine's clock is " + std::to_string(std::abs(difference)) + " s " +
                     (difference > 0 ? "ahead of" : "behind") + " the backend's",
                 "Set the clock (timedatectl set-ntp true): certificates are judged by it.");
}

}  // namespace

Findings checkBackend(const Machine& machine) {
  Findings findings;
  if (const auto through = proxy(); !through.empty()) {
    findings.push_back(finding(Severity::note, "the environment names the proxy " + through,
                               "Requests go through it unless no_proxy names the backend."));
  }
  const auto visit = visitBackend(machine);
  if (visit.code != CURLE_OK) {
    findings.push_back(finding(Severity::failure, machine.backend + ": " + visit.error,
                               adviceFor(visit.code, machine)));
    return findings;
  }
  findings.push_back(finding(Severity::ok, machine.backend + " answers, and is who it says"));
  findings.push_back(certificate(visit, machine));
  findings.push_back(clock(visit, machine));
  return findings;
}

}  // namespace kestrova::doctor
