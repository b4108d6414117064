#pragma once

#include <set>
#include <vector>

#include "base/clock.h"
#include "http/connections.h"

namespace zt_transfers {

class CHttpExchange;

// The exchanges that have lost their patience. A connection on which nothing moves any more is cut,
// so that it is not used again, and all its exchanges are among them.
std::vector<CHttpExchange*> stalledAmong(const std::set<CHttpExchange*>& exchanges,
                                         CConnections& connections, TimePoint now);

}  // namespace zt_transfers
