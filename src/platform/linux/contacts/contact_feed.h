#pragma once

#include <libebook/libebook.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>

#include "platform/linux/contacts/eds_book.h"
#include "platform/linux/contacts/glib_handles.h"
#include "platform/linux/contacts/glib_thread.h"

namespace zantrio {

class CContactCache;
class CWaitBudget;

// Fills the cache from the Evolution Data Server in a thread of its own: the contacts of every
// enabled address book, and what changes in them from then on. Nothing here waits for the server.
class CContactFeedLinux {
 public:
  // Begins after `delay`. `loading` is ended when the contacts that there are at the start have
  // arrived, or cannot be had. Both must outlive the feed.
  CContactFeedLinux(CContactCache& cache, CWaitBudget& loading, std::chrono::milliseconds delay);
  CContactFeedLinux(const CContactFeedLinux&) = delete;
  CContactFeedLinux& operator=(const CContactFeedLinux&) = delete;
  ~CContactFeedLinux();

  // Begins now, if it has not yet. Thread: any.
  void hurry();

 private:
  struct Call;

  // All that follows: in the feed's thread.
  void begin();
  static void onRegistry(GObject*, GAsyncResult* result, gpointer call);
  static void onSourcesChanged(ESourceRegistry*, ESource*, gpointer self);
  void watchRegistry();
  void matchEnabledBooks();
  void openBook(ESource* source);
  void reopenLater(const std::string& id);
  void endLoadingWhenLoaded();
  void end();

  CContactCache& cache_;
  CWaitBudget& loading_;

  // Of the thread alone.
  const GObjectPtr<GCancellable> cancellable_;
  bool begun_ = false;
  bool ended_ = false;
  GObjectPtr<ESourceRegistry> registry_;
  std::map<std::string, std::shared_ptr<CEdsBookLinux>> books_;

  CGlibThreadLinux thread_;
};

}  // namespace zantrio
