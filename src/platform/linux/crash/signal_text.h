#pragma once

#include <string>

#include "platform/linux/crash/crash_messages.h"

namespace zantrio {

// The signal's name and cause, as in "SIGSEGV (Segmentation fault) at 0x0000000000000008,
// SEGV_MAPERR" or "SIGABRT (Aborted), sent by process 1234".
std::string describeSignal(const CrashNotice& notice);

// 0x and 16 digits.
std::string hexadecimal(std::uintptr_t number);

}  // namespace zantrio
