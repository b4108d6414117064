#include "platform/linux/crash/signal_text.h"

#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace zantrio {
namespace {

struct Code {
  int signal;
  int code;
  const char* name;
};

constexpr Code kCodes[] = {
    {SIGSEGV, SEGV_MAPERR, "SEGV_MAPERR"}, {SIGSEGV, SEGV_ACCERR, "SEGV_ACCERR"},
    {SIGBUS, BUS_ADRALN, "BUS_ADRALN"},    {SIGBUS, BUS_ADRERR, "BUS_ADRERR"},
    {SIGBUS, BUS_OBJERR, "BUS_OBJERR"},    {SIGILL, ILL_ILLOPC, "ILL_ILLOPC"},
    {SIGILL, ILL_ILLOPN, "ILL_ILLOPN"},    {SIGILL, ILL_ILLTRP, "ILL_ILLTRP"},
    {SIGFPE, FPE_INTDIV, "FPE_INTDIV"},    {SIGFPE, FPE_INTOVF, "FPE_INTOVF"},
    {SIGTRAP, TRAP_BRKPT, "TRAP_BRKPT"},   {SIGTRAP, TRAP_TRACE, "TRAP_TRACE"},
};

std::string nameCode(const CrashNotice& notice) {
  if (notice.code == SI_KERNEL) {
    return "SI_KERNEL";
  }
  for (const Code& code : kCodes) {
    if (code.signal == notice.signal && code.code == notice.code) {
      return code.name;
    }
  }
  return "code " + std::to_string(notice.code);
}

std::string nameSignal(int signal) {
  const char* const name = sigabbrev_np(signal);
  const char* const description = sigdescr_np(signal);
  return name && description ? "SIG" + std::string(name) + " (" + description + ")"
                             : "signal " + std::to_string(signal);
}

}  // namespace

std::string hexadecimal(std::uintptr_t number) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%016" PRIxPTR, number);
  return text;
}

std::string describeSignal(const CrashNotice& notice) {
  if (notice.code > 0) {
    return nameSignal(notice.signal) + " at " + hexadecimal(notice.address) + ", " +
           nameCode(notice);
  }
  const std::string sender = notice.sender == notice.process
                                 ? "raised by the process itself"
                                 : "sent by process " + std::to_string(notice.sender);
  return nameSignal(notice.signal) + ", " + sender;
}

}  // namespace zantrio
