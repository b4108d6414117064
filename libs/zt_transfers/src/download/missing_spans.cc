#include "download/missing_spans.h"

#include <algorithm>

namespace zt_transfers {

ByteSpans missingSpans(const ByteSpans& there, std::uint64_t size) {
  ByteSpans missing;
  std::uint64_t position = 0;
  for (const ByteSpan& span : there) {
    if (span.begin >= size) {
      break;
    }
    addSpan(missing, {position, span.begin});
    position = span.end;
  }
  if (position < size) {
    addSpan(missing, {position, size});
  }
  return missing;
}

ByteSpan takeFirst(ByteSpans& missing, std::uint64_t most) {
  ByteSpan& first = missing.front();
  const ByteSpan taken{first.begin, first.begin + std::min(most, first.length())};
  first.begin = taken.end;
  if (first.length() == 0) {
    missing.erase(missing.begin());
  }
  return taken;
}

}  // namespace zt_transfers
