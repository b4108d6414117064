#pragma once

#include <ios>
#include <string>
#include <vector>

namespace zantrio::test {

// Shows what the program writes into its log.
class LogRecorder {
 public:
  LogRecorder();

  // What was logged since this object was made: for each line the priority and the text, as in
  // "Warning: text".
  std::vector<std::string> lines() const;

 private:
  const std::streamoff begin_;  // where the log ended before
};

}  // namespace zantrio::test
