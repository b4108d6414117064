#include "upload/multipart_messages.h"

#include <algorithm>
#include <charconv>
#include <sstream>

#include "base/ascii.h"
#include "hash/md5.h"
#include "http/etag.h"
#include "http/xml_text.h"

namespace zt_transfers {
namespace {

constexpr std::size_t kLongestId = 4096;

template <typename Number>
std::optional<Number> numberIn(const pugi::xml_node& parent, std::string_view name) {
  const std::string_view text = trimmed(CXmlText::textIn(parent, name));
  Number value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return value;
}

std::optional<ListedPart> partOf(const pugi::xml_node& element) {
  const auto number = numberIn<std::uint32_t>(element, "PartNumber");
  const auto size = numberIn<std::uint64_t>(element, "Size");
  const std::string_view etag = trimmed(CXmlText::textIn(element, "ETag"));
  if (!number || *number == 0 || *number > UploadSession::kMaxParts || !size) {
    return std::nullopt;
  }
  return ListedPart{*number, *size, std::string(etag)};
}

void sortByNumber(std::vector<SentPart>& parts) {
  std::sort(parts.begin(), parts.end(),
            [](const SentPart& left, const SentPart& right) { return left.number < right.number; });
}

void addRaw(CMd5& md5, std::string_view digest) {
  std::string raw;
  for (std::size_t at = 0; at + 1 < digest.size(); at += 2) {
    raw.push_back(
        static_cast<char>(hexDigitValue(digest[at]) * 16 + hexDigitValue(digest[at + 1])));
  }
  md5.add(raw.data(), raw.size());
}

}  // namespace

std::optional<std::string> uploadIdOf(std::string_view xml) {
  const CXmlText document(xml);
  const std::string_view id =
      trimmed(CXmlText::textIn(document.root("InitiateMultipartUploadResult"), "UploadId"));
  if (!document.whole() || id.empty() || id.size() > kLongestId) {
    return std::nullopt;
  }
  return std::string(id);
}

std::optional<PartsPage> partsPageOf(std::string_view xml) {
  const CXmlText document(xml);
  const pugi::xml_node root = document.root("ListPartsResult");
  if (!document.whole() || !root) {
    return std::nullopt;
  }
  PartsPage page;
  for (const pugi::xml_node& child : root.children()) {
    if (!CXmlText::isNamed(child, "Part")) {
      continue;
    }
    auto part = partOf(child);
    if (!part) {
      return std::nullopt;
    }
    page.parts.push_back(std::move(*part));
  }
  if (trimmed(CXmlText::textIn(root, "IsTruncated")) == "true") {
    const auto next = numberIn<std::uint32_t>(root, "NextPartNumberMarker");
    if (!next || *next == 0 || *next > UploadSession::kMaxParts) {
      return std::nullopt;
    }
    page.next = *next;
  }
  return page;
}

std::string completionOf(std::vector<SentPart> parts) {
  sortByNumber(parts);
  pugi::xml_document document;
  pugi::xml_node root = document.append_child("CompleteMultipartUpload");
  for (const SentPart& part : parts) {
    pugi::xml_node element = root.append_child("Part");
    element.append_child("PartNumber").text().set(part.number);
    element.append_child("ETag").text().set(part.etag.c_str());
  }
  std::ostringstream text;
  document.save(text, "", pugi::format_raw | pugi::format_no_declaration);
  return text.str();
}

std::optional<std::string> completedETagOf(std::string_view xml) {
  const CXmlText document(xml);
  const pugi::xml_node root = document.root("CompleteMultipartUploadResult");
  if (!document.whole() || !root) {
    return std::nullopt;
  }
  return std::string(trimmed(CXmlText::textIn(root, "ETag")));
}

std::optional<std::string> compositeTagOf(std::vector<SentPart> parts) {
  sortByNumber(parts);
  CMd5 md5;
  for (const SentPart& part : parts) {
    const auto digest = md5OfETag(part.etag);
    if (!digest || (!part.md5.empty() && part.md5 != *digest)) {
      return std::nullopt;
    }
    addRaw(md5, *digest);
  }
  return md5.finish() + "-" + std::to_string(parts.size());
}

}  // namespace zt_transfers
