#pragma once

#include <string>
#include <string_view>

namespace zt_transfers {

// Codes for why a file failed or a group waits. They do not change between versions: they are
// stored with the queue, sent to the service, and translated by the page. docs/transfers.md
// explains each.
namespace failure {
inline constexpr std::string_view kOther = "failed";
inline constexpr std::string_view kUrlExpired = "url_expired";
inline constexpr std::string_view kTokenExpired = "token_expired";
inline constexpr std::string_view kBadUrl = "bad_url";
inline constexpr std::string_view kBadRequest = "bad_request";
inline constexpr std::string_view kSourceMissing = "source_missing";
inline constexpr std::string_view kSourceUnreadable = "source_unreadable";
inline constexpr std::string_view kSourceChanged = "source_changed";
inline constexpr std::string_view kUnsafePath = "unsafe_path";
inline constexpr std::string_view kTargetMissing = "target_missing";
inline constexpr std::string_view kTargetUnusable = "target_unusable";
inline constexpr std::string_view kDiskFull = "disk_full";
inline constexpr std::string_view kDiskTrouble = "disk_trouble";
inline constexpr std::string_view kRefused = "refused";
inline constexpr std::string_view kServerBusy = "server_busy";
inline constexpr std::string_view kServerTrouble = "server_trouble";
inline constexpr std::string_view kWrongDigest = "wrong_digest";
inline constexpr std::string_view kWrongSize = "wrong_size";
inline constexpr std::string_view kServerChanged = "server_changed";
inline constexpr std::string_view kCannotConnect = "cannot_connect";
inline constexpr std::string_view kConnectionLost = "connection_lost";
inline constexpr std::string_view kProxyAuth = "proxy_auth";
inline constexpr std::string_view kNotTrusted = "not_trusted";
inline constexpr std::string_view kQueueUnreadable = "queue_unreadable";
}  // namespace failure

// Why something cannot be done, as found; `code` is one of the above.
struct Problem {
  std::string_view code = failure::kOther;
  std::string reason;  // for people; no secrets
};

// The same for storing: limited in length and free of control characters.
struct Failure {
  static constexpr std::size_t kMaxReason = 300;  // bytes

  std::string code;
  std::string reason;

  bool operator==(const Failure&) const = default;
};

Failure failureOf(std::string_view code, std::string_view reason);

}  // namespace zt_transfers
