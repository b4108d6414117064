// A small HTTP server on 127.0.0.1.
#pragma once

#include <mutex>
#include <string>
#include <thread>

namespace cef_test {

// Answers every request with a small page, which sets a cookie that lasts. Records the requests.
class LoopbackServer {
 public:
  LoopbackServer();
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  std::string url(const std::string& path) const;
  // Heads of all requests so far.
  std::string requests() const;

 private:
  void serve();

  int socket_ = -1;
  int port_ = 0;
  mutable std::mutex mutex_;
  std::string requests_;  // guarded by mutex_
  std::thread thread_;
};

}  // namespace cef_test
