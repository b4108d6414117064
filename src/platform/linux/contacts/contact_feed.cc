#include "platform/linux/contacts/contact_feed.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "app/log/logger.h"
#include "services/contacts/contact_cache.h"
#include "services/contacts/wait_budget.h"

namespace zantrio {
namespace {

// Delay before a book whose server ended is reopened.
constexpr std::chrono::seconds kReopenDelay(5);

std::vector<GObjectPtr<ESource>> enabledBooks(ESourceRegistry* registry) {
  GList* const sources = e_source_registry_list_enabled(registry, E_SOURCE_EXTENSION_ADDRESS_BOOK);
  std::vector<GObjectPtr<ESource>> books;
  for (const GList* source = sources; source != nullptr; source = source->next) {
    books.emplace_back(E_SOURCE(source->data));
  }
  g_list_free(sources);
  return books;
}

}  // namespace

// User data of an asynchronous call. The token makes the thread wait for the call, so `feed` stays
// valid.
struct CContactFeedLinux::Call {
  CContactFeedLinux* feed;
  CGlibThreadLinux::CallToken token;
};

CContactFeedLinux::CContactFeedLinux(CContactCache& cache, CWaitBudget& loading,
                                     std::chrono::milliseconds delay)
    : cache_(cache), loading_(loading), cancellable_(g_cancellable_new()) {
  thread_.post([this, delay] { thread_.runLater(delay, [this] { begin(); }); });
}

CContactFeedLinux::~CContactFeedLinux() {
  thread_.post([this] { end(); });
}

void CContactFeedLinux::hurry() {
  thread_.post([this] { begin(); });
}

void CContactFeedLinux::begin() {
  if (begun_ || ended_) {
    return;
  }
  begun_ = true;
  e_source_registry_new(cancellable_.get(), onRegistry, new Call{this, thread_.beginCall()});
}

void CContactFeedLinux::onRegistry(GObject* /*object*/, GAsyncResult* result, gpointer call) {
  const std::unique_ptr<Call> owned(static_cast<Call*>(call));
  CContactFeedLinux& feed = *owned->feed;
  GError* error = nullptr;
  GObjectPtr<ESourceRegistry> registry(e_source_registry_new_finish(result, &error));
  if (feed.ended_) {
    g_clear_error(&error);
  } else if (registry) {
    feed.registry_ = std::move(registry);
    feed.watchRegistry();
  } else {
    logError("AddressBookLinux: The contacts cannot be read: ", takeText(error),
             "; searches find nothing");
    feed.loading_.end();
  }
}

void CContactFeedLinux::watchRegistry() {
  for (const char* const change :
       {"source-added", "source-removed", "source-enabled", "source-disabled"}) {
    g_signal_connect(registry_.get(), change, G_CALLBACK(onSourcesChanged), this);
  }
  matchEnabledBooks();
}

void CContactFeedLinux::onSourcesChanged(ESourceRegistry* /*registry*/, ESource* /*source*/,
                                         gpointer self) {
  static_cast<CContactFeedLinux*>(self)->matchEnabledBooks();
}

void CContactFeedLinux::matchEnabledBooks() {
  const std::vector<GObjectPtr<ESource>> enabled = enabledBooks(registry_.get());
  std::set<std::string> ids;
  for (const GObjectPtr<ESource>& source : enabled) {
    ids.emplace(e_source_get_uid(source.get()));
  }
  std::erase_if(books_, [&](const auto& book) { return ids.count(book.first) == 0; });
  for (const GObjectPtr<ESource>& source : enabled) {
    if (books_.count(e_source_get_uid(source.get())) == 0) {
      openBook(source.get());
    }
  }
  // A book that was still loading may have been disabled.
  endLoadingWhenLoaded();
}

void CContactFeedLinux::openBook(ESource* source) {
  const std::string id = e_source_get_uid(source);
  const auto book = std::make_shared<CEdsBookLinux>(
      source, thread_, cache_,
      CEdsBookLinux::Listener{[this] { endLoadingWhenLoaded(); }, [this, id] { reopenLater(id); }});
  books_[id] = book;
  book->open();
}

void CContactFeedLinux::reopenLater(const std::string& id) {
  logWarning("AddressBookLinux: The server of the address book ", id,
             " has ended; the book is opened again in ", kReopenDelay.count(), " s");
  thread_.runLater(kReopenDelay, [this, id] {
    if (!ended_ && books_.erase(id) != 0) {
      matchEnabledBooks();
    }
  });
}

void CContactFeedLinux::endLoadingWhenLoaded() {
  const bool loaded = std::all_of(books_.begin(), books_.end(),
                                  [](const auto& book) { return book.second->isLoaded(); });
  if (loaded) {
    loading_.end();
  }
}

void CContactFeedLinux::end() {
  ended_ = true;
  g_cancellable_cancel(cancellable_.get());
  if (registry_) {
    g_signal_handlers_disconnect_by_data(registry_.get(), this);
  }
  books_.clear();
  registry_.reset();
}

}  // namespace zantrio
