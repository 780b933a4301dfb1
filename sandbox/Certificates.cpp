#include "sandbox/Certificates.h"

#include <cerrno>
#include <ctime>
#include <memory>
#include <optional>
#include <system_error>

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include "sandbox/Files.h"

namespace kestrova::sandbox {

namespace {

namespace fs = std::filesystem;

struct FreeHandle {
  void operator()(BIO* bio) const { BIO_free_all(bio); }
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(BIGNUM* number) const { BN_free(number); }
  void operator()(X509_EXTENSION* extension) const { X509_EXTENSION_free(extension); }
};
template <typename T>
using Handle = std::unique_ptr<T, FreeHandle>;

constexpr long day = 24L * 60 * 60;
constexpr long authorityLife = 3650 * day;
constexpr long serverLife = 90 * day;
constexpr long renewBefore = 14 * day;

constexpr const char* rightNames = "DNS:localhost,IP:127.0.0.1,IP:::1";

struct Pair {
  Handle<X509> certificate;
  Handle<EVP_PKEY> key;
};

// How a certificate is to be; times in seconds from now.
struct Wish {
  const char* commonName;
  const char* alternativeNames;  // nullptr: an authority
  long from;
  long to;
};

bool addExtension(X509* certificate, X509* issuer, int kind, const char* value) {
  X509V3_CTX context{};
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  const Handle<X509_EXTENSION> extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value));
  return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

bool addExtensions(X509* certificate, X509* issuer, const Wish& wish) {
  const bool authority = wish.alternativeNames == nullptr;
  const auto add = [&](int kind, const char* value) {
    return addExtension(certificate, issuer, kind, value);
  };
  // The authority key identifier is read from the issuer, so the subject's comes first.
  if (!add(NID_basic_constraints, authority ? "critical,CA:TRUE,pathlen:0" : "critical,CA:FALSE") ||
      !add(NID_key_usage,
           authority ? "critical,keyCertSign,cRLSign" : "critical,digitalSignature") ||
      !add(NID_subject_key_identifier, "hash") ||
      !add(NID_authority_key_identifier, "keyid:always")) {
    return false;
  }
  return authority ||
         (add(NID_ext_key_usage, "serverAuth") && add(NID_subject_alt_name, wish.alternativeNames));
}

bool setSerial(X509* certificate) {
  const Handle<BIGNUM> number(BN_new());
  // 127 bits with the highest set: positive and never zero.
  return number && BN_rand(number.get(), 127, BN_RAND_TOP_ONE, BN_RAND_BOTTOM_ANY) == 1 &&
         BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)) != nullptr;
}

// A certificate for the key, signed by the issuer, or by itself where there is none.
Handle<X509> makeCertificate(EVP_PKEY* key, const Pair* issuer, const Wish& wish) {
  Handle<X509> certificate(X509_new());
  X509* const made = certificate.get();
  if (!certificate || X509_set_version(made, X509_VERSION_3) != 1 || !setSerial(made) ||
      X509_gmtime_adj(X509_getm_notBefore(made), wish.from) == nullptr ||
      X509_gmtime_adj(X509_getm_notAfter(made), wish.to) == nullptr ||
      X509_set_pubkey(made, key) != 1) {
    return nullptr;
  }
  X509_NAME* const subject = X509_get_subject_name(made);
  const auto* const name = reinterpret_cast<const unsigned char*>(wish.commonName);
  X509* const signer = issuer != nullptr ? issuer->certificate.get() : made;
  if (X509_NAME_add_entry_by_NID(subject, NID_commonName, MBSTRING_UTF8, name, -1, -1, 0) != 1 ||
      X509_set_issuer_name(made, X509_get_subject_name(signer)) != 1 ||
      !addExtensions(made, signer, wish) ||
      X509_sign(made, issuer != nullptr ? issuer->key.get() : key, EVP_sha256()) == 0) {
    return nullptr;
  }
  return certificate;
}

Handle<EVP_PKEY> makeKey() {
  return Handle<EVP_PKEY>(EVP_EC_gen("P-256"));
}

Pair makePair(const Pair* issuer, const Wish& wish) {
  Pair pair{nullptr, makeKey()};
  if (pair.key) pair.certificate = makeCertificate(pair.key.get(), issuer, wish);
  return pair;
}

const Wish authorityWish{"Kestrova Sandbox Authority", nullptr, -day, authorityLife};
const Wish serverWish{"localhost", rightNames, -day, serverLife};

template <typename Write>
std::string pem(Write write) {
  const Handle<BIO> out(BIO_new(BIO_s_mem()));
  if (!out || write(out.get()) != 1) return {};
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(out.get(), &bytes);
  return {bytes, static_cast<std::size_t>(size)};
}

KeyPair texts(const Pair& pair) {
  if (!pair.certificate) return {};
  return {pem([&](BIO* out) { return PEM_write_bio_X509(out, pair.certificate.get()); }),
          pem([&](BIO* out) {
            return PEM_write_bio_PrivateKey(out, pair.key.get(), nullptr, nullptr, 0, nullptr,
                                            nullptr);
          })};
}

struct PairFiles {
  fs::path certificate;
  fs::path key;

  Failure damaged() const {
    return {certificate.string() + " and " + key.filename().string() +
            " are damaged or do not belong together; delete both, and new ones will be made"};
  }
};

Handle<BIO> reader(const std::string& text) {
  return Handle<BIO>(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

// A pair without certificate where only the key is there, an empty pair where nothing is.
Outcome<Pair> readPair(const PairFiles& files) {
  std::error_code error;
  const bool hasCertificate = fs::exists(files.certificate, error);
  if (error) return Failure{files.certificate.string() + ": " + error.message()};
  if (!fs::exists(files.key, error)) {
    if (error || hasCertificate) return files.damaged();
    return Pair{};
  }
  // A key under a password is none of ours; asking for it would only block the start.
  const auto noPassword = [](char*, int, int, void*) { return -1; };
  const auto keyText = readFile(files.key);
  if (!keyText) return Failure{keyText.error()};
  Pair pair;
  pair.key.reset(
      PEM_read_bio_PrivateKey(reader(keyText.value()).get(), nullptr, noPassword, nullptr));
  if (!pair.key) return files.damaged();
  fs::permissions(files.key, fs::perms::owner_read | fs::perms::owner_write, error);
  if (!hasCertificate) return pair;
  const auto certificateText = readFile(files.certificate);
  if (!certificateText) return Failure{certificateText.error()};
  pair.certificate.reset(
      PEM_read_bio_X509(reader(certificateText.value()).get(), nullptr, noPassword, nullptr));
  if (!pair.certificate || X509_check_private_key(pair.certificate.get(), pair.key.get()) != 1) {
    return files.damaged();
  }
  return pair;
}

// The key goes first: with the key alone the next start makes the certificate again.
std::optional<Failure> writePair(const PairFiles& files, const Pair& pair) {
  if (!pair.certificate) return Failure{"no certificate could be made"};
  const auto written = texts(pair);
  for (const auto& [path, text, secret] :
       {std::tuple{files.key, written.key, true},
        std::tuple{files.certificate, written.certificate, false}}) {
    if (!writeFile(path, text, secret)) {
      return Failure{path.string() + ": " + std::generic_category().message(errno)};
    }
  }
  return std::nullopt;
}

bool lasts(const X509* certificate, long seconds) {
  std::time_t then = std::time(nullptr) + seconds;
  return X509_cmp_time(X509_get0_notAfter(certificate), &then) > 0;
}

// Reads the pair; makes what is missing, and a new certificate for the key where its own is not
// usable.
template <typename Usable>
Outcome<Pair> loadPair(const PairFiles& files, const Pair* issuer, const Wish& wish,
                       Usable usable) {
  auto outcome = readPair(files);
  if (!outcome) return outcome;
  auto& pair = outcome.value();
  if (pair.certificate && usable(pair.certificate.get())) return outcome;
  if (!pair.key) pair.key = makeKey();
  if (pair.key) pair.certificate = makeCertificate(pair.key.get(), issuer, wish);
  if (auto failure = writePair(files, pair)) return *std::move(failure);
  return outcome;
}

}  // namespace

Outcome<Certificates> loadCertificates(const fs::path& directory) {
  // An authority that ends before the server's certificate would help nobody.
  const auto authority =
      loadPair({directory / authorityFileName, directory / "authority-key.pem"}, nullptr,
               authorityWish, [](const X509* found) { return lasts(found, serverLife); });
  ERR_clear_error();
  if (!authority) return Failure{authority.error()};
  const auto server = loadPair({directory / "server.pem", directory / "server-key.pem"},
                               &authority.value(), serverWish, [&](X509* found) {
                                 return lasts(found, renewBefore) &&
                                        X509_verify(found, authority.value().key.get()) == 1;
                               });
  ERR_clear_error();
  if (!server) return Failure{server.error()};

  const auto stranger = makePair(nullptr, {"Unknown Authority", nullptr, -day, authorityLife});
  if (!stranger.certificate) return Failure{"no certificate could be made"};
  Certificates all;
  all.server = texts(server.value());
  all.ofUnknownAuthority = texts(makePair(&stranger, serverWish));
  all.expired = texts(makePair(&authority.value(), {"localhost", rightNames, -2 * day, -day}));
  all.ofWrongHost =
      texts(makePair(&authority.value(), {"other.invalid", "DNS:other.invalid", -day, serverLife}));
  return all;
}

}  // namespace kestrova::sandbox
