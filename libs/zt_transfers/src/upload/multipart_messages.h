#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/upload_session.h"

namespace zt_transfers {

// The XML messages of an upload in parts. Nothing comes of answers that are no such message, whole
// and with what is needed in it.

// Of the answer to the beginning of an upload.
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
  std::uint32_t next = 0;  // the number behind which the next page begins; 0: it is the last page
};
std::optional<PartsPage> partsPageOf(std::string_view xml);

// The request to put these parts together, in the order of their numbers.
std::string completionOf(std::vector<SentPart> parts);
// The tag in the answer to it, which can be empty.
std::optional<std::string> completedETagOf(std::string_view xml);

// The tag that an object made of these parts has; nothing when their tags are no digests of what
// was sent.
std::optional<std::string> compositeTagOf(std::vector<SentPart> parts);

}  // namespace zt_transfers
