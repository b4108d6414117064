#include "platform/linux/contacts/eds_service.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>

#include "app/log/logger.h"

namespace zantrio {
namespace {

using Clock = std::chrono::steady_clock;

// A number follows, which grows with the interface's versions.
constexpr std::string_view kRegistryName = "org.gnome.evolution.dataserver.Sources";

// A bus answers at once, or something is wrong with it. For all questions together.
constexpr std::chrono::milliseconds kAnswerLimit(1000);

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

}  // namespace

GObjectPtr<GDBusConnection> connectToEdsService() {
  GError* error = nullptr;
  GObjectPtr<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
  if (!bus) {
    logWarning("AddressBookLinux: There is no session bus: ", takeText(error));
    return nullptr;
  }
  g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
  const Clock::time_point deadline = Clock::now() + kAnswerLimit;
  if (isRegistryListed(bus.get(), "ListActivatableNames", deadline) ||
      isRegistryListed(bus.get(), "ListNames", deadline)) {
    return bus;
  }
  logWarning("AddressBookLinux: The Evolution Data Server is not installed");
  return nullptr;
}

}  // namespace zantrio
