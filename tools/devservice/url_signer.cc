#include "devservice/url_signer.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <charconv>
#include <ctime>

#include "devservice/file_io.h"
#include "devservice/http_error.h"
#include "devservice/md5.h"

namespace zantrio::devservice {

namespace {

constexpr std::size_t kKeySize = 32;

std::string readOrMakeKey(const std::filesystem::path& file) {
  std::string key = readText(file);
  if (key.size() != 2 * kKeySize) {
    key = randomHex(kKeySize);
    replaceText(file, key);
  }
  return key;
}

bool equal(const std::string& a, const std::string& b) {
  return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace

CUrlSigner::CUrlSigner(const std::filesystem::path& keyFile) : key_(readOrMakeKey(keyFile)) {}

std::string CUrlSigner::sign(const std::string& bucketId, const std::string& path,
                             std::uint64_t expires) const {
  // Buckets have no slash and paths no NUL, so different files have different texts.
  const std::string text = bucketId + "/" + path + '\0' + std::to_string(expires);
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  HMAC(EVP_sha256(), key_.data(), static_cast<int>(key_.size()),
       reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data(), &size);
  return toHex(std::string(digest.begin(), digest.begin() + size));
}

void CUrlSigner::verify(const std::string& bucketId, const std::string& path,
                        const std::string& expires, const std::string& signature) const {
  std::uint64_t time = 0;
  std::from_chars(expires.data(), expires.data() + expires.size(), time);
  if (!equal(signature, sign(bucketId, path, time))) {
    throw CHttpError(403, "wrong_signature", "The address is not one that the service gave out.");
  }
  if (time < static_cast<std::uint64_t>(std::time(nullptr))) {
    throw CHttpError(403, "url_expired", "The address has expired; ask for a new one.");
  }
}

std::string CUrlSigner::makeToken(const std::string& bucketId, std::uint64_t expires) const {
  return std::to_string(expires) + "-" + sign(bucketId, "", expires);
}

bool CUrlSigner::isToken(const std::string& bucketId, const std::string& token) const {
  const auto dash = token.find('-');
  if (dash == std::string::npos) {
    return false;
  }
  try {
    verify(bucketId, "", token.substr(0, dash), token.substr(dash + 1));
    return true;
  } catch (const CHttpError&) {
    return false;
  }
}

}  // namespace zantrio::devservice
