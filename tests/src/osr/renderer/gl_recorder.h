// Records what is asked of OpenGL.
#pragma once

#include <string>
#include <vector>

namespace client::test {

// While one lives, the texture and clear calls of this process are noted, and still done.
class GlRecorder {
 public:
  GlRecorder();
  ~GlRecorder();
  GlRecorder(const GlRecorder&) = delete;
  GlRecorder& operator=(const GlRecorder&) = delete;

  // "whole WxH", "part X,Y WxH from SX,SY of ROW", "clear", "delete": in the order of the calls.
  const std::vector<std::string>& calls() const { return calls_; }
  void note(const std::string& call) { calls_.push_back(call); }

 private:
  std::vector<std::string> calls_;
};

}  // namespace client::test
