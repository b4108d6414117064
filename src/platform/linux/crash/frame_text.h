#pragma once

#include <elfutils/libdwfl.h>

#include <map>
#include <string>

namespace zantrio {

// One frame of a stack.
struct Frame {
  Dwarf_Addr address = 0;
  // Whether it was interrupted here, by a stop or a signal. Otherwise it is to go on here after a
  // call, which is the instruction before.
  bool isInterrupted = false;
};

// Tells of frames where they are. Remembers what it has told: the threads of a process have most of
// their frames in common, and looking for a function goes through all of its file's.
class FrameText {
 public:
  // `dwfl` stays the caller's and must outlive this object.
  explicit FrameText(Dwfl* dwfl) : dwfl_(dwfl) {}

  // As in "0x00005581d1c0a1b2 zantrio::f(int) + 0x12 at f.cc:34 (/opt/Zantrio/bin/zantrio +
  // 0x1a1b2)".
  std::string describe(const Frame& frame);

  // The files that the frames belong to, a line each: build id and path.
  std::string describeFiles() const;

 private:
  std::string describeInFile(Dwfl_Module* file, Dwarf_Addr call);

  Dwfl* const dwfl_;
  std::map<Dwarf_Addr, std::string> told_;  // by the call's address
  std::map<std::string, std::string> buildIds_;
};

}  // namespace zantrio
