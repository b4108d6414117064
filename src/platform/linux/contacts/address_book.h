#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "services/address_book.h"

namespace zantrio {

// The contacts of the Evolution Data Server, which GNOME's and other desktops' programs use. They
// are kept in memory and up to date there, so that a search does not wait for the server.
class CAddressBookLinux : public IAddressBook {
 public:
  // Contacts are read this long after the construction, or with the first search, so that the start
  // of the server does not slow down the application's own.
  static constexpr std::chrono::milliseconds kStartDelay{2000};
  // While the contacts are being read, searches wait for them, together at most this long; then
  // they find what has arrived.
  static constexpr std::chrono::milliseconds kLoadingLimit{1000};

  // Throws CAddressBookObtainError when there is no such server.
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
