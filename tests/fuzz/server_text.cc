// Gives any bytes to everything that reads a server's text or a kept session, and ends the program
// when one of them answers what it must never answer.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/url_parts.h"
#include "download/response_plan.h"
#include "http/error_document.h"
#include "http/etag.h"
#include "http/redirect.h"
#include "http/retry_after.h"
#include "store/packed_resume.h"
#include "upload/multipart_messages.h"

namespace zt_transfers {
namespace {

void expect(bool holds) {
  if (!holds) {
    std::abort();
  }
}

void readXml(std::string_view text) {
  if (const auto page = partsPageOf(text)) {
    expect(page->next <= UploadSession::kMaxParts);
    for (const ListedPart& part : page->parts) {
      expect(part.number >= 1 && part.number <= UploadSession::kMaxParts);
    }
  }
  if (const auto uploadId = uploadIdOf(text)) {
    expect(!uploadId->empty() && uploadId->size() <= text.size());
    expect(withQuery("http://h/p?s=1", percentEncoded(*uploadId)).find('#') == std::string::npos);
  }
  if (const auto code = errorDocumentCode(text)) {
    expect(!code->empty() && code->size() <= 64);
  }
  completedETagOf(text);
}

void readHeaders(std::string_view text) {
  const std::string value(text);
  if (const auto digest = md5OfETag(text)) {
    expect(digest->size() == 32);
    // What is put together of it is a tag of several parts.
    expect(compositeOfETag(compositeTagOf({{1, value, ""}}).value()).has_value());
    expect(!compositeOfETag(text));
  }
  if (const auto wait = parseRetryAfter(text, 1'700'000'000)) {
    expect(wait->count() >= 0 && *wait <= std::chrono::hours(24 * 366));
  }
  if (const auto range = parseContentRange(text); range && range->first) {
    expect(*range->first < range->end && (!range->total || range->end <= *range->total));
  }
  HttpResponse response;
  response.headers["location"] = value;
  if (const auto target = redirectTarget("https://host/path", response)) {
    expect(originOf(*target).starts_with("https://"));
  }
}

void readKept(std::string_view text) {
  if (const auto resume = unpackedResume(text)) {
    expect(resume->begun());
    const auto again = unpackedResume(packed(*resume));
    expect(again && *again == *resume);
  }
}

}  // namespace
}  // namespace zt_transfers

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  zt_transfers::readXml(text);
  zt_transfers::readHeaders(text);
  zt_transfers::readKept(text);
  return 0;
}
