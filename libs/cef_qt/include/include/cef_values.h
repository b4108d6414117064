// Lists and dictionaries of plain values.
#ifndef CEF_INCLUDE_CEF_VALUES_H_
#define CEF_INCLUDE_CEF_VALUES_H_

#include <vector>

#include "include/cef_base.h"

using CefValueType = cef_value_type_t;

// A list of values. Setting a value beyond the end extends the list with nulls. Reading a missing
// value or one of another type returns false, 0 or "". Thread-safe.
class CefListValue : public virtual CefBaseRefCounted {
 public:
  static CefRefPtr<CefListValue> Create();

  virtual bool IsValid() = 0;
  virtual bool IsReadOnly() = 0;
  virtual CefRefPtr<CefListValue> Copy() = 0;
  virtual bool SetSize(size_t size) = 0;
  virtual size_t GetSize() = 0;
  virtual bool Clear() = 0;
  virtual bool Remove(size_t index) = 0;
  virtual CefValueType GetType(size_t index) = 0;
  virtual bool GetBool(size_t index) = 0;
  virtual int GetInt(size_t index) = 0;
  virtual double GetDouble(size_t index) = 0;
  virtual CefString GetString(size_t index) = 0;
  virtual bool SetNull(size_t index) = 0;
  virtual bool SetBool(size_t index, bool value) = 0;
  virtual bool SetInt(size_t index, int value) = 0;
  virtual bool SetDouble(size_t index, double value) = 0;
  virtual bool SetString(size_t index, const CefString& value) = 0;
};

// Values by name; otherwise like CefListValue.
class CefDictionaryValue : public virtual CefBaseRefCounted {
 public:
  using KeyList = std::vector<CefString>;

  static CefRefPtr<CefDictionaryValue> Create();

  virtual bool IsValid() = 0;
  virtual bool IsReadOnly() = 0;
  virtual size_t GetSize() = 0;
  virtual bool Clear() = 0;
  virtual bool HasKey(const CefString& key) = 0;
  virtual bool GetKeys(KeyList& keys) = 0;
  virtual bool Remove(const CefString& key) = 0;
  virtual CefValueType GetType(const CefString& key) = 0;
  virtual bool GetBool(const CefString& key) = 0;
  virtual int GetInt(const CefString& key) = 0;
  virtual double GetDouble(const CefString& key) = 0;
  virtual CefString GetString(const CefString& key) = 0;
  virtual bool SetNull(const CefString& key) = 0;
  virtual bool SetBool(const CefString& key, bool value) = 0;
  virtual bool SetInt(const CefString& key, int value) = 0;
  virtual bool SetDouble(const CefString& key, double value) = 0;
  virtual bool SetString(const CefString& key, const CefString& value) = 0;
};

#endif  // CEF_INCLUDE_CEF_VALUES_H_
