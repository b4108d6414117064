#include "devservice/http_error.h"

#include <utility>

namespace zantrio::devservice {

CHttpError::CHttpError(int status, std::string code, const std::string& message)
    : std::runtime_error(message), status_(status), code_(std::move(code)) {}

}  // namespace zantrio::devservice
