#pragma once

#include <cstdint>

namespace zantrio {

// The names under which the page knows the library's state codes. Groups and files number their
// states differently. "UNKNWON" stands for every other code, and is what the page expects.
const char* groupStateName(std::int32_t code);
const char* fileStateName(std::int32_t code);

}  // namespace zantrio
