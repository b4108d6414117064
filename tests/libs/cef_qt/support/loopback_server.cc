#include "support/loopback_server.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

namespace cef_test {

LoopbackServer::LoopbackServer() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&address), length), 0);
  EXPECT_EQ(listen(socket_, 16), 0);
  getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length);
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { serve(); });
}

LoopbackServer::~LoopbackServer() {
  shutdown(socket_, SHUT_RDWR);
  thread_.join();
  close(socket_);
}

std::string LoopbackServer::url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::string LoopbackServer::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

void LoopbackServer::serve() {
  for (int connection; (connection = accept(socket_, nullptr, nullptr)) >= 0; close(connection)) {
    timeval patience{5, 0};
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    std::string head;
    char buffer[4096];
    for (ssize_t length; head.find("\r\n\r\n") == std::string::npos &&
                         (length = recv(connection, buffer, sizeof buffer, 0)) > 0;) {
      head.append(buffer, static_cast<std::size_t>(length));
    }
    {
      const std::lock_guard lock(mutex_);
      requests_ += head;
    }
    const std::string body = "<!DOCTYPE html><title>page</title>";
    const std::string answer =
        "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nConnection: close\r\n"
        "Set-Cookie: kept=1; Max-Age=3600\r\nContent-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body;
    send(connection, answer.data(), answer.size(), MSG_NOSIGNAL);
  }
}

}  // namespace cef_test
