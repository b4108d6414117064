// The framework's text type: UTF-16.
#ifndef CEF_INCLUDE_INTERNAL_CEF_STRING_H_
#define CEF_INCLUDE_INTERNAL_CEF_STRING_H_

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

// Text in a plain structure (settings, window descriptions). Read and written through CefString.
// `dtor` frees `str`; null when the text is borrowed.
struct cef_string_t {
  char16_t* str = nullptr;
  std::size_t length = 0;
  void (*dtor)(char16_t* str) = nullptr;
};

// Frees the text of a structure's field and leaves it empty.
void cef_string_clear(cef_string_t* text);

// UTF-16 text. Owns its characters or refers to the field of a structure: `CefString(&field) =
// text` writes the field. Text is not validated: lone surrogates and NUL are kept in UTF-16 and
// become U+FFFD and NUL in UTF-8. Copies are independent.
class CefString {
 public:
  CefString() = default;
  CefString(const CefString& other);
  CefString(CefString&& other) noexcept;
  CefString(const std::string& utf8);      // NOLINT(google-explicit-constructor)
  CefString(const char* utf8);             // NOLINT(google-explicit-constructor)
  CefString(const std::u16string& utf16);  // NOLINT(google-explicit-constructor)
  CefString(const char16_t* utf16);        // NOLINT(google-explicit-constructor)
  CefString(const std::wstring& wide);     // NOLINT(google-explicit-constructor)
  CefString(const wchar_t* wide);          // NOLINT(google-explicit-constructor)
  CefString(cef_string_t* field);          // NOLINT(google-explicit-constructor)
  CefString(const cef_string_t* field);    // NOLINT(google-explicit-constructor)
  ~CefString();

  CefString& operator=(const CefString& other);
  // Copies, and may run out of memory, where one of both is a structure's field.
  // NOLINTNEXTLINE(performance-noexcept-move-constructor)
  CefString& operator=(CefString&& other);
  CefString& operator=(const std::string& utf8);
  CefString& operator=(const char* utf8);
  CefString& operator=(const std::u16string& utf16);
  CefString& operator=(const char16_t* utf16);
  CefString& operator=(const std::wstring& wide);
  CefString& operator=(const wchar_t* wide);

  std::string ToString() const;
  std::u16string ToString16() const { return std::u16string(view()); }
  std::wstring ToWString() const;
  operator std::string() const { return ToString(); }    // NOLINT(google-explicit-constructor)
  operator std::wstring() const { return ToWString(); }  // NOLINT(google-explicit-constructor)

  bool FromString(const std::string& utf8);
  bool FromString16(const std::u16string& utf16);
  bool FromWString(const std::wstring& wide);

  // The characters, valid until the text changes; null if it is empty.
  const char16_t* c_str() const { return text_->str; }
  std::size_t length() const { return text_->length; }
  std::size_t size() const { return length(); }
  bool empty() const { return length() == 0; }
  void clear() { cef_string_clear(text_); }
  // Negative, zero or positive, by UTF-16 units.
  int compare(const CefString& other) const { return view().compare(other.view()); }

 private:
  std::u16string_view view() const { return {text_->str, text_->length}; }
  void assign(std::u16string_view text);

  cef_string_t own_;
  cef_string_t* text_ = &own_;
};

inline bool operator==(const CefString& a, const CefString& b) {
  return a.compare(b) == 0;
}
inline bool operator!=(const CefString& a, const CefString& b) {
  return a.compare(b) != 0;
}
inline bool operator<(const CefString& a, const CefString& b) {
  return a.compare(b) < 0;
}
inline bool operator<=(const CefString& a, const CefString& b) {
  return a.compare(b) <= 0;
}
inline bool operator>(const CefString& a, const CefString& b) {
  return a.compare(b) > 0;
}
inline bool operator>=(const CefString& a, const CefString& b) {
  return a.compare(b) >= 0;
}

std::ostream& operator<<(std::ostream& out, const CefString& text);

#endif  // CEF_INCLUDE_INTERNAL_CEF_STRING_H_
