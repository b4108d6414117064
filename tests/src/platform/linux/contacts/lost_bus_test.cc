// In a program of its own: the process has no session bus any more.
#include <gio/gio.h>
#include <gtest/gtest.h>

#include "platform/linux/contacts/address_book.h"
#include "platform/linux/contacts/glib_handles.h"
#include "src/platform/linux/contacts/contacts_session.h"

namespace zantrio {
namespace {

using namespace std::chrono_literals;

// The one connection that all of GLib's users in a process share.
GObjectPtr<GDBusConnection> sharedConnection() {
  return GObjectPtr<GDBusConnection>(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
}

TEST(AddressBookLinuxOnALostBus, LetsTheProcessGoOn) {
  test::ContactsSession session;
  session.add("friends", "BEGIN:VCARD\nVERSION:3.0\nUID:1\nN:Lee;Ann;;;\nEND:VCARD\n");
  CAddressBookLinux book(0ms, 60s);
  ContactEntries entries;
  book.search("ann", entries);
  ASSERT_EQ(entries.size(), 1U);

  bool closed = false;
  const GObjectPtr<GDBusConnection> bus = sharedConnection();
  g_signal_connect_swapped(bus.get(), "closed", G_CALLBACK(+[](bool* flag) { *flag = true; }),
                           &closed);
  session.endBus();
  while (!closed) {
    g_main_context_iteration(nullptr, TRUE);
  }
  book.search("ann", entries);
}

}  // namespace
}  // namespace zantrio
