#include "services/contacts/folded_text.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>

#include <stdexcept>

#include "app/text/utf8_text.h"

namespace zantrio {
namespace {

void requireSuccess(UErrorCode status) {
  if (U_FAILURE(status) != 0) {
    throw std::runtime_error(std::string("A text cannot be folded: ") + u_errorName(status));
  }
}

icu::StringPiece piece(std::string_view text) {
  return {text.data(), static_cast<int32_t>(text.size())};
}

}  // namespace

std::string foldedText(std::string_view text) {
  const std::string valid = toValidUtf8(text);
  UErrorCode status = U_ZERO_ERROR;
  std::string folded;
  icu::StringByteSink<std::string> foldedSink(&folded, static_cast<int32_t>(valid.size()));
  icu::CaseMap::utf8Fold(0, piece(valid), foldedSink, nullptr, status);
  requireSuccess(status);

  const icu::Normalizer2* const normalizer = icu::Normalizer2::getNFCInstance(status);
  requireSuccess(status);
  std::string composed;
  icu::StringByteSink<std::string> composedSink(&composed, static_cast<int32_t>(folded.size()));
  normalizer->normalizeUTF8(0, piece(folded), composedSink, nullptr, status);
  requireSuccess(status);
  return composed;
}

}  // namespace zantrio
