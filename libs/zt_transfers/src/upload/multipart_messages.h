#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/upload_session.h"

namespace zt_transfers {

// The XML messages of a multipart upload. The parsing functions return nothing unless the response
// is a complete message of its kind.

// From the response to an initiation.
std::optional<std::string> uploadIdOf(std::string_view xml);

// A part that the server says it has.
struct ListedPart {
  std::uint32_t number = 0;  // from 1 on
  std::uint64_t size = 0;    // bytes
  std::string etag;
};

// One page of the list of parts.
struct PartsPage {
  std::vector<ListedPart> parts;
  std::uint32_t next = 0;  // the next page begins after this number; 0: this is the last page
};
std::optional<PartsPage> partsPageOf(std::string_view xml);

// The body of the completion request: these parts in the order of their numbers.
std::string completionOf(std::vector<SentPart> parts);
// The object's ETag in the response to it; may be empty.
std::optional<std::string> completedETagOf(std::string_view xml);

// The ETag of an object that consists of these parts; nothing unless their ETags are the digests of
// the bytes that were sent.
std::optional<std::string> compositeTagOf(std::vector<SentPart> parts);

}  // namespace zt_transfers
