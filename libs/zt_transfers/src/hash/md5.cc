#include "hash/md5.h"

#include <openssl/evp.h>

#include <stdexcept>

namespace zt_transfers {
namespace {

struct AlgorithmDeleter {
  void operator()(EVP_MD* algorithm) const { EVP_MD_free(algorithm); }
};

// Looked up once: a look-up takes longer than hashing a small file.
const EVP_MD* algorithm() {
  static const std::unique_ptr<EVP_MD, AlgorithmDeleter> md5(EVP_MD_fetch(nullptr, "MD5", nullptr));
  return md5.get();
}

}  // namespace

void CMd5::Deleter::operator()(evp_md_ctx_st* context) const {
  EVP_MD_CTX_free(context);
}

CMd5::CMd5() : context_(EVP_MD_CTX_new()) {
  if (!context_ || algorithm() == nullptr ||
      EVP_DigestInit_ex2(context_.get(), algorithm(), nullptr) != 1) {
    throw std::runtime_error("MD5 is not available");
  }
}

void CMd5::add(const void* data, std::size_t size) {
  EVP_DigestUpdate(context_.get(), data, size);
}

std::string CMd5::finish() {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned length = 0;
  EVP_DigestFinal_ex(context_.get(), digest, &length);
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (unsigned at = 0; at < length; ++at) {
    text.push_back(kDigits[digest[at] >> 4]);
    text.push_back(kDigits[digest[at] & 0xF]);
  }
  return text;
}

}  // namespace zt_transfers
