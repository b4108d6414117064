#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "hash/md5.h"

namespace zt_transfers {

// The MD5 digest of a file that is being written: computed in the order of its bytes, whatever the
// order in which they come. What is not given as it comes is read back from the file.
//
// Thread: one at a time.
class CContentHash {
 public:
  // So many bytes from the beginning are in it.
  std::uint64_t position() const { return position_; }
  // The bytes at `position`.
  void add(const char* data, std::size_t size);
  // Those up to `end`, from the open file. Throws std::system_error.
  void readBack(int file, std::uint64_t end);
  // In lower-case hexadecimal. Ends the computation.
  std::string finish() { return md5_.finish(); }

 private:
  CMd5 md5_;
  std::uint64_t position_ = 0;
};

}  // namespace zt_transfers
