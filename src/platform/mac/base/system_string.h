#pragma once

#include <string>

#include "platform/mac/base/cf_owned.h"

namespace zantrio {

// The system's string of `text`, whose bytes are read in `encoding`. Null when they are no text in
// it.
CfOwned<CFStringRef> createSystemString(const std::string& text, CFStringEncoding encoding);

// Sets `text` to the string in `encoding`, of one byte a character: from the string's own buffer
// where the system offers it, else copied out. False, and `text` as it was, when the string cannot
// be written so.
bool readSystemString(CFStringRef string, CFStringEncoding encoding, std::string& text);

}  // namespace zantrio
