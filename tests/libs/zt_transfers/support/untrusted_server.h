#pragma once

#include <openssl/ssl.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "base/unique_fd.h"

namespace zt_transfers::test {

// A TLS server on loopback whose certificate nobody has reason to trust. Counts connections, and
// those whose client went through with it.
class CUntrustedServer {
 public:
  CUntrustedServer();
  ~CUntrustedServer();
  CUntrustedServer(const CUntrustedServer&) = delete;
  CUntrustedServer& operator=(const CUntrustedServer&) = delete;

  std::string url(const std::string& path) const;
  int connections() const { return connections_; }
  int trusting() const { return trusting_; }

 private:
  struct ContextDeleter {
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
  };

  void accept();

  std::unique_ptr<SSL_CTX, ContextDeleter> context_;
  CUniqueFd listener_;
  int port_ = 0;
  std::atomic<int> connections_{0};
  std::atomic<int> trusting_{0};
  std::thread acceptor_;
};

}  // namespace zt_transfers::test
