#pragma once

#include <string>
#include <string_view>

namespace zantrio::devservice {

// The media type for a file of the web application, by its extension.
std::string mimeType(std::string_view fileName);

}  // namespace zantrio::devservice
