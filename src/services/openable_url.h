#pragma once

#include <string>

namespace zantrio {

// Whether a URL that comes from the page may be handed to the user's program for it: an absolute
// URL in ASCII, of a kind that shows a page or begins a message or a call (http, https, mailto,
// tel, sms). Everything that could start a program or open a local file is refused, and so is a
// text that is no clean URL. Thread: any.
bool isOpenableUrl(const std::string& url);

}  // namespace zantrio
