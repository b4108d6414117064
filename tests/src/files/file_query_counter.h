#pragma once

namespace zantrio::test {

// How often this program asked the file system for the status of an item since it started,
// whichever of the C library's functions it used.
long statusQueries();

}  // namespace zantrio::test
