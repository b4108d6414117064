#pragma once

#include <libebook/libebook.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/linux/contacts/glib_handles.h"
#include "platform/linux/contacts/glib_thread.h"

namespace zantrio {

class CContactCache;

// Caches the contacts of one address book of the Evolution Data Server and keeps them up to date,
// from open() to destruction, which removes them from the cache. Thread: GLib's.
class CEdsBookLinux : public std::enable_shared_from_this<CEdsBookLinux> {
 public:
  struct Listener {
    std::function<void()> onLoaded;  // once: all contacts are loaded, or the book cannot be read
    std::function<void()> onDied;    // the server ended; the book must be reopened
  };

  // The thread and the cache must outlive the object.
  CEdsBookLinux(ESource* source, const CGlibThreadLinux& thread, CContactCache& cache,
                Listener listener);
  CEdsBookLinux(const CEdsBookLinux&) = delete;
  CEdsBookLinux& operator=(const CEdsBookLinux&) = delete;
  ~CEdsBookLinux();

  void open();
  bool isLoaded() const { return loaded_; }

 private:
  struct Call;

  static void onConnected(GObject*, GAsyncResult* result, gpointer call);
  static void onView(GObject*, GAsyncResult* result, gpointer call);
  static void onContacts(EBookClientView*, const GSList* records, gpointer self);
  static void onRemoved(EBookClientView*, const GSList* ids, gpointer self);
  static void onComplete(EBookClientView*, const GError* error, gpointer self);
  static void onDied(EClient*, gpointer self);

  void startView();
  void fail(const std::string& what, GError* error);
  void finishLoading();

  const GObjectPtr<ESource> source_;
  const std::string id_;
  const CGlibThreadLinux& thread_;
  CContactCache& cache_;
  const Listener listener_;
  const GObjectPtr<GCancellable> cancellable_;

  GObjectPtr<EBookClient> client_;
  GObjectPtr<EBookClientView> view_;
  bool loaded_ = false;
};

}  // namespace zantrio
