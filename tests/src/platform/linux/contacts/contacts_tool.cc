// Another program that works with the user's contacts: changes address books of the session's
// Evolution Data Server.
//   contacts_tool add|modify BOOK    the contacts come from standard input, vCard after vCard
//   contacts_tool remove BOOK ID
//   contacts_tool enable|disable BOOK
#include <libebook/libebook.h>

#include <cstring>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "platform/linux/contacts/glib_handles.h"

namespace {

using zantrio::GObjectPtr;
using zantrio::takeText;

void require(bool success, const std::string& what, GError* error) {
  if (!success) {
    throw std::runtime_error(what + ": " + takeText(error));
  }
}

GObjectPtr<EBookClient> connect(ESource* source) {
  GError* error = nullptr;
  EClient* const client =
      e_book_client_connect_sync(source, static_cast<guint32>(-1), nullptr, &error);
  require(client != nullptr, "connect", error);
  return GObjectPtr<EBookClient>(E_BOOK_CLIENT(client));
}

GSList* readContacts() {
  static const std::string kEnd = "END:VCARD";
  const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
  GSList* contacts = nullptr;
  for (std::size_t begin = 0, end = 0; (end = text.find(kEnd, begin)) != std::string::npos;) {
    end += kEnd.size();
    const std::string card = text.substr(begin, end - begin);
    contacts = g_slist_prepend(contacts, e_contact_new_from_vcard(card.c_str()));
    begin = text.find_first_not_of("\r\n", end);
    if (begin == std::string::npos) {
      break;
    }
  }
  return g_slist_reverse(contacts);
}

void change(const std::string& verb, EBookClient* book, const char* id) {
  GError* error = nullptr;
  if (verb == "remove") {
    require(e_book_client_remove_contact_by_uid_sync(book, id, 0, nullptr, &error) != FALSE, verb,
            error);
    return;
  }
  GSList* const contacts = readContacts();
  const gboolean done =
      verb == "add" ? e_book_client_add_contacts_sync(book, contacts, 0, nullptr, nullptr, &error)
                    : e_book_client_modify_contacts_sync(book, contacts, 0, nullptr, &error);
  require(done != FALSE, verb, error);
  g_slist_free_full(contacts, g_object_unref);
}

void setEnabled(ESource* source, bool enabled) {
  GError* error = nullptr;
  e_source_set_enabled(source, enabled ? TRUE : FALSE);
  require(e_source_write_sync(source, nullptr, &error) != FALSE, "write", error);
}

void run(const std::string& verb, const char* bookId, const char* id) {
  GError* error = nullptr;
  const GObjectPtr<ESourceRegistry> registry(e_source_registry_new_sync(nullptr, &error));
  require(registry != nullptr, "registry", error);
  const GObjectPtr<ESource> source(e_source_registry_ref_source(registry.get(), bookId));
  require(source != nullptr, std::string("no book ") + bookId, nullptr);
  if (verb == "enable" || verb == "disable") {
    setEnabled(source.get(), verb == "enable");
  } else {
    change(verb, connect(source.get()).get(), id);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "contacts_tool VERB BOOK [ID]\n";
    return 2;
  }
  try {
    run(argv[1], argv[2], argc > 3 ? argv[3] : "");
    return 0;
  } catch (const std::exception& exception) {
    std::cerr << "contacts_tool: " << exception.what() << "\n";
    return 1;
  }
}
