#include "sandbox/Certificates.h"

#include <fstream>
#include <memory>
#include <string>

#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include "sandbox/Files.h"
#include "tests/sandbox/SandboxTest.h"

namespace kestrova::sandbox {
namespace {

namespace fs = std::filesystem;

struct FreeHandle {
  void operator()(BIO* bio) const { BIO_free(bio); }
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(X509_STORE* store) const { X509_STORE_free(store); }
  void operator()(X509_STORE_CTX* context) const { X509_STORE_CTX_free(context); }
};
template <typename T>
using Handle = std::unique_ptr<T, FreeHandle>;

Handle<X509> certificateOf(const std::string& pem) {
  const Handle<BIO> bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
  return Handle<X509>(PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr));
}

class CertificateFiles : public testing::Test {
 protected:
  std::string text(const char* name) const { return readFile(directory.path() / name).value(); }
  Certificates load() const {
    auto loaded = loadCertificates(directory.path());
    EXPECT_TRUE(loaded) << loaded.error();
    return std::move(loaded).value();
  }
  // Strictly, as a TLS server for the host; the verdict of the library.
  long verdict(const std::string& pem, const char* host, const char* address = nullptr) const {
    const auto authority = certificateOf(text("authority.pem"));
    const auto certificate = certificateOf(pem);
    const Handle<X509_STORE> store(X509_STORE_new());
    X509_STORE_add_cert(store.get(), authority.get());
    const Handle<X509_STORE_CTX> context(X509_STORE_CTX_new());
    X509_STORE_CTX_init(context.get(), store.get(), certificate.get(), nullptr);
    X509_VERIFY_PARAM* const wanted = X509_STORE_CTX_get0_param(context.get());
    X509_VERIFY_PARAM_set_flags(wanted, X509_V_FLAG_X509_STRICT);
    X509_VERIFY_PARAM_set_purpose(wanted, X509_PURPOSE_SSL_SERVER);
    if (address != nullptr) {
      X509_VERIFY_PARAM_set1_ip_asc(wanted, address);
    } else {
      X509_VERIFY_PARAM_set1_host(wanted, host, 0);
    }
    X509_verify_cert(context.get());
    return X509_STORE_CTX_get_error(context.get());
  }
  void setEnd(const char* file, const char* keyFile, long seconds) const {
    auto certificate = certificateOf(text(file));
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), seconds);
    const auto pem = text(keyFile);
    const Handle<BIO> bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    const Handle<EVP_PKEY> key(PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, nullptr));
    X509_sign(certificate.get(), key.get(), EVP_sha256());
    const Handle<BIO> out(BIO_new_file((directory.path() / file).c_str(), "w"));
    PEM_write_bio_X509(out.get(), certificate.get());
  }
  void overwrite(const char* name, const std::string& content) const {
    std::ofstream(directory.path() / name) << content;
  }

  TemporaryDirectory directory;
};

TEST_F(CertificateFiles, VerifyStrictlyForEveryNameOfThisMachine) {
  const auto all = load();
  EXPECT_EQ(verdict(all.server.certificate, "localhost"), X509_V_OK);
  EXPECT_EQ(verdict(all.server.certificate, nullptr, "127.0.0.1"), X509_V_OK);
  EXPECT_EQ(verdict(all.server.certificate, nullptr, "::1"), X509_V_OK);
  EXPECT_EQ(verdict(all.server.certificate, "example.org"), X509_V_ERR_HOSTNAME_MISMATCH);
  EXPECT_EQ(verdict(all.expired.certificate, "localhost"), X509_V_ERR_CERT_HAS_EXPIRED);
  EXPECT_EQ(verdict(all.ofWrongHost.certificate, "localhost"), X509_V_ERR_HOSTNAME_MISMATCH);
  EXPECT_EQ(verdict(all.ofWrongHost.certificate, "other.invalid"), X509_V_OK);
  EXPECT_EQ(verdict(all.ofUnknownAuthority.certificate, "localhost"),
            X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY);
}

TEST_F(CertificateFiles, KeysArePrivateAlsoAfterSomeoneOpenedThem) {
  for (int start = 0; start < 2; ++start) {
    load();
    for (const char* const key : {"authority-key.pem", "server-key.pem"}) {
      EXPECT_EQ(fs::status(directory.path() / key).permissions(),
                fs::perms::owner_read | fs::perms::owner_write)
          << key;
      fs::permissions(directory.path() / key, fs::perms::others_read, fs::perm_options::add);
    }
  }
}

TEST_F(CertificateFiles, StayTheSameFromStartToStart) {
  const auto server = load().server.certificate;
  const auto authority = text("authority.pem");
  EXPECT_EQ(load().server.certificate, server);
  EXPECT_EQ(text("authority.pem"), authority);
}

TEST_F(CertificateFiles, AServerCertificateThatIsAboutToExpireIsRenewedUnderTheSameAuthority) {
  load();
  const auto authority = text("authority.pem");
  setEnd("server.pem", "authority-key.pem", 24 * 60 * 60L);
  const auto ending = text("server.pem");
  const auto renewed = load().server.certificate;
  EXPECT_NE(renewed, ending);
  EXPECT_EQ(verdict(renewed, "localhost"), X509_V_OK);
  EXPECT_EQ(text("authority.pem"), authority);
}

TEST_F(CertificateFiles, AnAuthorityThatExpiresIsRenewedForItsKey) {
  load();
  const auto key = text("authority-key.pem");
  setEnd("authority.pem", "authority-key.pem", -1);
  EXPECT_EQ(verdict(load().server.certificate, "localhost"), X509_V_OK);
  EXPECT_EQ(text("authority-key.pem"), key);
}

TEST_F(CertificateFiles, AServerCertificateOfAFormerAuthorityIsReplaced) {
  load();
  fs::remove(directory.path() / "authority.pem");
  fs::remove(directory.path() / "authority-key.pem");
  EXPECT_EQ(verdict(load().server.certificate, "localhost"), X509_V_OK);
}

TEST_F(CertificateFiles, AFirstStartThatBrokeOffIsFinished) {
  load();
  fs::remove(directory.path() / "authority.pem");
  EXPECT_EQ(verdict(load().server.certificate, "localhost"), X509_V_OK);
}

TEST_F(CertificateFiles, DamagedFilesAreNamedAndLeftAlone) {
  load();
  const auto authority = text("authority.pem");
  const auto key = text("authority-key.pem");
  const auto expectFailure = [&](const char* file) {
    const auto loaded = loadCertificates(directory.path());
    ASSERT_FALSE(loaded);
    EXPECT_NE(loaded.error().find(file), std::string::npos) << loaded.error();
    EXPECT_NE(loaded.error().find("damaged"), std::string::npos) << loaded.error();
  };
  overwrite("authority.pem", authority.substr(0, 100));
  expectFailure("authority.pem");
  EXPECT_EQ(text("authority.pem"), authority.substr(0, 100));
  overwrite("authority.pem", text("server.pem"));
  expectFailure("authority.pem");
  overwrite("authority.pem", authority);
  overwrite("authority-key.pem", "");
  expectFailure("authority-key.pem");
  fs::remove(directory.path() / "authority-key.pem");
  expectFailure("authority-key.pem");
  EXPECT_FALSE(fs::exists(directory.path() / "authority-key.pem"));
  overwrite("authority-key.pem", key);
  overwrite("server-key.pem", key);
  expectFailure("server.pem");
}

}  // namespace
}  // namespace kestrova::sandbox
