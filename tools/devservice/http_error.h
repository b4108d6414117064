#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace zantrio::devservice {

// Ends the handling of a request; the dispatcher responds with JSON:
//   {"error": {"code": code, "message": what()}}
// `code` is for programs and never changes; the message is for people.
class CHttpError : public std::runtime_error {
 public:
  CHttpError(int status, std::string code, const std::string& message)
      : std::runtime_error(message), status_(status), code_(std::move(code)) {}

  int status() const { return status_; }
  const std::string& code() const { return code_; }

 private:
  int status_;
  std::string code_;
};

}  // namespace zantrio::devservice
