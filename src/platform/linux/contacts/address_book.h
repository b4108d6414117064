#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "services/address_book.h"

namespace zantrio {

// Searches the contacts of the Evolution Data Server, which GNOME and other desktops use. They are
// cached in memory and kept up to date, so a search does not wait for the server.
class CAddressBookLinux : public IAddressBook {
 public:
  // Delay before reading contacts, so that starting the server does not slow down the application's
  // start. The first search ends the delay.
  static constexpr std::chrono::milliseconds kStartDelay{2000};
  // The total time that searches wait for contacts that are still loading; after that they search
  // the contacts loaded so far.
  static constexpr std::chrono::milliseconds kLoadingLimit{1000};

  // Throws CAddressBookObtainError if there is no Evolution Data Server.
  explicit CAddressBookLinux(std::chrono::milliseconds startDelay = kStartDelay,
                             std::chrono::milliseconds loadingLimit = kLoadingLimit);
  CAddressBookLinux(const CAddressBookLinux&) = delete;
  CAddressBookLinux& operator=(const CAddressBookLinux&) = delete;
  ~CAddressBookLinux() override;

  void search(const std::string& query, ContactEntries& results) override;

 private:
  struct Impl;
  const std::unique_ptr<Impl> impl_;
};

}  // namespace zantrio
