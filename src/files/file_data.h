#pragma once

#include <Poco/Path.h>

#include <vector>

namespace zantrio {

// Carries the paths of a drag, in the drag's order, from the browser client to the drag handlers.
struct FileData {
  std::vector<Poco::Path> paths;
};

}  // namespace zantrio
