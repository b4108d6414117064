#include "services/openable_url.h"

#include <Poco/Exception.h>
#include <Poco/String.h>
#include <Poco/URI.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace zantrio {
namespace {

bool isLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// The characters that a URL may contain: no blanks, quotes, backslashes, control characters or
// non-ASCII bytes.
bool isUrlCharacter(char c) {
  constexpr std::string_view kMarks = "-._~:/?#[]@!$&'()*+,;=%";
  return isLetterOrDigit(c) || kMarks.find(c) != std::string_view::npos;
}

bool isWebScheme(std::string_view scheme) {
  return scheme == "http" || scheme == "https";
}

bool isMessageScheme(std::string_view scheme) {
  constexpr std::array<std::string_view, 3> kSchemes = {"mailto", "tel", "sms"};
  return std::find(kSchemes.begin(), kSchemes.end(), scheme) != kSchemes.end();
}

bool hasControl(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
  });
}

std::string decoded(std::string_view text) {
  std::string plain;
  Poco::URI::decode(std::string(text), plain);
  return plain;
}

// Openers that translate the letter for a mail program put recipients in quotes and separate its
// fields with commas: these characters could begin a field of their own.
bool areRecipients(std::string_view text) {
  const std::string plain = decoded(text);
  return !plain.starts_with('-') && plain.find_first_of("='\"\\") == std::string::npos &&
         !hasControl(plain);
}

bool isOneField(std::string_view text) {
  return text.find(',') == std::string_view::npos && !text.starts_with('\'');
}

bool isLine(std::string_view text) {
  return isOneField(text) && !hasControl(decoded(text));
}

bool isBody(std::string_view text) {
  std::string plain = decoded(text);
  std::erase_if(plain, [](char c) { return c == '\r' || c == '\n' || c == '\t'; });
  return isOneField(text) && !hasControl(plain);
}

// Only what a reader sees and may change. Mail programs attach the files that other fields name.
bool isLetterField(std::string_view field) {
  const auto sign = field.find('=');
  if (sign == std::string_view::npos) {
    return true;
  }
  const std::string key = Poco::toLower(std::string(field.substr(0, sign)));
  const std::string_view value = field.substr(sign + 1);
  if (key == "to" || key == "cc" || key == "bcc") {
    return areRecipients(value);
  }
  return key == "body" ? isBody(value)
                       : (key == "subject" || key == "in-reply-to") && isLine(value);
}

// Fields are separated as loosely as any mail program may do it.
bool isOpenableLetter(std::string_view letter) {
  constexpr std::string_view kSeparators = "?&;#";
  const auto next = [&] { return std::min(letter.find_first_of(kSeparators), letter.size()); };
  bool isOpenable = areRecipients(letter.substr(0, next()));
  while (isOpenable && next() < letter.size()) {
    letter.remove_prefix(next() + 1);
    isOpenable = isLetterField(letter.substr(0, next()));
  }
  return isOpenable;
}

}  // namespace

bool isOpenableUrl(const std::string& url) {
  if (!std::all_of(url.begin(), url.end(), isUrlCharacter)) {
    return false;
  }
  try {
    const Poco::URI parsed(url);  // scheme and host come out in lower case
    const std::string& scheme = parsed.getScheme();
    if (isWebScheme(scheme)) {
      return !parsed.getHost().empty();
    }
    if (!isMessageScheme(scheme)) {
      return false;
    }
    const std::string_view rest = std::string_view(url).substr(scheme.size() + 1);
    return !rest.empty() && !rest.starts_with('-') &&
           (scheme != "mailto" || isOpenableLetter(rest));
  } catch (const Poco::Exception&) {
    return false;
  }
}

}  // namespace zantrio
