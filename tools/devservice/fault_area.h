#pragma once

#include "devservice/exchange.h"
#include "devservice/fault_rules.h"

namespace zantrio::devservice {

// The administration of fault rules below /faults. Thread: any.
class CFaultArea {
 public:
  explicit CFaultArea(CFaultRules& rules) : rules_(rules) {}

  void handle(CExchange& exchange);

 private:
  CFaultRules& rules_;
};

}  // namespace zantrio::devservice
