#include "services/contacts/contact_search.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>

#include <stdexcept>

#include "app/text/utf8_text.h"

namespace zantrio {
namespace {

// Occurs in no folded text, so that no query matches across two texts of a contact.
constexpr char kSeparator = '\xFF';

void requireSuccess(UErrorCode status) {
  if (U_FAILURE(status) != 0) {
    throw std::runtime_error(std::string("A text cannot be folded: ") + u_errorName(status));
  }
}

icu::StringPiece piece(std::string_view text) {
  return {text.data(), static_cast<int32_t>(text.size())};
}

// Case folding and composition (NFC). The result is valid UTF-8: bytes that belong to no character
// become U+FFFD.
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

}  // namespace

std::string searchText(const Contact& contact) {
  std::string text = foldedText(contact.firstName) + kSeparator + foldedText(contact.lastName);
  if (contact.emails) {
    for (const std::string& email : *contact.emails) {
      text += kSeparator + foldedText(email);
    }
  }
  return text;
}

ContactQuery::ContactQuery(std::string_view query) : folded_(foldedText(query)) {}

bool ContactQuery::matches(const std::string& searchText) const {
  return searchText.find(folded_) != std::string::npos;
}

}  // namespace zantrio
