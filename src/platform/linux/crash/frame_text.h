#pragma once

#include <elfutils/libdwfl.h>

#include <map>
#include <string>

namespace zantrio {

// One frame of a stack.
struct Frame {
  Dwarf_Addr address = 0;
  // Whether execution stopped at `address`, by a stop or a signal. Otherwise it is a return
  // address, and the call is the instruction before it.
  bool isInterrupted = false;
};

// Formats frames with function, source line and file. Caches its results: the threads of a process
// share most frames, and a symbol lookup scans the whole file.
class FrameText {
 public:
  // `dwfl` is not owned and must outlive this object.
  explicit FrameText(Dwfl* dwfl) : dwfl_(dwfl) {}

  // As in "0x00005581d1c0a1b2 zantrio::f(int) + 0x12 at f.cc:34 (/opt/Zantrio/bin/zantrio +
  // 0x1a1b2)".
  std::string describe(const Frame& frame);

  // The files of the frames, one per line: build id and path.
  std::string describeFiles() const;

 private:
  std::string describeInFile(Dwfl_Module* file, Dwarf_Addr call);

  Dwfl* const dwfl_;
  std::map<Dwarf_Addr, std::string> cache_;  // by the call's address
  std::map<std::string, std::string> buildIds_;
};

}  // namespace zantrio
