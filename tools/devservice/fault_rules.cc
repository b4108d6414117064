#include "devservice/fault_rules.h"

#include <algorithm>
#include <map>

#include "devservice/http_error.h"

namespace zantrio::devservice {

namespace {

[[noreturn]] void refuse(const std::string& why) {
  throw CHttpError(400, "bad_rule", why);
}

std::uint64_t number(const Json::Value& rule, const char* key, std::uint64_t fallback) {
  const Json::Value& value = rule[key];
  if (value.isNull()) {
    return fallback;
  }
  if (!value.isUInt64()) {
    refuse(std::string("\"") + key + "\" must be a whole number, not negative");
  }
  return value.asUInt64();
}

std::string text(const Json::Value& rule, const char* key, const char* fallback) {
  const Json::Value& value = rule[key];
  if (value.isNull()) {
    return fallback;
  }
  if (!value.isString()) {
    refuse(std::string("\"") + key + "\" must be a text");
  }
  return value.asString();
}

void needNumber(const Json::Value& rule, const char* key) {
  if (!rule[key].isUInt64()) {
    refuse("a fault of type \"" + rule["type"].asString() + "\" needs \"" + key + "\", a number");
  }
}

Fault::Type parseType(const Json::Value& rule) {
  static const std::map<std::string, Fault::Type> kTypes = {
      {"status", Fault::Type::kStatus},     {"reset", Fault::Type::kReset},
      {"stall", Fault::Type::kStall},       {"delay", Fault::Type::kDelay},
      {"rate", Fault::Type::kRate},         {"etag", Fault::Type::kEtag},
      {"truncate", Fault::Type::kTruncate}, {"corrupt", Fault::Type::kCorrupt}};
  const auto type = kTypes.find(text(rule, "type", ""));
  if (type == kTypes.end()) {
    refuse("\"type\" must be one of status, reset, stall, delay, rate, etag, truncate and corrupt");
  }
  return type->second;
}

Fault parseFault(const Json::Value& rule) {
  Fault fault;
  fault.type = parseType(rule);
  fault.status = static_cast<int>(number(rule, "status", 503));
  if (fault.status < 200 || fault.status > 599) {
    refuse("\"status\" must lie between 200 and 599");
  }
  if (!rule["retryAfter"].isNull()) {
    fault.retryAfter = static_cast<int>(number(rule, "retryAfter", 0));
  }
  fault.body = text(rule, "body", "");
  fault.afterBytes = number(rule, "afterBytes", 0);
  fault.milliseconds = number(rule, "milliseconds", 0);
  fault.bytesPerSecond = number(rule, "bytesPerSecond", 0);
  fault.etag = text(rule, "etag", "00000000000000000000000000000000");
  if (fault.type == Fault::Type::kDelay) {
    needNumber(rule, "milliseconds");
  }
  if (fault.type == Fault::Type::kRate) {
    needNumber(rule, "bytesPerSecond");
    if (fault.bytesPerSecond == 0) {
      refuse("\"bytesPerSecond\" must be above 0; use \"stall\" to stop a request");
    }
  }
  return fault;
}

}  // namespace

bool matchesPattern(const std::string& pattern, const std::string& text) {
  std::size_t p = 0;
  std::size_t t = 0;
  std::size_t star = std::string::npos;
  std::size_t mark = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      mark = t;
    } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
      ++p;
      ++t;
    } else if (star != std::string::npos) {
      p = star + 1;
      t = ++mark;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string::npos;
}

Json::Value CFaultRules::add(const Json::Value& rule) {
  if (!rule.isObject()) {
    refuse("a rule is a JSON object");
  }
  Rule added;
  added.text = rule;
  added.method = text(rule, "method", "");
  added.path = text(rule, "path", "*");
  added.query = text(rule, "query", "*");
  added.skip = number(rule, "skip", 0);
  if (!rule["count"].isNull()) {
    added.count = number(rule, "count", 1);
  }
  added.fault = parseFault(rule);

  const std::lock_guard lock(mutex_);
  added.id = ++lastId_;
  rules_.push_back(std::move(added));
  return describe(rules_.back());
}

Json::Value CFaultRules::list() const {
  const std::lock_guard lock(mutex_);
  Json::Value all(Json::arrayValue);
  for (const Rule& rule : rules_) {
    all.append(describe(rule));
  }
  return all;
}

bool CFaultRules::remove(int id) {
  const std::lock_guard lock(mutex_);
  return std::erase_if(rules_, [id](const Rule& rule) { return rule.id == id; }) > 0;
}

void CFaultRules::clear() {
  const std::lock_guard lock(mutex_);
  rules_.clear();
}

Fault CFaultRules::match(const std::string& method, const std::string& path,
                         const std::string& query) {
  const std::lock_guard lock(mutex_);
  for (Rule& rule : rules_) {
    const bool usedUp = rule.count && rule.used >= *rule.count;
    if (usedUp || (!rule.method.empty() && rule.method != method) ||
        !matchesPattern(rule.path, path) || !matchesPattern(rule.query, query)) {
      continue;
    }
    if (rule.seen++ < rule.skip) {
      continue;
    }
    ++rule.used;
    return rule.fault;
  }
  return {};
}

Json::Value CFaultRules::describe(const Rule& rule) {
  Json::Value described = rule.text;
  described["id"] = rule.id;
  described["used"] = Json::UInt64(rule.used);
  return described;
}

}  // namespace zantrio::devservice
