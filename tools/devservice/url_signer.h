#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace zantrio::devservice {

// Signs what may be fetched until when, so that an address can be handed out instead of a token.
// Thread: any.
class CUrlSigner {
 public:
  // Keeps its key in that file, so that addresses outlive a restart. Throws std::system_error.
  explicit CUrlSigner(const std::filesystem::path& keyFile);

  // For a message's file; `expires` is in seconds since 1970.
  std::string sign(const std::string& bucketId, const std::string& path,
                   std::uint64_t expires) const;
  // Throws CHttpError (403) when the signature is not that of the file and time, or the time is
  // over.
  void verify(const std::string& bucketId, const std::string& path, const std::string& expires,
              const std::string& signature) const;

  // A token for fetching the whole message, and whether a text is one that is still valid.
  std::string makeToken(const std::string& bucketId, std::uint64_t expires) const;
  bool isToken(const std::string& bucketId, const std::string& token) const;

 private:
  std::string key_;
};

}  // namespace zantrio::devservice
