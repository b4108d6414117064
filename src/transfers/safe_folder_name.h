#pragma once

#include <string>

namespace zantrio {

// Makes a text from the service safe as a folder name: a relative path that stays below its parent
// folder. "/" separates nested folders; empty names, "." and ".." are dropped. A leading dot, which
// would hide a folder or address a hidden one, and every control character (NUL included) become
// "_". Names too long for a file system are cut. The result may be empty. Thread: any.
std::string safeFolderName(const std::string& text);

}  // namespace zantrio
