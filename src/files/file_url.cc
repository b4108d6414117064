#include "files/file_url.h"

#include <Poco/URI.h>

namespace zantrio {

void fileUrlToPath(const std::string& url, std::string& path) {
  const Poco::URI uri(url);
  std::string decoded;
  Poco::URI::decode(uri.getPathEtc(), decoded);
  path = decoded;
}

}  // namespace zantrio
