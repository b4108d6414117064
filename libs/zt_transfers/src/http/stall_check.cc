#include "http/stall_check.h"

#include <algorithm>
#include <map>

#include "http/http_exchange.h"
#include "http/tcp_socket.h"

namespace zt_transfers {
namespace {

using Exchanges = std::vector<CHttpExchange*>;

constexpr int kNone = -1;

// Those of one connection that have lost their patience.
Exchanges impatientOf(const Exchanges& exchanges, int socket, TimePoint now) {
  // Several exchanges share the queue, which then tells nothing of each.
  const bool alone = socket != kNone && exchanges.size() == 1;
  const std::uint64_t unconfirmed = alone ? unconfirmedBytes(socket).value_or(0) : 0;
  Exchanges impatient;
  for (CHttpExchange* exchange : exchanges) {
    if (!exchange->check(unconfirmed, now)) {
      impatient.push_back(exchange);
    }
  }
  return impatient;
}

// Whether others show that it is not the connection's fault.
bool works(const Exchanges& exchanges, const CHttpExchange& stalled) {
  return std::any_of(exchanges.begin(), exchanges.end(), [&stalled](const CHttpExchange* other) {
    return other->liveness().movedAfter(stalled.liveness());
  });
}

}  // namespace

std::vector<CHttpExchange*> stalledAmong(const std::set<CHttpExchange*>& exchanges,
                                         CConnections& connections, TimePoint now) {
  std::map<int, Exchanges> bySocket;
  for (CHttpExchange* exchange : exchanges) {
    bySocket[connections.socketOf(exchange->easy()).value_or(kNone)].push_back(exchange);
  }
  Exchanges all;
  for (const auto& [socket, sharing] : bySocket) {
    Exchanges ended = impatientOf(sharing, socket, now);
    if (!ended.empty() && socket != kNone && !works(sharing, *ended.front())) {
      ended = sharing;
      CConnections::cut(socket);
      for (CHttpExchange* exchange : ended) {
        exchange->noteStalled();
      }
    }
    all.insert(all.end(), ended.begin(), ended.end());
  }
  return all;
}

}  // namespace zt_transfers
