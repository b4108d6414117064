// Records OpenGL calls.
#pragma once

#include <string>
#include <vector>

namespace client::test {

// Records this process's texture and clear calls while it lives, and forwards them.
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
