#pragma once

#include <string>

namespace zantrio {

// What a text from the service may be as the name of a folder: a relative path that stays below
// the folder that it is put behind. "/" makes nested folders, of which empty ones, "." and ".."
// are left out. A dot at the beginning of a name would hide the folder, or write into the user's
// hidden ones, and becomes "_", and so does every control character, NUL included; names that are
// too long for a file system are cut. Empty when nothing is left. Thread: any.
std::string safeFolderName(const std::string& text);

}  // namespace zantrio
