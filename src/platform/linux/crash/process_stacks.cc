#include "platform/linux/crash/process_stacks.h"

#include <elfutils/libdwfl.h>

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

#include "platform/linux/crash/frame_text.h"
#include "platform/linux/crash/process_threads.h"

namespace zantrio {
namespace {

// An overflowed stack has a hundred thousand frames.
constexpr std::size_t kMaxFrames = 128;

struct DwflDeleter {
  void operator()(Dwfl* dwfl) const { dwfl_end(dwfl); }
};
using DwflPtr = std::unique_ptr<Dwfl, DwflDeleter>;

char* debugInfoPath = nullptr;  // the usual places
const Dwfl_Callbacks kCallbacks = {dwfl_linux_proc_find_elf, dwfl_standard_find_debuginfo, nullptr,
                                   &debugInfoPath};

// Null if the process cannot be traced; dwfl_errmsg(-1) says why.
DwflPtr openProcess(pid_t process) {
  DwflPtr dwfl(dwfl_begin(&kCallbacks));
  const bool opened = dwfl && dwfl_linux_proc_report(dwfl.get(), process) == 0 &&
                      dwfl_report_end(dwfl.get(), nullptr, nullptr) == 0 &&
                      dwfl_linux_proc_attach(dwfl.get(), process, true) == 0;
  return opened ? std::move(dwfl) : nullptr;
}

struct Stack {
  std::vector<Frame> frames;  // innermost first
  bool isCut = false;
};

int addFrame(Dwfl_Frame* state, void* argument) {
  Stack& stack = *static_cast<Stack*>(argument);
  Frame frame;
  if (!dwfl_frame_pc(state, &frame.address, &frame.isInterrupted)) {
    return DWARF_CB_ABORT;
  }
  stack.isCut = stack.frames.size() == kMaxFrames;
  if (stack.isCut) {
    return DWARF_CB_ABORT;
  }
  stack.frames.push_back(frame);
  return DWARF_CB_OK;
}

// Removes the signal handler's frames and the kernel's trampoline below them, which also counts as
// interrupted.
void dropHandler(std::vector<Frame>& frames) {
  const auto isInterrupted = [](const Frame& frame) { return frame.isInterrupted; };
  if (frames.empty()) {
    return;
  }
  const auto first = std::find_if(frames.begin() + 1, frames.end(), isInterrupted);
  const auto behind = std::find_if_not(first, frames.end(), isInterrupted);
  if (first != behind) {
    frames.erase(frames.begin(), behind - 1);
  }
}

using Stacks = std::map<pid_t, Stack>;

// Runs while the threads are stopped; the slower naming of frames follows later.
Stacks readStacks(Dwfl* dwfl, const StoppedThreads& stopped, pid_t crashedThread) {
  Stacks stacks;
  for (const pid_t thread : stopped.threads()) {
    Stack& stack = stacks[thread];
    dwfl_getthread_frames(dwfl, thread, addFrame, &stack);
    if (thread == crashedThread) {
      dropHandler(stack.frames);
    }
  }
  return stacks;
}

std::string describeStack(const Stack& stack, FrameText& frameText) {
  std::string text;
  for (std::size_t i = 0; i < stack.frames.size(); ++i) {
    text += "  #" + std::to_string(i) + (i < 10 ? "  " : " ") +
            frameText.describe(stack.frames[i]) + "\n";
  }
  if (stack.frames.empty()) {
    text += "  The stack cannot be read.\n";
  }
  return stack.isCut ? text + "  and more\n" : text;
}

std::string cannotBeRead(const std::string& why) {
  return "The stacks cannot be read: " + why + ".\n";
}

}  // namespace

std::string describeStacks(pid_t process, pid_t crashedThread) {
  Stacks stacks;
  DwflPtr dwfl;
  {
    const StoppedThreads stopped(process);
    if (stopped.threads().empty()) {
      return cannotBeRead(stopped.error());
    }
    dwfl = openProcess(process);
    if (!dwfl) {
      return cannotBeRead(dwfl_errmsg(-1));
    }
    stacks = readStacks(dwfl.get(), stopped, crashedThread);
  }
  FrameText frameText(dwfl.get());
  std::string text = "Thread " + nameThread(process, crashedThread) + ", which crashed:\n" +
                     describeStack(stacks[crashedThread], frameText);
  stacks.erase(crashedThread);
  for (const auto& [thread, stack] : stacks) {
    text += "\nThread " + nameThread(process, thread) + ":\n" + describeStack(stack, frameText);
  }
  return text + "\nFiles:\n" + frameText.describeFiles();
}

}  // namespace zantrio
