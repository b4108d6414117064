#pragma once

#include <string>
#include <string_view>

namespace zt_transfers {

// The URL as it may be written to a log: without user information, query and fragment, which
// can hold credentials and signatures, and without control characters. A multipart upload's
// session is resumed only if this text is still the same, so a change here ends stored sessions.
std::string loggableUrl(std::string_view url);

// A text for people and logs that may quote URLs, such as an error message: without their user
// information and queries. A URL is taken to end at white space.
std::string withoutSecrets(std::string_view text);

// Scheme, host and port in a form that compares equal for the same server ("http://h:80").
// Empty when `url` is not an absolute http or https URL.
std::string originOf(std::string_view url);

// The URL with `query` ("a=b&c") added to the query it has, which stays as it is: it can be signed.
// A fragment is left out, as it is never sent.
std::string withQuery(std::string_view url, std::string_view query);

// The text as a value in a query: all but letters, digits and "-._~" escaped.
std::string percentEncoded(std::string_view text);

}  // namespace zt_transfers
