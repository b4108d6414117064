#include "engine/download_resume.h"

#include <algorithm>

namespace zt_transfers {

std::uint64_t lengthOf(const ByteSpans& spans) {
  std::uint64_t length = 0;
  for (const ByteSpan& span : spans) {
    length += span.length();
  }
  return length;
}

void addSpan(ByteSpans& spans, ByteSpan span) {
  if (span.length() == 0) {
    return;
  }
  // Those that touch the new one become part of it.
  const auto first = std::find_if(spans.begin(), spans.end(),
                                  [&](const ByteSpan& other) { return other.end >= span.begin; });
  auto last = first;
  for (; last != spans.end() && last->begin <= span.end; ++last) {
    span.begin = std::min(span.begin, last->begin);
    span.end = std::max(span.end, last->end);
  }
  spans.insert(spans.erase(first, last), span);
}

}  // namespace zt_transfers
