#pragma once

#include <json/json.h>

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zantrio::devservice {

// The fault of one request.
struct Fault {
  enum class Type { kNone, kStatus, kReset, kStall, kDelay, kRate, kEtag, kTruncate, kCorrupt };

  Type type = Type::kNone;
  int status = 503;                  // kStatus
  std::optional<int> retryAfter;     // kStatus: seconds
  std::string body;                  // kStatus: the response's; empty: the usual one
  std::uint64_t afterBytes = 0;      // kReset, kStall, kTruncate, kCorrupt: of the body
  std::uint64_t milliseconds = 0;    // kDelay; kStall: 0 means until the service ends
  std::uint64_t bytesPerSecond = 0;  // kRate
  std::string etag;                  // kEtag: without its quotes
};

// Rules that make selected requests fail. The oldest matching rule that is not used up applies.
// Thread: any.
class CFaultRules {
 public:
  // Adds a rule; returns it with its id. Throws CHttpError (400) for an invalid rule.
  Json::Value add(const Json::Value& rule);
  Json::Value list() const;
  bool remove(int id);
  void clear();

  // The fault for a request, selected by method, decoded path and raw query; counts as one use of
  // the rule.
  Fault match(const std::string& method, const std::string& path, const std::string& query = {});

 private:
  struct Rule {
    int id = 0;
    Json::Value text;    // as received
    std::string method;  // empty: any
    std::string path;    // pattern with * and ?
    std::string query;   // likewise
    std::uint64_t skip = 0;
    std::optional<std::uint64_t> count;  // none: unlimited
    Fault fault;
    std::uint64_t seen = 0;
    std::uint64_t used = 0;
  };

  static Json::Value describe(const Rule& rule);

  mutable std::mutex mutex_;
  // Guarded by mutex_.
  std::vector<Rule> rules_;
  int lastId_ = 0;
};

// Whether the text matches a pattern of literal characters, * (any text) and ? (one byte).
bool matchesPattern(const std::string& pattern, const std::string& text);

}  // namespace zantrio::devservice
