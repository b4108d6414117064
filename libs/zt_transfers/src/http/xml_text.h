#pragma once

#include <pugixml.hpp>
#include <string_view>

namespace zt_transfers {

// A server's XML response. Element names are compared without a namespace's prefix. A truncated
// document has the elements before the truncation.
class CXmlText {
 public:
  explicit CXmlText(std::string_view text) {
    whole_ =
        document_.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
  }

  // Whether the document is well-formed to its end.
  bool whole() const { return static_cast<bool>(whole_); }
  // Null when the root element has another name.
  pugi::xml_node root(std::string_view name) const {
    const pugi::xml_node element = document_.document_element();
    return isNamed(element, name) ? element : pugi::xml_node();
  }

  static bool isNamed(const pugi::xml_node& element, std::string_view name) {
    const std::string_view full = element.name();
    const auto colon = full.rfind(':');
    return (colon == std::string_view::npos ? full : full.substr(colon + 1)) == name;
  }
  // The text of the first child with this name; empty without such a child.
  static std::string_view textIn(const pugi::xml_node& parent, std::string_view name) {
    for (const pugi::xml_node& child : parent.children()) {
      if (isNamed(child, name)) {
        return child.text().get();
      }
    }
    return {};
  }

 private:
  pugi::xml_document document_;
  pugi::xml_parse_result whole_;
};

}  // namespace zt_transfers
