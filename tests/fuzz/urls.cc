// Any text as a URL, as a path and as a line of a log: what is admitted, decoded and shown keeps
// its promises.
#include <Poco/Exception.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/file_url.h"
#include "base/url_parts.h"
#include "bridge/page_origin.h"
#include "expect.h"
#include "files/file_url.h"
#include "services/openable_url.h"
#include "shown_text/characters.h"
#include "shown_text/one_line.h"
#include "shown_text/secrets.h"

namespace fuzz {
namespace {

bool isPlain(char byte) {
  return byte > ' ' && byte < '\x7F';
}

std::string lowered(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
  return result;
}

// Wherever an opener may see a field, only one that a reader sees and may change.
void checkLetter(std::string_view url) {
  constexpr std::array<std::string_view, 6> kFields{"to",      "cc",   "bcc",
                                                    "subject", "body", "in-reply-to"};
  constexpr std::string_view kSeparators = "?&;#,";
  while (!url.empty()) {
    const std::string_view field = url.substr(0, url.find_first_of(kSeparators));
    url.remove_prefix(std::min(field.size() + 1, url.size()));
    const auto sign = field.find('=');
    expect(sign == std::string_view::npos ||
           std::find(kFields.begin(), kFields.end(), lowered(field.substr(0, sign))) !=
               kFields.end());
  }
}

void checkOpenable(const std::string& url) {
  if (!zantrio::isOpenableUrl(url)) {
    return;
  }
  expect(std::all_of(url.begin(), url.end(), isPlain) && url.front() != '-');
  const std::string scheme = lowered(url.substr(0, url.find(':')));
  constexpr std::array<std::string_view, 5> kOpenable{"http", "https", "mailto", "tel", "sms"};
  expect(std::find(kOpenable.begin(), kOpenable.end(), scheme) != kOpenable.end());
  if (scheme == "mailto") {
    checkLetter(url);
  }
}

// Both parts of the program take a URL for the same server's.
void checkOrigins(const std::string& url) {
  const auto page = zantrio::pageOriginOf(url);
  const std::string transfers = zt_transfers::originOf(url);
  if (!page) {
    return;
  }
  expect(page->scheme == "http" || page->scheme == "https");
  expect(!page->host.empty() && page->host == lowered(page->host));
  const bool isName = page->host.find(':') == std::string::npos;
  if (!transfers.empty() && isName) {
    expect(transfers == page->scheme + "://" + page->host + ":" + std::to_string(page->port));
  }
}

void checkPaths(const std::string& text) {
  const std::string path = "/" + text.substr(0, text.find('\0'));
  std::string url;
  zantrio::filePathToUrl(path, false, url);
  std::string again;
  zantrio::fileUrlToPath(url, again);
  expect(again == path);
  expect(zt_transfers::pathOfFileUrl(url) == path);
  if (const auto named = zt_transfers::pathOfFileUrl(text)) {
    expect(named->starts_with("/") && named->find('\0') == std::string::npos);
  }
  try {
    zantrio::fileUrlToPath(text, again);
  } catch (const Poco::SyntaxException&) {
  }
}

void checkQueries(const std::string& text) {
  const std::string encoded = zt_transfers::percentEncoded(text);
  expect(encoded.size() >= text.size() && std::all_of(encoded.begin(), encoded.end(), isPlain));
  const std::string url = zt_transfers::withQuery(text, "a=" + encoded);
  expect(url.find('#') == std::string::npos && url.ends_with("a=" + encoded));
}

void checkShown(const std::string& text) {
  std::string_view rest;
  const std::string line = shown_text::oneLine(text);
  for (rest = line; !rest.empty();) {
    const shown_text::Character character = shown_text::firstCharacter(rest);
    expect(character.valid);
    expect(character.code == '\t' || !shown_text::isControl(character.code));
    rest.remove_prefix(character.length);
  }
  std::string masked = text;
  shown_text::maskSecrets(masked);
  expect(masked.size() == text.size());
  const std::string loggable = zt_transfers::loggableUrl(text);
  expect(loggable.find_first_of("?#") == std::string::npos || loggable.size() <= text.size());
  zt_transfers::withoutSecrets(text);
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  fuzz::checkOpenable(text);
  fuzz::checkOrigins(text);
  fuzz::checkPaths(text);
  fuzz::checkQueries(text);
  fuzz::checkShown(text);
  return 0;
}
