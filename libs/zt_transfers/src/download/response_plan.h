#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "http/http_response.h"

namespace zt_transfers {

// A parsed Content-Range header.
struct ContentRange {
  std::optional<std::uint64_t> first;  // without: the response has no bytes ("bytes */9")
  std::uint64_t end = 0;               // one past the last byte
  std::optional<std::uint64_t> total;
};

// std::nullopt for a malformed or contradictory header.
std::optional<ContentRange> parseContentRange(std::string_view value);

// std::nullopt for anything but digits, and for more than 2^63 - 1.
std::optional<std::uint64_t> parseLength(std::string_view text);

// The range to be requested, and the known version of the file.
struct RangeRequest {
  std::uint64_t begin = 0;
  std::optional<std::uint64_t> end{};   // without: to the end of the file
  bool ranged = false;                  // with a Range header
  std::string validator{};              // of the version that has begun; empty: any version
  std::optional<std::uint64_t> size{};  // of that version
};

// The meaning of a response's head for the file.
struct FetchPlan {
  enum class Kind {
    kBody,       // the body is bytes of the file, from `begin` on
    kComplete,   // all bytes have arrived already
    kStartOver,  // the bytes that have arrived cannot be used: request the whole file
    kOther,      // not content; the response's status says why
  };

  Kind kind = Kind::kOther;
  std::uint64_t begin = 0;
  std::optional<std::uint64_t> end{};   // where the body ends, if the server says so
  std::optional<std::uint64_t> size{};  // of the whole file, if the server says so
  std::string validator{};              // strong ones only
  bool partial = false;                 // the body is the requested range
  bool offersRanges = false;            // the server supports ranges of exactly this version
  bool endsUnmarked = false;            // the body ends where the connection ends
  std::string reason{};                 // of kStartOver, for the log
};

FetchPlan planResponse(const HttpResponse& head, const RangeRequest& rangeRequest);

// The value for If-Range: the strong ETag, else the Last-Modified date, else empty.
std::string validatorOf(const HttpResponse& head);

// Whether the validator identifies one version byte by byte; a date only identifies a second.
bool isExact(const std::string& validator);

}  // namespace zt_transfers
