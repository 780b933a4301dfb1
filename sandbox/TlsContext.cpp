#include "sandbox/TlsContext.h"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>

namespace kestrova::sandbox {

namespace {

struct FreeHandle {
  void operator()(BIO* bio) const { BIO_free_all(bio); }
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};

std::unique_ptr<BIO, FreeHandle> reader(const std::string& text) {
  return std::unique_ptr<BIO, FreeHandle>(
      BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
}

}  // namespace

void TlsContext::Free::operator()(ssl_ctx_st* context) const {
  SSL_CTX_free(context);
}

Outcome<TlsContext> TlsContext::make(const KeyPair& pair) {
  TlsContext context(SSL_CTX_new(TLS_server_method()));
  const std::unique_ptr<X509, FreeHandle> certificate(
      PEM_read_bio_X509(reader(pair.certificate).get(), nullptr, nullptr, nullptr));
  const std::unique_ptr<EVP_PKEY, FreeHandle> key(
      PEM_read_bio_PrivateKey(reader(pair.key).get(), nullptr, nullptr, nullptr));
  if (!context.handle_ || !certificate || !key ||
      SSL_CTX_set_min_proto_version(context.handle(), TLS1_2_VERSION) != 1 ||
      SSL_CTX_use_certificate(context.handle(), certificate.get()) != 1 ||
      SSL_CTX_use_PrivateKey(context.handle(), key.get()) != 1) {
    ERR_clear_error();
    return Failure{"the server's certificate cannot be used"};
  }
  SSL_CTX_set_options(context.handle(), SSL_OP_NO_RENEGOTIATION);
  SSL_CTX_set_mode(context.handle(), SSL_MODE_ENABLE_PARTIAL_WRITE |
                                         SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER |
                                         SSL_MODE_RELEASE_BUFFERS);
  return context;
}

}  // namespace kestrova::sandbox
