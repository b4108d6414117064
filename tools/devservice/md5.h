#pragma once

#include <cstddef>
#include <memory>
#include <string>

struct evp_md_ctx_st;

namespace zantrio::devservice {

// MD5 of a stream of bytes. One use: update any number of times, then finish once.
class CMd5 {
 public:
  CMd5();

  void update(const void* data, std::size_t size);
  // The digest as 16 raw bytes.
  std::string finish();

 private:
  struct Deleter {
    void operator()(evp_md_ctx_st* context) const;
  };
  std::unique_ptr<evp_md_ctx_st, Deleter> context_;
};

// Lower-case hexadecimal.
std::string toHex(const std::string& bytes);
// The raw bytes of hexadecimal text of even length; empty if it is invalid.
std::string fromHex(const std::string& text);
// The raw bytes of base64 text; empty if it is invalid.
std::string fromBase64(const std::string& text);
// `size` random bytes in hexadecimal, suitable for tokens.
std::string randomHex(std::size_t size);

}  // namespace zantrio::devservice
