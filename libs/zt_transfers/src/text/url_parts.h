#pragma once

#include <string>
#include <string_view>

namespace zt_transfers {

// The URL as it may be written to a log: without user information, query and fragment, which
// can hold credentials and signatures, and without control characters.
std::string loggableUrl(std::string_view url);

// Scheme, host and port in a form that compares equal for the same server ("http://h:80").
// Empty when `url` is not an absolute http or https URL.
std::string originOf(std::string_view url);

}  // namespace zt_transfers
