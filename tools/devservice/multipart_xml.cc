#include "devservice/multipart_xml.h"

#include <Poco/AutoPtr.h>
#include <Poco/DOM/DOMParser.h>
#include <Poco/DOM/Document.h>
#include <Poco/DOM/Element.h>
#include <Poco/DOM/NodeList.h>
#include <Poco/Exception.h>

#include <charconv>
#include <utility>

#include "devservice/http_error.h"

namespace zantrio::devservice {

namespace {

constexpr const char* kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

[[noreturn]] void malformed(const std::string& why) {
  throw CHttpError(400, "MalformedXML", "The list of parts cannot be read: " + why + ".");
}

std::string escaped(const std::string& text) {
  std::string safe;
  for (const char character : text) {
    switch (character) {
      case '&':
        safe += "&amp;";
        break;
      case '<':
        safe += "&lt;";
        break;
      case '>':
        safe += "&gt;";
        break;
      case '"':
        safe += "&quot;";
        break;
      default:
        safe += character;
    }
  }
  return safe;
}

std::string element(const std::string& name, const std::string& text) {
  return "<" + name + ">" + escaped(text) + "</" + name + ">";
}

std::string document(const std::string& name, const std::string& content) {
  return kHeader + ("<" + name + ">") + content + "</" + name + ">\n";
}

std::string place(const std::string& bucketId, const std::string& path) {
  return element("Bucket", bucketId) + element("Key", path);
}

std::string withoutQuotes(const std::string& etag) {
  const bool quoted = etag.size() >= 2 && etag.front() == '"' && etag.back() == '"';
  return quoted ? etag.substr(1, etag.size() - 2) : etag;
}

std::string childText(const Poco::XML::Element& parent, const std::string& name) {
  const Poco::XML::Element* child = parent.getChildElement(name);
  if (child == nullptr) {
    malformed("a part has no " + name);
  }
  return child->innerText();
}

ListedPart parseListedPart(const Poco::XML::Element& part) {
  const std::string number = childText(part, "PartNumber");
  ListedPart listed{0, withoutQuotes(childText(part, "ETag"))};
  const auto [end, error] =
      std::from_chars(number.data(), number.data() + number.size(), listed.number);
  if (error != std::errc() || end != number.data() + number.size()) {
    malformed("a part's number is none");
  }
  return listed;
}

}  // namespace

std::vector<ListedPart> parseCompletion(const std::string& xml) {
  std::vector<ListedPart> listedParts;
  try {
    Poco::XML::DOMParser parser;
    const Poco::AutoPtr<Poco::XML::Document> parsed = parser.parseString(xml);
    if (parsed->documentElement()->localName() != "CompleteMultipartUpload") {
      malformed("it is no CompleteMultipartUpload");
    }
    for (auto* node = parsed->documentElement()->firstChild(); node != nullptr;
         node = node->nextSibling()) {
      if (node->localName() == "Part") {
        listedParts.push_back(parseListedPart(dynamic_cast<const Poco::XML::Element&>(*node)));
      }
    }
  } catch (const Poco::Exception& error) {
    malformed(error.displayText());
  }
  if (listedParts.empty()) {
    malformed("it is empty");
  }
  return listedParts;
}

std::string initiatedXml(const std::string& bucketId, const std::string& path,
                         const std::string& uploadId) {
  return document("InitiateMultipartUploadResult",
                  place(bucketId, path) + element("UploadId", uploadId));
}

std::string partsXml(const std::string& bucketId, const std::string& path,
                     const std::string& uploadId, const CMultipartUploads::Parts& parts,
                     const PartsPage& page) {
  std::string listed;
  unsigned count = 0;
  unsigned last = page.after;
  auto part = parts.upper_bound(page.after);
  for (; part != parts.end() && count < page.maxParts; ++part, ++count) {
    last = part->first;
    listed += "<Part>" + element("PartNumber", std::to_string(part->first)) +
              element("ETag", '"' + part->second.md5 + '"') +
              element("Size", std::to_string(part->second.size)) + "</Part>";
  }
  return document("ListPartsResult",
                  place(bucketId, path) + element("UploadId", uploadId) +
                      element("PartNumberMarker", std::to_string(page.after)) +
                      element("NextPartNumberMarker", std::to_string(last)) +
                      element("MaxParts", std::to_string(page.maxParts)) +
                      element("IsTruncated", part == parts.end() ? "false" : "true") + listed);
}

std::string completedXml(const std::string& bucketId, const std::string& path,
                         const std::string& quotedEtag) {
  return document("CompleteMultipartUploadResult",
                  place(bucketId, path) + element("ETag", quotedEtag));
}

std::string errorXml(const std::string& code, const std::string& message) {
  return document("Error", element("Code", code) + element("Message", message));
}

}  // namespace zantrio::devservice
