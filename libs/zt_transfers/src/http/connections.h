#pragma once

#include <curl/curl.h>

#include <map>
#include <optional>
#include <string>

namespace zt_transfers {

// The TCP connections that libcurl has open. They can outlive the exchanges that opened them.
//
// Thread: the loop's.
class CConnections {
 public:
  // Has the handle's connections reported to this object, which must outlive them.
  void observe(CURL* easy);
  // The socket of the connection that carries the handle's exchange, if it has one. libcurl tells
  // it only for ended exchanges, therefore it is found by its addresses.
  std::optional<int> socketOf(CURL* easy);
  // Ends the connection for all exchanges.
  static void cut(int socket);

 private:
  // "address:port" of both ends.
  struct Ends {
    std::string local;
    std::string remote;
    bool operator==(const Ends&) const = default;
  };

  static std::optional<Ends> endsOf(int socket);
  static int onOpened(void* self, curl_socket_t socket, curlsocktype purpose);
  static int onClosing(void* self, curl_socket_t socket);

  std::map<int, std::optional<Ends>> open_;  // the ends once they are connected
};

}  // namespace zt_transfers
