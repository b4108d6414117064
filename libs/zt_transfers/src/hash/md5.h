#pragma once

#include <cstddef>
#include <memory>
#include <string>

struct evp_md_ctx_st;

namespace zt_transfers {

// An MD5 digest, computed piece by piece. Thread: one at a time.
class CMd5 {
 public:
  // Throws std::runtime_error where OpenSSL does not offer MD5.
  CMd5();

  void add(const void* data, std::size_t size);
  // The digest in lower-case hexadecimal. Ends the computation.
  std::string finish();

 private:
  struct Deleter {
    void operator()(evp_md_ctx_st* context) const;
  };

  std::unique_ptr<evp_md_ctx_st, Deleter> context_;
};

}  // namespace zt_transfers
