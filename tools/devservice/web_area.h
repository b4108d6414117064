#pragma once

#include <filesystem>

#include "devservice/exchange.h"

namespace zantrio::devservice {

// The web application: /app is its page, /app/lib/ holds Debian's JavaScript libraries, anything
// else below /app/ is a file of the web folder. Nothing outside the two folders is ever served.
// Thread: any.
class CWebArea {
 public:
  CWebArea(std::filesystem::path web, std::filesystem::path javascript);

  void handle(CExchange& exchange);

 private:
  std::filesystem::path find(const CExchange& exchange) const;

  const std::filesystem::path web_;
  const std::filesystem::path javascript_;
};

}  // namespace zantrio::devservice
