#include "untrusted_server.h"

#include <openssl/evp.h>
#include <openssl/x509.h>
#include <sys/socket.h>

#include <stdexcept>

#include "loopback.h"

namespace zt_transfers::test {
namespace {

template <auto Free>
struct Deleter {
  template <typename Item>
  void operator()(Item* item) const {
    Free(item);
  }
};

using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;

Certificate selfSigned(EVP_PKEY* key) {
  Certificate certificate(X509_new());
  ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 1);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -3600);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 3600);
  X509_set_pubkey(certificate.get(), key);
  X509_NAME* name = X509_get_subject_name(certificate.get());
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>("127.0.0.1"), -1, -1, 0);
  X509_set_issuer_name(certificate.get(), name);
  X509_sign(certificate.get(), key, EVP_sha256());
  return certificate;
}

}  // namespace

CUntrustedServer::CUntrustedServer() : context_(SSL_CTX_new(TLS_server_method())) {
  const Key key(EVP_EC_gen("P-256"));
  const Certificate certificate = selfSigned(key.get());
  if (!context_ || SSL_CTX_use_certificate(context_.get(), certificate.get()) != 1 ||
      SSL_CTX_use_PrivateKey(context_.get(), key.get()) != 1) {
    throw std::runtime_error("the test's TLS server cannot be set up");
  }
  listener_ = listenOnLoopback(port_);
  acceptor_ = std::thread([this] { accept(); });
}

CUntrustedServer::~CUntrustedServer() {
  ::shutdown(listener_.get(), SHUT_RDWR);
  acceptor_.join();
}

std::string CUntrustedServer::url(const std::string& path) const {
  return "https://127.0.0.1:" + std::to_string(port_) + path;
}

void CUntrustedServer::accept() {
  for (;;) {
    const CUniqueFd socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!socket.valid()) {
      return;
    }
    ++connections_;
    const std::unique_ptr<SSL, Deleter<SSL_free>> session(SSL_new(context_.get()));
    SSL_set_fd(session.get(), socket.get());
    char byte = 0;
    if (SSL_accept(session.get()) == 1 && SSL_read(session.get(), &byte, 1) == 1) {
      ++trusting_;
    }
  }
}

}  // namespace zt_transfers::test
