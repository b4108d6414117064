#include "platform/linux/contacts/address_book.h"

#include <new>
#include <utility>

#include "platform/linux/contacts/contact_feed.h"
#include "platform/linux/contacts/eds_service.h"
#include "services/contacts/contact_cache.h"
#include "services/contacts/wait_budget.h"

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
  CWaitBudget loading;
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
