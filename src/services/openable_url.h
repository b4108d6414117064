#pragma once

#include <string>

namespace zantrio {

// Whether a URL from the page may be opened in the user's default program: an absolute ASCII URL
// that shows a page or starts a message or a call (http, https, mailto, tel, sms). URLs that could
// start a program or open a local file are refused, and so are malformed ones. A letter may have
// recipients, subject, body and "in-reply-to"; other fields, which could attach files, are refused.
// Thread: any.
bool isOpenableUrl(const std::string& url);

}  // namespace zantrio
