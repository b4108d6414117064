#include "http/connections.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "http/tcp_socket.h"

namespace zt_transfers {
namespace {

std::string textOf(const char* address, long port) {
  return std::string(address != nullptr ? address : "") + ":" + std::to_string(port);
}

std::string textOf(const sockaddr_storage& address) {
  char text[INET6_ADDRSTRLEN] = "";
  if (address.ss_family == AF_INET6) {
    const auto& ip = reinterpret_cast<const sockaddr_in6&>(address);
    ::inet_ntop(AF_INET6, &ip.sin6_addr, text, sizeof text);
    return textOf(text, ntohs(ip.sin6_port));
  }
  const auto& ip = reinterpret_cast<const sockaddr_in&>(address);
  ::inet_ntop(AF_INET, &ip.sin_addr, text, sizeof text);
  return textOf(text, ntohs(ip.sin_port));
}

}  // namespace

void CConnections::observe(CURL* easy) {
  curl_easy_setopt(easy, CURLOPT_SOCKOPTFUNCTION, &CConnections::onOpened);
  curl_easy_setopt(easy, CURLOPT_SOCKOPTDATA, this);
  curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, &CConnections::onClosing);
  curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, this);
}

std::optional<int> CConnections::socketOf(CURL* easy) {
  long localPort = 0;
  long remotePort = 0;
  const char* local = nullptr;
  const char* remote = nullptr;
  curl_easy_getinfo(easy, CURLINFO_LOCAL_PORT, &localPort);
  curl_easy_getinfo(easy, CURLINFO_PRIMARY_PORT, &remotePort);
  curl_easy_getinfo(easy, CURLINFO_LOCAL_IP, &local);
  curl_easy_getinfo(easy, CURLINFO_PRIMARY_IP, &remote);
  if (localPort == 0) {
    return std::nullopt;
  }
  const Ends wanted{textOf(local, localPort), textOf(remote, remotePort)};
  for (auto& [socket, ends] : open_) {
    if (!ends) {
      ends = endsOf(socket);
    }
    if (ends == wanted) {
      return socket;
    }
  }
  return std::nullopt;
}

void CConnections::cut(int socket) {
  ::shutdown(socket, SHUT_RDWR);
}

std::optional<CConnections::Ends> CConnections::endsOf(int socket) {
  sockaddr_storage local{};
  sockaddr_storage remote{};
  socklen_t localSize = sizeof local;
  socklen_t remoteSize = sizeof remote;
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&local), &localSize) != 0 ||
      ::getpeername(socket, reinterpret_cast<sockaddr*>(&remote), &remoteSize) != 0) {
    return std::nullopt;
  }
  return Ends{textOf(local), textOf(remote)};
}

int CConnections::onOpened(void* self, curl_socket_t socket, curlsocktype /*purpose*/) {
  prepareTcpSocket(socket);
  static_cast<CConnections*>(self)->open_[socket] = std::nullopt;
  return CURL_SOCKOPT_OK;
}

int CConnections::onClosing(void* self, curl_socket_t socket) {
  static_cast<CConnections*>(self)->open_.erase(socket);
  return ::close(socket);
}

}  // namespace zt_transfers
