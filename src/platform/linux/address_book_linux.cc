#include "platform/linux/address_book_linux.h"

#include <new>
#include <utility>

#include "platform/linux/contact_feed_linux.h"
#include "platform/linux/eds_service_linux.h"
#include "services/contact_cache.h"
#include "services/patience.h"

namespace zantrio {
namespace {

GObjectPtr<GDBusConnection> requireEdsService() {
  if (GObjectPtr<GDBusConnection> bus = connectToEdsService()) {
    return bus;
  }
  throw IAddressBook::CAddressBookObtainError();
}

}  // namespace

struct CAddressBookLinux::Impl {
  Impl(std::chrono::milliseconds startDelay, std::chrono::milliseconds loadingLimit)
      : bus(requireEdsService()), loading(loadingLimit), feed(cache, loading, startDelay) {}

  const GObjectPtr<GDBusConnection> bus;
  CContactCache cache;
  CPatience loading;
  CContactFeedLinux feed;
};

CAddressBookLinux::CAddressBookLinux(std::chrono::milliseconds startDelay,
                                     std::chrono::milliseconds loadingLimit)
    : impl_(std::make_unique<Impl>(startDelay, loadingLimit)) {}

CAddressBookLinux::~CAddressBookLinux() = default;

void CAddressBookLinux::search(const std::string& query, ContactEntries& results) {
  impl_->feed.hurry();
  impl_->loading.wait();
  impl_->cache.search(query, results);
}

std::unique_ptr<IAddressBook> createAddressBook() {
  return std::make_unique<CAddressBookLinux>();
}

}  // namespace zantrio
