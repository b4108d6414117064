#include "store/salt.h"

#include <algorithm>
#include <random>

namespace zt_transfers {

std::string randomSalt() {
  constexpr std::size_t kSize = 16;
  std::random_device random;
  std::string salt(kSize, '\0');
  std::generate(salt.begin(), salt.end(), [&] { return static_cast<char>(random()); });
  return salt;
}

}  // namespace zt_transfers
