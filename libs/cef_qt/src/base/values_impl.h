// Lists and their values.
#pragma once

#include <mutex>
#include <variant>
#include <vector>

#include "include/cef_values.h"

namespace cef_qt {

// A value of a list or dictionary.
struct NullValue {};

using ValueCell = std::variant<NullValue, bool, int, double, CefString>;

CefValueType typeOf(const ValueCell& cell);

// The value of a cell, or `fallback` if the cell is null or holds another type.
template <class T>
T valueOr(const ValueCell* cell, T fallback) {
  const T* value = cell ? std::get_if<T>(cell) : nullptr;
  return value ? *value : fallback;
}

class ListValue final : public CefListValue {
 public:
  explicit ListValue(std::vector<ValueCell> cells);

  bool IsValid() override { return true; }
  bool IsReadOnly() override;
  CefRefPtr<CefListValue> Copy() override;
  bool SetSize(size_t size) override;
  size_t GetSize() override;
  bool Clear() override { return SetSize(0); }
  bool Remove(size_t index) override;
  CefValueType GetType(size_t index) override;
  bool GetBool(size_t index) override { return get(index, false); }
  int GetInt(size_t index) override { return get(index, 0); }
  double GetDouble(size_t index) override { return get(index, 0.0); }
  CefString GetString(size_t index) override { return get(index, CefString()); }
  bool SetNull(size_t index) override { return set(index, NullValue()); }
  bool SetBool(size_t index, bool value) override { return set(index, value); }
  bool SetInt(size_t index, int value) override { return set(index, value); }
  bool SetDouble(size_t index, double value) override { return set(index, value); }
  bool SetString(size_t index, const CefString& value) override { return set(index, value); }

  // Rejects changes from now on.
  void setReadOnly();
  std::vector<ValueCell> snapshot();

 private:
  template <class T>
  T get(size_t index, T fallback) {
    const std::lock_guard lock(mutex_);
    return valueOr<T>(index < cells_.size() ? &cells_[index] : nullptr, fallback);
  }
  bool set(size_t index, ValueCell cell);

  std::mutex mutex_;
  bool readOnly_ = false;         // guarded by mutex_
  std::vector<ValueCell> cells_;  // guarded by mutex_
  IMPLEMENT_REFCOUNTING(ListValue);
};

}  // namespace cef_qt
