#include "devservice/md5.h"

#include <Poco/Base64Decoder.h>
#include <Poco/StreamCopier.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <charconv>
#include <sstream>
#include <stdexcept>

namespace zantrio::devservice {

void CMd5::Deleter::operator()(evp_md_ctx_st* context) const {
  EVP_MD_CTX_free(context);
}

CMd5::CMd5() : context_(EVP_MD_CTX_new()) {
  if (!context_ || EVP_DigestInit_ex(context_.get(), EVP_md5(), nullptr) != 1) {
    throw std::runtime_error("MD5 is not available");
  }
}

void CMd5::update(const void* data, std::size_t size) {
  EVP_DigestUpdate(context_.get(), data, size);
}

std::string CMd5::finish() {
  std::string digest(16, '\0');
  EVP_DigestFinal_ex(context_.get(), reinterpret_cast<unsigned char*>(digest.data()), nullptr);
  return digest;
}

std::string toHex(const std::string& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += kDigits[value >> 4];
    text += kDigits[value & 15];
  }
  return text;
}

std::string fromHex(const std::string& text) {
  std::string bytes(text.size() / 2, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char* begin = text.data() + 2 * i;
    unsigned char value = 0;
    const auto [end, error] = std::from_chars(begin, begin + 2, value, 16);
    if (error != std::errc() || end != begin + 2) {
      return {};
    }
    bytes[i] = static_cast<char>(value);
  }
  return bytes;
}

std::string fromBase64(const std::string& text) {
  try {
    std::istringstream encoded(text);
    Poco::Base64Decoder decoder(encoded);
    std::string bytes;
    Poco::StreamCopier::copyToString(decoder, bytes);
    return bytes;
  } catch (const std::exception&) {
    return {};
  }
}

std::string randomHex(std::size_t size) {
  std::string bytes(size, '\0');
  if (RAND_bytes(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(size)) != 1) {
    throw std::runtime_error("the system has no random numbers");
  }
  return toHex(bytes);
}

}  // namespace zantrio::devservice
