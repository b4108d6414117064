#include "download/response_plan.h"

#include <charconv>
#include <limits>

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

// From HTTP/2 on every body has a marked end.
bool endsUnmarked(const HttpResponse& head) {
  return head.version <= CURL_HTTP_VERSION_1_1 && !parseLength(head.header("content-length")) &&
         !equalsIgnoringCase(trimmed(head.header("transfer-encoding")), "chunked");
}

FetchPlan planWhole(const HttpResponse& head) {
  FetchPlan plan;
  plan.kind = FetchPlan::Kind::kBody;
  plan.size = parseLength(head.header("content-length"));
  plan.end = plan.size;
  plan.validator = validatorOf(head);
  plan.endsUnmarked = endsUnmarked(head);
  plan.offersRanges = plan.size && isExact(plan.validator) &&
                      equalsIgnoringCase(trimmed(head.header("accept-ranges")), "bytes");
  return plan;
}

// Whether the response is of the version that was asked for in If-Range. A response to a date need
// not repeat the date, and a proxy may have weakened the tag.
bool sameValidator(const std::string& asked, const HttpResponse& head) {
  const std::string_view etag = head.header("etag");
  const std::string_view date = head.header("last-modified");
  return asked.empty() ||
         (isExact(asked) ? etag == asked || etag == "W/" + asked : date.empty() || date == asked);
}

bool sameSize(const RangeRequest& rangeRequest, const FetchPlan& plan) {
  return !rangeRequest.size || !plan.size || *rangeRequest.size == *plan.size;
}

FetchPlan planPartial(const HttpResponse& head, const RangeRequest& rangeRequest) {
  const auto range = parseContentRange(head.header("content-range"));
  if (!rangeRequest.ranged || !range || !range->first) {
    return startOver("the server sent a range that it does not name");
  }
  if (*range->first != rangeRequest.begin || (rangeRequest.end && range->end > *rangeRequest.end)) {
    return startOver("the server sent another range than it was asked for");
  }
  FetchPlan plan;
  plan.kind = FetchPlan::Kind::kBody;
  plan.begin = rangeRequest.begin;
  plan.end = range->end;
  plan.size = range->total;
  plan.validator = rangeRequest.validator.empty() ? validatorOf(head) : rangeRequest.validator;
  plan.partial = true;
  plan.offersRanges = isExact(plan.validator);
  return sameValidator(rangeRequest.validator, head) && sameSize(rangeRequest, plan)
             ? plan
             : startOver("the file has changed on the server");
}

FetchPlan planNothingLeft(const HttpResponse& head, const RangeRequest& rangeRequest) {
  const auto range = parseContentRange(head.header("content-range"));
  if (!range || range->total != rangeRequest.begin) {
    return startOver("the file has become shorter on the server");
  }
  FetchPlan plan;
  plan.kind = FetchPlan::Kind::kComplete;
  plan.begin = rangeRequest.begin;
  plan.size = range->total;
  plan.validator = validatorOf(head);
  // Servers need not name the version in this response.
  const bool changed = (!plan.validator.empty() && !sameValidator(rangeRequest.validator, head)) ||
                       !sameSize(rangeRequest, plan);
  return changed ? startOver("the file has changed on the server") : plan;
}

}  // namespace

std::optional<std::uint64_t> parseLength(std::string_view text) {
  std::uint64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stopped != end ||
      value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    return std::nullopt;
  }
  return value;
}

std::optional<ContentRange> parseContentRange(std::string_view value) {
  constexpr std::string_view kUnit = "bytes ";
  value = trimmed(value);
  if (!startsWithIgnoringCase(value, kUnit)) {
    return std::nullopt;
  }
  value = trimmed(value.substr(kUnit.size()));
  const auto slash = value.find('/');
  if (slash == std::string_view::npos) {
    return std::nullopt;
  }
  ContentRange range;
  const std::string_view total = value.substr(slash + 1);
  if (total != "*") {
    range.total = parseLength(total);
    if (!range.total) {
      return std::nullopt;
    }
  }
  const std::string_view span = value.substr(0, slash);
  if (span == "*") {
    return range;
  }
  const auto dash = span.find('-');
  if (dash == std::string_view::npos) {
    return std::nullopt;
  }
  const auto first = parseLength(span.substr(0, dash));
  const auto last = parseLength(span.substr(dash + 1));
  if (!first || !last || *last < *first || (range.total && *last >= *range.total)) {
    return std::nullopt;
  }
  range.first = first;
  range.end = *last + 1;
  return range;
}

FetchPlan planResponse(const HttpResponse& head, const RangeRequest& rangeRequest) {
  switch (head.status) {
    case kWhole:
      return planWhole(head);
    case kPartial:
      return planPartial(head, rangeRequest);
    case kRangeNotSatisfiable:
      return rangeRequest.ranged ? planNothingLeft(head, rangeRequest) : FetchPlan();
    default:
      return {};
  }
}

std::string validatorOf(const HttpResponse& head) {
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
