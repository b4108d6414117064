#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/file_spec.h"

namespace zt_transfers {

// A FileSpec without its fileId, in one block of memory of the size that it needs. The same bytes
// are stored on disk.
class CPackedSpec {
 public:
  CPackedSpec() = default;
  explicit CPackedSpec(const FileSpec& spec);
  // From the result of `bytes`.
  static CPackedSpec of(std::string_view bytes);

  bool empty() const { return !block_; }
  void reset() { block_.reset(); }
  std::string_view bytes() const;

  // Nothing when the bytes are malformed. The fileId stays empty.
  std::optional<FileSpec> unpacked() const;
  std::optional<std::string> location() const;

 private:
  std::unique_ptr<char[]> block_;  // the number of bytes, and the bytes
};

}  // namespace zt_transfers
