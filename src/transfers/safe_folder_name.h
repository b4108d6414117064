#pragma once

#include <string>

namespace zantrio {

// Makes a text from the service safe as a folder name: a relative path that stays below its parent
// folder. "/" separates nested folders; names of blanks only, "." and ".." are dropped. A leading
// dot, which would hide a folder or address a hidden one, a leading dash, and every control
// character (NUL included) and invisible character become "_". Names too long for a file system are
// cut. Where nothing is left the name is "Message"; only an empty text has an empty result.
// Thread: any.
std::string safeFolderName(const std::string& text);

}  // namespace zantrio
