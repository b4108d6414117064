#pragma once

#include <filesystem>

#include "devservice/exchange.h"

namespace zantrio::devservice {

// The web application: /app is its page, /app/lib/ Debian's JavaScript libraries, all other paths
// below /app/ are files of the web folder. Nothing outside the two folders is served.
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
