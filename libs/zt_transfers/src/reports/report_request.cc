#include "reports/report_request.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zt_transfers {
namespace {

HttpRequest asPost(HttpRequest request, std::uint64_t size) {
  request.method = "POST";
  request.bodySize = size;
  request.headers.emplace_back("Content-Type", "application/json");
  return request;
}

}  // namespace

CReportRequest::CReportRequest(CHttpLoop& loop, HttpRequest request, std::string text,
                               CHttpExchange::Done done)
    : text_(std::move(text)),
      exchange_(loop, asPost(std::move(request), text_.size()), static_cast<IHttpBody&>(*this),
                std::move(done)) {}

IHttpBody::Read CReportRequest::read(char* to, std::size_t room, std::size_t& copied) {
  copied = std::min(room, text_.size() - sent_);
  std::memcpy(to, text_.data() + sent_, copied);
  sent_ += copied;
  return Read::kData;
}

bool CReportRequest::rewind() {
  sent_ = 0;
  return true;
}

}  // namespace zt_transfers
