#pragma once

#import <Foundation/Foundation.h>

#include <optional>
#include <string>
#include <vector>

namespace zantrio {

// The string in UTF-8. Nothing for nil, and for a string that UTF-8 cannot hold: one with half of a
// surrogate pair.
std::optional<std::string> toUtf8(NSString* text);

// The strings of a list in UTF-8. What is no such string is left out, and the system's log told.
std::vector<std::string> toUtf8List(NSArray* list);

}  // namespace zantrio
