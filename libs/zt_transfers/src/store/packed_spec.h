#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/file_spec.h"

namespace zt_transfers {

// A FileSpec without its fileId, in one block of memory of just the size it needs. The bytes are
// also how it is kept on disk.
class CPackedSpec {
 public:
  CPackedSpec() = default;
  explicit CPackedSpec(const FileSpec& spec);
  // From what `bytes` gave.
  static CPackedSpec of(std::string_view bytes);

  bool empty() const { return !block_; }
  void reset() { block_.reset(); }
  std::string_view bytes() const;

  // Nothing when the bytes are not those of a description. The fileId stays empty.
  std::optional<FileSpec> unpacked() const;
  std::optional<std::string> place() const;

 private:
  std::unique_ptr<char[]> block_;  // the number of bytes, and the bytes
};

}  // namespace zt_transfers
