#include "platform/linux/contacts/address_book.h"

#include <gio/gio.h>

#include <chrono>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "app/log/logger.h"
#include "platform/linux/contacts/contact_feed.h"
#include "services/contacts/contact_cache.h"
#include "services/contacts/wait_budget.h"

namespace zantrio {
namespace {

using Clock = std::chrono::steady_clock;

// The versions of the interface append a number.
constexpr std::string_view kRegistryName = "org.gnome.evolution.dataserver.Sources";

// A healthy bus replies at once. Total for all calls.
constexpr std::chrono::milliseconds kReplyTimeout(1000);

bool holdsRegistry(GVariant* answer) {
  const GVariantPtr names(g_variant_get_child_value(answer, 0));
  GVariantIter iterator;
  g_variant_iter_init(&iterator, names.get());
  const char* name = nullptr;
  while (g_variant_iter_loop(&iterator, "&s", &name) != FALSE) {
    if (std::string_view(name).substr(0, kRegistryName.size()) == kRegistryName) {
      return true;
    }
  }
  return false;
}

bool isRegistryListed(GDBusConnection* bus, const char* method, Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
  if (left.count() <= 0) {
    return false;
  }
  GError* error = nullptr;
  const GVariantPtr answer(g_dbus_connection_call_sync(
      bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, nullptr,
      G_VARIANT_TYPE("(as)"), G_DBUS_CALL_FLAGS_NONE, static_cast<int>(left.count()), nullptr,
      &error));
  if (!answer) {
    logWarning("AddressBookLinux: ", method, " failed on the session bus: ", takeText(error));
    return false;
  }
  return holdsRegistry(answer.get());
}

// Connects to the session bus if the Evolution Data Server runs on it or can be activated; null
// otherwise. Starts nothing. The end of the bus does not end the process, which is GLib's default.
GObjectPtr<GDBusConnection> connectToEdsService() {
  GError* error = nullptr;
  GObjectPtr<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
  if (!bus) {
    logWarning("AddressBookLinux: There is no session bus: ", takeText(error));
    return nullptr;
  }
  g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
  const Clock::time_point deadline = Clock::now() + kReplyTimeout;
  if (isRegistryListed(bus.get(), "ListActivatableNames", deadline) ||
      isRegistryListed(bus.get(), "ListNames", deadline)) {
    return bus;
  }
  logWarning("AddressBookLinux: The Evolution Data Server is not installed");
  return nullptr;
}

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
