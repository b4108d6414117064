#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "engine/file_spec.h"

namespace zt_transfers {

// A FileSpec in one block of memory of just the size it needs: a waiting file costs its texts,
// a byte or two for each and one allocation.
class CPackedSpec {
 public:
  CPackedSpec() = default;
  explicit CPackedSpec(const FileSpec& spec);

  FileSpec unpacked() const;
  std::string_view fileId() const;
  std::string_view place() const;

 private:
  std::unique_ptr<char[]> block_;
};

}  // namespace zt_transfers
