#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "http/http_response.h"

namespace zt_transfers {

// A parsed Content-Range header.
struct ContentRange {
  std::optional<std::uint64_t> first;  // nothing in an answer that has no bytes ("bytes */9")
  std::uint64_t end = 0;               // one past the last byte
  std::optional<std::uint64_t> total;
};

// Nothing for a malformed or contradictory one.
std::optional<ContentRange> parseContentRange(std::string_view value);

// Digits only; nothing for anything else, or for more than 2^63 - 1.
std::optional<std::uint64_t> parseLength(std::string_view text);

// What was asked for, and what is known of the file.
struct RangeRequest {
  std::uint64_t begin = 0;
  std::optional<std::uint64_t> end{};   // nothing: to the end of the file
  bool ranged = false;                  // with a Range header
  std::string validator{};              // of the version that was begun; empty: any version will do
  std::optional<std::uint64_t> size{};  // of that version
};

// What the head of an answer means for the file.
struct FetchPlan {
  enum class Kind {
    kBody,       // the body is bytes of the file, from `begin` on
    kComplete,   // everything was there already
    kStartOver,  // nothing of what is there can be used: ask for all of it
    kOther,      // no part of the file; the answer's status says why
  };

  Kind kind = Kind::kOther;
  std::uint64_t begin = 0;
  std::optional<std::uint64_t> end{};   // where the body ends, if the server says so
  std::optional<std::uint64_t> size{};  // of the whole file, if the server says so
  std::string validator{};              // strong ones only
  bool partial = false;                 // it is the range that was asked for
  bool offersRanges = false;            // the server does ranges, of the very same bytes
  std::string reason{};                 // of kStartOver, for the log
};

FetchPlan planResponse(const HttpResponse& head, const RangeRequest& rangeRequest);

// What If-Range can be asked with: the strong ETag, else the Last-Modified date, else nothing.
std::string validatorOf(const HttpResponse& head);

// Whether it names one version, to the byte; a date only names a second.
bool isExact(const std::string& validator);

}  // namespace zt_transfers
