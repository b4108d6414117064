#pragma once

#include <string>

namespace shown_text {

// Replaces each byte of a secret in `text` by '*': the values of names such as "token", "signature"
// and "X-Amz-Security-Token", in queries of URLs, in JSON and in log lines ("token: ..."), and
// credentials before the host of a URL. The length stays the same. A log's text is read as well as
// can be: a value under another name is not found.
void maskSecrets(std::string& text);

}  // namespace shown_text
