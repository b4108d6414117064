#pragma once

#include <stdexcept>
#include <string>

namespace zantrio::devservice {

// Ends the handling of a request; the dispatcher answers it as JSON:
//   {"error": {"code": code, "message": what()}}
// `code` is for programs and never changes, the message is for people.
class CHttpError : public std::runtime_error {
 public:
  CHttpError(int status, std::string code, const std::string& message);

  int status() const { return status_; }
  const std::string& code() const { return code_; }

 private:
  int status_;
  std::string code_;
};

}  // namespace zantrio::devservice
