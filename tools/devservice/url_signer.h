#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace zantrio::devservice {

// Signs a file's path and expiry, so that a URL can replace a token.
// Thread: any.
class CUrlSigner {
 public:
  // Keeps its key in that file, so that URLs stay valid after a restart. Throws std::system_error.
  explicit CUrlSigner(const std::filesystem::path& keyFile);

  // For a message's file; `expires` is in seconds since 1970.
  std::string sign(const std::string& bucketId, const std::string& path,
                   std::uint64_t expires) const;
  // Throws CHttpError (403) if the signature does not match the file and time, or the time has
  // passed.
  void verify(const std::string& bucketId, const std::string& path, const std::string& expires,
              const std::string& signature) const;

  // A token for fetching the whole message, and whether a text is a valid one.
  std::string makeToken(const std::string& bucketId, std::uint64_t expires) const;
  bool isToken(const std::string& bucketId, const std::string& token) const;

 private:
  std::string key_;
};

}  // namespace zantrio::devservice
