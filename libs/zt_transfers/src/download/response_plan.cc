#include "download/response_plan.h"

#include "download/content_range.h"
#include "base/ascii.h"

namespace zt_transfers {
namespace {

constexpr long kWhole = 200;
constexpr long kPartial = 206;
constexpr long kRangeNotSatisfiable = 416;

FetchPlan startOver(std::string reason) {
  FetchPlan plan;
  plan.kind = FetchPlan::Kind::kStartOver;
  plan.reason = std::move(reason);
  return plan;
}

FetchPlan planWhole(const HttpAnswer& head) {
  FetchPlan plan;
  plan.kind = FetchPlan::Kind::kBody;
  plan.size = parseLength(head.header("content-length"));
  plan.end = plan.size;
  plan.validator = validatorOf(head);
  plan.offersRanges = plan.size && isExact(plan.validator) &&
                      equalsIgnoringCase(trimmed(head.header("accept-ranges")), "bytes");
  return plan;
}

bool sameVersion(const FetchAsk& ask, const FetchPlan& plan) {
  return (ask.validator.empty() || ask.validator == plan.validator) &&
         (!ask.size || !plan.size || *ask.size == *plan.size);
}

FetchPlan planPartial(const HttpAnswer& head, const FetchAsk& ask) {
  const auto range = parseContentRange(head.header("content-range"));
  if (!ask.ranged || !range || !range->first) {
    return startOver("the server sent a range that it does not name");
  }
  if (*range->first != ask.begin || (ask.end && range->end > *ask.end)) {
    return startOver("the server sent another range than it was asked for");
  }
  FetchPlan plan;
  plan.kind = FetchPlan::Kind::kBody;
  plan.begin = ask.begin;
  plan.end = range->end;
  plan.size = range->total;
  plan.validator = validatorOf(head);
  plan.partial = true;
  plan.offersRanges = isExact(plan.validator);
  return sameVersion(ask, plan) ? plan : startOver("the file has changed on the server");
}

FetchPlan planNothingLeft(const HttpAnswer& head, const FetchAsk& ask) {
  const auto range = parseContentRange(head.header("content-range"));
  if (!range || range->total != ask.begin) {
    return startOver("the file has become shorter on the server");
  }
  FetchPlan plan;
  plan.kind = FetchPlan::Kind::kComplete;
  plan.begin = ask.begin;
  plan.size = range->total;
  plan.validator = validatorOf(head);
  // Servers need not name the version in this answer.
  const bool changed = !plan.validator.empty() && !sameVersion(ask, plan);
  return changed ? startOver("the file has changed on the server") : plan;
}

}  // namespace

FetchPlan planAnswer(const HttpAnswer& head, const FetchAsk& ask) {
  switch (head.status) {
    case kWhole:
      return planWhole(head);
    case kPartial:
      return planPartial(head, ask);
    case kRangeNotSatisfiable:
      return ask.ranged ? planNothingLeft(head, ask) : FetchPlan();
    default:
      return {};
  }
}

std::string validatorOf(const HttpAnswer& head) {
  const std::string_view etag = head.header("etag");
  if (etag.size() >= 2 && etag.front() == '"' && etag.back() == '"') {
    return std::string(etag);
  }
  return std::string(head.header("last-modified"));
}

bool isExact(const std::string& validator) {
  return !validator.empty() && validator.front() == '"';
}

}  // namespace zt_transfers
