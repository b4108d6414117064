#pragma once

#include <functional>
#include <string>

#include "http/http_exchange.h"

namespace zt_transfers {

// One report to the service. Destruction ends it without a call of `done`.
//
// Thread: the loop's. The receiver of `done` retires the request.
class CReportRequest final : public IHttpBody {
 public:
  // Throws std::invalid_argument for a header that cannot be sent.
  CReportRequest(CHttpLoop& loop, HttpRequest request, std::string text, CHttpExchange::Done done);

 private:
  Read read(char* to, std::size_t room, std::size_t& copied) override;
  bool rewind() override;

  const std::string text_;
  std::size_t sent_ = 0;
  CHttpExchange exchange_;  // last, as it reads the text
};

}  // namespace zt_transfers
