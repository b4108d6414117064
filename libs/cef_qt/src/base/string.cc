#include <algorithm>
#include <cstdint>
#include <ostream>

#include "include/internal/cef_string.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

void appendUtf16(std::u16string& out, char32_t point) {
  if (point < 0x10000) {
    out.push_back(static_cast<char16_t>(point));
    return;
  }
  point -= 0x10000;
  out.push_back(static_cast<char16_t>(0xD800 + (point >> 10)));
  out.push_back(static_cast<char16_t>(0xDC00 + (point & 0x3FF)));
}

void appendUtf8(std::string& out, char32_t point) {
  auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (point < 0x80) {
    put(point);
  } else if (point < 0x800) {
    put(0xC0 | (point >> 6));
    put(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    put(0xE0 | (point >> 12));
    put(0x80 | ((point >> 6) & 0x3F));
    put(0x80 | (point & 0x3F));
  } else {
    put(0xF0 | (point >> 18));
    put(0x80 | ((point >> 12) & 0x3F));
    put(0x80 | ((point >> 6) & 0x3F));
    put(0x80 | (point & 0x3F));
  }
}

// A decoded lead byte: the number of continuation bytes, the value bits, and the bounds of the
// first continuation byte, which exclude overlong forms, surrogates and values above U+10FFFF.
struct Lead {
  int following;
  char32_t bits;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
};

Lead leadOf(unsigned char byte) {
  if (byte >= 0xC2 && byte <= 0xDF) {
    return {1, byte & 0x1Fu};
  }
  if (byte >= 0xE0 && byte <= 0xEF) {
    return {2, byte & 0x0Fu, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
            static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
  }
  if (byte >= 0xF0 && byte <= 0xF4) {
    return {3, byte & 0x07u, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
  }
  return {0, kReplacement};
}

// Decodes the character at `at` and advances past it. Malformed sequences give U+FFFD.
char32_t decodeUtf8(std::string_view text, std::size_t& at) {
  const auto first = static_cast<unsigned char>(text[at++]);
  if (first < 0x80) {
    return first;
  }
  Lead lead = leadOf(first);
  char32_t point = lead.bits;
  for (int i = 0; i < lead.following; ++i) {
    const auto next = at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
    if (next < lead.low || next > lead.high) {
      return kReplacement;
    }
    lead.low = 0x80;
    lead.high = 0xBF;
    point = (point << 6) | (next & 0x3Fu);
    ++at;
  }
  return point;
}

char32_t decodeUtf16(std::u16string_view text, std::size_t& at) {
  const char32_t unit = text[at++];
  if (isHighSurrogate(unit) && at < text.size() && isLowSurrogate(text[at])) {
    return 0x10000 + ((unit - 0xD800) << 10) + (text[at++] - 0xDC00u);
  }
  return isHighSurrogate(unit) || isLowSurrogate(unit) ? kReplacement : unit;
}

std::u16string toUtf16(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    appendUtf16(out, decodeUtf8(utf8, at));
  }
  return out;
}

std::u16string toUtf16(std::wstring_view wide) {
  std::u16string out;
  out.reserve(wide.size());
  for (wchar_t character : wide) {
    const auto point = static_cast<char32_t>(character);
    appendUtf16(out, point > 0x10FFFF ? kReplacement : point);
  }
  return out;
}

template <class Text>
auto viewOrEmpty(const Text* text) {
  using View = std::basic_string_view<Text>;
  return text ? View(text) : View();
}

void freeText(char16_t* text) {
  delete[] text;
}

}  // namespace

void cef_string_clear(cef_string_t* text) {
  if (text->dtor) {
    text->dtor(text->str);
  }
  *text = {};
}

CefString::CefString(const CefString& other) {
  assign(other.view());
}
CefString::CefString(CefString&& other) noexcept {
  if (other.text_ == &other.own_) {
    std::swap(own_, other.own_);
  } else {
    assign(other.view());
  }
}
CefString::CefString(const std::string& utf8) {
  assign(toUtf16(utf8));
}
CefString::CefString(const char* utf8) {
  assign(toUtf16(viewOrEmpty(utf8)));
}
CefString::CefString(const std::u16string& utf16) {
  assign(utf16);
}
CefString::CefString(const char16_t* utf16) {
  assign(viewOrEmpty(utf16));
}
CefString::CefString(const std::wstring& wide) {
  assign(toUtf16(std::wstring_view(wide)));
}
CefString::CefString(const wchar_t* wide) {
  assign(toUtf16(viewOrEmpty(wide)));
}
CefString::CefString(cef_string_t* field) : text_(field) {}
CefString::CefString(const cef_string_t* field) {
  assign({field->str, field->length});
}
CefString::~CefString() {
  cef_string_clear(&own_);
}

CefString& CefString::operator=(const CefString& other) {
  if (this != &other && text_ != other.text_) {
    assign(other.view());
  }
  return *this;
}
// NOLINTNEXTLINE(performance-noexcept-move-constructor)
CefString& CefString::operator=(CefString&& other) {
  if (text_ == &own_ && other.text_ == &other.own_) {
    std::swap(own_, other.own_);
    return *this;
  }
  return *this = static_cast<const CefString&>(other);
}
CefString& CefString::operator=(const std::string& utf8) {
  FromString(utf8);
  return *this;
}
CefString& CefString::operator=(const char* utf8) {
  assign(toUtf16(viewOrEmpty(utf8)));
  return *this;
}
CefString& CefString::operator=(const std::u16string& utf16) {
  FromString16(utf16);
  return *this;
}
CefString& CefString::operator=(const char16_t* utf16) {
  assign(viewOrEmpty(utf16));
  return *this;
}
CefString& CefString::operator=(const std::wstring& wide) {
  FromWString(wide);
  return *this;
}
CefString& CefString::operator=(const wchar_t* wide) {
  assign(toUtf16(viewOrEmpty(wide)));
  return *this;
}

std::string CefString::ToString() const {
  std::string out;
  out.reserve(length());
  for (std::size_t at = 0; at < length();) {
    appendUtf8(out, decodeUtf16(view(), at));
  }
  return out;
}

std::wstring CefString::ToWString() const {
  std::wstring out;
  out.reserve(length());
  for (std::size_t at = 0; at < length();) {
    out.push_back(static_cast<wchar_t>(decodeUtf16(view(), at)));
  }
  return out;
}

bool CefString::FromString(const std::string& utf8) {
  assign(toUtf16(utf8));
  return true;
}

bool CefString::FromString16(const std::u16string& utf16) {
  assign(utf16);
  return true;
}

bool CefString::FromWString(const std::wstring& wide) {
  assign(toUtf16(std::wstring_view(wide)));
  return true;
}

void CefString::assign(std::u16string_view text) {
  cef_string_t next;
  if (!text.empty()) {
    next.str = new char16_t[text.size() + 1];
    std::copy(text.begin(), text.end(), next.str);
    next.str[text.size()] = 0;
    next.length = text.size();
    next.dtor = &freeText;
  }
  cef_string_clear(text_);
  *text_ = next;
}

std::ostream& operator<<(std::ostream& out, const CefString& text) {
  return out << text.ToString();
}
