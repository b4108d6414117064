#include "platform/linux/contacts/eds_book.h"

#include <array>
#include <optional>
#include <utility>

#include "app/log/logger.h"
#include "app/text/utf8_text.h"
#include "services/contacts/contact.h"
#include "services/contacts/contact_cache.h"

namespace zantrio {
namespace {

// Matches every contact.
constexpr const char* kAllContacts = R"((contains "x-evolution-any-field" ""))";

// Any number of seconds would be waited in full; -1 only connects.
constexpr guint32 kDoNotWaitForBackend = static_cast<guint32>(-1);

// Limits the data sent to the fields used here; excludes photos and notes.
void limitFields(EBookClientView* view) {
  static constexpr std::array kFields = {E_CONTACT_UID,         E_CONTACT_GIVEN_NAME,
                                         E_CONTACT_FAMILY_NAME, E_CONTACT_FULL_NAME,
                                         E_CONTACT_EMAIL,       E_CONTACT_IS_LIST};
  GSList* names = nullptr;
  for (const EContactField field : kFields) {
    names = g_slist_prepend(names, const_cast<char*>(e_contact_field_name(field)));
  }
  // On failure the server sends all fields.
  e_book_client_view_set_fields_of_interest(view, names, nullptr);
  g_slist_free(names);
}

std::string readText(EContact* record, EContactField field) {
  const void* const text = e_contact_get_const(record, field);
  return text == nullptr ? std::string() : toValidUtf8(static_cast<const char*>(text));
}

std::optional<std::vector<std::string>> readEmails(EContact* record) {
  auto* const values = static_cast<GList*>(e_contact_get(record, E_CONTACT_EMAIL));
  if (values == nullptr) {
    return std::nullopt;
  }
  std::vector<std::string> emails;
  for (const GList* value = values; value != nullptr; value = value->next) {
    const auto* const text = static_cast<const char*>(value->data);
    // Skips e-mail properties without a value.
    if (text != nullptr && *text != '\0') {
      emails.push_back(toValidUtf8(text));
    }
  }
  g_list_free_full(values, g_free);
  return emails;
}

// Converts a record, with texts in valid UTF-8; nothing for a list of contacts. A record with only
// a full name has it as the first name.
std::optional<Contact> readContact(EContact* record) {
  if (e_contact_get(record, E_CONTACT_IS_LIST) != nullptr) {
    return std::nullopt;
  }
  Contact contact;
  contact.firstName = readText(record, E_CONTACT_GIVEN_NAME);
  contact.lastName = readText(record, E_CONTACT_FAMILY_NAME);
  if (contact.firstName.empty() && contact.lastName.empty()) {
    contact.firstName = readText(record, E_CONTACT_FULL_NAME);
  }
  contact.emails = readEmails(record);
  return contact;
}

}  // namespace

// User data of an asynchronous call; the book may be destroyed before the call ends.
struct CEdsBookLinux::Call {
  std::weak_ptr<CEdsBookLinux> book;
  CGlibThreadLinux::CallToken token;

  static std::shared_ptr<CEdsBookLinux> end(gpointer call) {
    const std::unique_ptr<Call> owned(static_cast<Call*>(call));
    return owned->book.lock();
  }
};

CEdsBookLinux::CEdsBookLinux(ESource* source, const CGlibThreadLinux& thread, CContactCache& cache,
                             Listener listener)
    : source_(addReference(source)),
      id_(e_source_get_uid(source)),
      thread_(thread),
      cache_(cache),
      listener_(std::move(listener)),
      cancellable_(g_cancellable_new()) {}

CEdsBookLinux::~CEdsBookLinux() {
  g_cancellable_cancel(cancellable_.get());
  if (view_) {
    g_signal_handlers_disconnect_by_data(view_.get(), this);
  }
  if (client_) {
    g_signal_handlers_disconnect_by_data(client_.get(), this);
  }
  cache_.removeBook(id_);
}

void CEdsBookLinux::open() {
  e_book_client_connect(source_.get(), kDoNotWaitForBackend, cancellable_.get(), onConnected,
                        new Call{weak_from_this(), thread_.beginCall()});
}

void CEdsBookLinux::onConnected(GObject* /*object*/, GAsyncResult* result, gpointer call) {
  GError* error = nullptr;
  GObjectPtr<EClient> client(e_book_client_connect_finish(result, &error));
  const auto self = Call::end(call);
  if (!self || !client) {
    if (self) {
      self->fail("opened", error);
    } else {
      g_clear_error(&error);
    }
    return;
  }
  self->client_.reset(E_BOOK_CLIENT(client.release()));
  g_signal_connect(self->client_.get(), "backend-died", G_CALLBACK(onDied), self.get());
  e_book_client_get_view(self->client_.get(), kAllContacts, self->cancellable_.get(), onView,
                         new Call{self, self->thread_.beginCall()});
}

void CEdsBookLinux::onView(GObject* client, GAsyncResult* result, gpointer call) {
  GError* error = nullptr;
  EBookClientView* view = nullptr;
  e_book_client_get_view_finish(E_BOOK_CLIENT(client), result, &view, &error);
  GObjectPtr<EBookClientView> owned(view);
  const auto self = Call::end(call);
  if (!self || !owned) {
    if (self) {
      self->fail("read", error);
    } else {
      g_clear_error(&error);
    }
    return;
  }
  self->view_ = std::move(owned);
  self->startView();
}

void CEdsBookLinux::startView() {
  g_signal_connect(view_.get(), "objects-added", G_CALLBACK(onContacts), this);
  g_signal_connect(view_.get(), "objects-modified", G_CALLBACK(onContacts), this);
  g_signal_connect(view_.get(), "objects-removed", G_CALLBACK(onRemoved), this);
  g_signal_connect(view_.get(), "complete", G_CALLBACK(onComplete), this);
  limitFields(view_.get());
  GError* error = nullptr;
  e_book_client_view_start(view_.get(), &error);
  if (error != nullptr) {
    fail("read", error);
  }
}

void CEdsBookLinux::onContacts(EBookClientView* /*view*/, const GSList* records, gpointer self) {
  auto& book = *static_cast<CEdsBookLinux*>(self);
  for (const GSList* entry = records; entry != nullptr; entry = entry->next) {
    auto* const record = static_cast<EContact*>(entry->data);
    const void* const id = e_contact_get_const(record, E_CONTACT_UID);
    if (id == nullptr) {
      continue;
    }
    if (std::optional<Contact> contact = readContact(record)) {
      book.cache_.put(book.id_, static_cast<const char*>(id), std::move(*contact));
    } else {
      book.cache_.remove(book.id_, static_cast<const char*>(id));
    }
  }
}

void CEdsBookLinux::onRemoved(EBookClientView* /*view*/, const GSList* ids, gpointer self) {
  auto& book = *static_cast<CEdsBookLinux*>(self);
  for (const GSList* id = ids; id != nullptr; id = id->next) {
    book.cache_.remove(book.id_, static_cast<const char*>(id->data));
  }
}

void CEdsBookLinux::onComplete(EBookClientView* /*view*/, const GError* error, gpointer self) {
  auto& book = *static_cast<CEdsBookLinux*>(self);
  if (error != nullptr) {
    book.fail("read to its end", g_error_copy(error));
  } else {
    book.finishLoading();
  }
}

void CEdsBookLinux::onDied(EClient* /*client*/, gpointer self) {
  auto& book = *static_cast<CEdsBookLinux*>(self);
  book.finishLoading();
  book.listener_.onDied();
}

void CEdsBookLinux::fail(const std::string& what, GError* error) {
  logWarning("AddressBookLinux: The address book ", id_, " cannot be ", what, ": ", takeText(error),
             "; searches go on without the rest of it");
  finishLoading();
}

void CEdsBookLinux::finishLoading() {
  if (!loaded_) {
    loaded_ = true;
    listener_.onLoaded();
  }
}

}  // namespace zantrio
