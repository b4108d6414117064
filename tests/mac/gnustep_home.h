#pragma once

#include "src/files/temporary_folder.h"

namespace zantrio::mac_test {

// Lets GNUstep keep what it keeps for the user in a folder of the tests' own. To be made before
// anything of GNUstep is used.
class GnustepHome {
 public:
  GnustepHome();

 private:
  const test::TemporaryFolder folder_;
};

}  // namespace zantrio::mac_test
