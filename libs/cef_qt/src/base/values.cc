#include <map>
#include <mutex>
#include <vector>

#include "base/values_impl.h"
#include "include/cef_values.h"

namespace cef_qt {

CefValueType typeOf(const ValueCell& cell) {
  constexpr CefValueType kTypes[] = {VTYPE_NULL, VTYPE_BOOL, VTYPE_INT, VTYPE_DOUBLE, VTYPE_STRING};
  return kTypes[cell.index()];
}

namespace {

// Reserves room for the router's largest process message, which has five arguments.
constexpr std::size_t kReservedSize = 5;

class DictionaryValue final : public CefDictionaryValue {
 public:
  bool IsValid() override { return true; }
  bool IsReadOnly() override { return false; }
  size_t GetSize() override {
    const std::lock_guard lock(mutex_);
    return cells_.size();
  }
  bool Clear() override {
    const std::lock_guard lock(mutex_);
    cells_.clear();
    return true;
  }
  bool HasKey(const CefString& key) override {
    const std::lock_guard lock(mutex_);
    return cells_.count(key) > 0;
  }
  bool GetKeys(KeyList& keys) override {
    const std::lock_guard lock(mutex_);
    keys.clear();
    for (const auto& [key, cell] : cells_) {
      keys.push_back(key);
    }
    return true;
  }
  bool Remove(const CefString& key) override {
    const std::lock_guard lock(mutex_);
    return cells_.erase(key) > 0;
  }
  CefValueType GetType(const CefString& key) override {
    const std::lock_guard lock(mutex_);
    const ValueCell* cell = find(key);
    return cell ? typeOf(*cell) : VTYPE_INVALID;
  }
  bool GetBool(const CefString& key) override { return get(key, false); }
  int GetInt(const CefString& key) override { return get(key, 0); }
  double GetDouble(const CefString& key) override { return get(key, 0.0); }
  CefString GetString(const CefString& key) override { return get(key, CefString()); }
  bool SetNull(const CefString& key) override { return set(key, NullValue()); }
  bool SetBool(const CefString& key, bool value) override { return set(key, value); }
  bool SetInt(const CefString& key, int value) override { return set(key, value); }
  bool SetDouble(const CefString& key, double value) override { return set(key, value); }
  bool SetString(const CefString& key, const CefString& value) override { return set(key, value); }

 private:
  const ValueCell* find(const CefString& key) const {
    const auto found = cells_.find(key);
    return found == cells_.end() ? nullptr : &found->second;
  }
  template <class T>
  T get(const CefString& key, T fallback) {
    const std::lock_guard lock(mutex_);
    return valueOr<T>(find(key), fallback);
  }
  bool set(const CefString& key, ValueCell cell) {
    const std::lock_guard lock(mutex_);
    cells_[key] = std::move(cell);
    return true;
  }

  std::mutex mutex_;
  std::map<CefString, ValueCell> cells_;
  IMPLEMENT_REFCOUNTING(DictionaryValue);
};

}  // namespace

ListValue::ListValue(std::vector<ValueCell> cells) : cells_(std::move(cells)) {}

CefRefPtr<CefListValue> ListValue::Copy() {
  return new ListValue(snapshot());
}

std::vector<ValueCell> ListValue::snapshot() {
  const std::lock_guard lock(mutex_);
  return cells_;
}

bool ListValue::SetSize(size_t size) {
  const std::lock_guard lock(mutex_);
  if (readOnly_) {
    return false;
  }
  cells_.resize(size);
  return true;
}

size_t ListValue::GetSize() {
  const std::lock_guard lock(mutex_);
  return cells_.size();
}

bool ListValue::Remove(size_t index) {
  const std::lock_guard lock(mutex_);
  if (readOnly_ || index >= cells_.size()) {
    return false;
  }
  cells_.erase(cells_.begin() + static_cast<std::ptrdiff_t>(index));
  return true;
}

CefValueType ListValue::GetType(size_t index) {
  const std::lock_guard lock(mutex_);
  return index < cells_.size() ? typeOf(cells_[index]) : VTYPE_INVALID;
}

bool ListValue::IsReadOnly() {
  const std::lock_guard lock(mutex_);
  return readOnly_;
}

void ListValue::setReadOnly() {
  const std::lock_guard lock(mutex_);
  readOnly_ = true;
}

bool ListValue::set(size_t index, ValueCell cell) {
  const std::lock_guard lock(mutex_);
  if (readOnly_) {
    return false;
  }
  if (index >= cells_.size()) {
    cells_.reserve(kReservedSize);
    cells_.resize(index + 1);
  }
  cells_[index] = std::move(cell);
  return true;
}

}  // namespace cef_qt

CefRefPtr<CefListValue> CefListValue::Create() {
  return new cef_qt::ListValue({});
}

CefRefPtr<CefDictionaryValue> CefDictionaryValue::Create() {
  return new cef_qt::DictionaryValue();
}
