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

// Fills the cache from the Evolution Data Server on its own thread: the contacts of every enabled
// address book and their later changes. No call blocks on the server.
class CContactFeedLinux {
 public:
  // Begins after `delay`. `loading` ends when the initial contacts are loaded or cannot be read.
  // Both references must outlive the feed.
  CContactFeedLinux(CContactCache& cache, CWaitBudget& loading, std::chrono::milliseconds delay);
  CContactFeedLinux(const CContactFeedLinux&) = delete;
  CContactFeedLinux& operator=(const CContactFeedLinux&) = delete;
  ~CContactFeedLinux();

  // Begins at once unless already begun. Thread: any.
  void hurry();

 private:
  struct Call;

  // The functions below run on the feed's thread.
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

  // Used only on the feed's thread.
  const GObjectPtr<GCancellable> cancellable_;
  bool begun_ = false;
  bool ended_ = false;
  GObjectPtr<ESourceRegistry> registry_;
  std::map<std::string, std::shared_ptr<CEdsBookLinux>> books_;

  CGlibThreadLinux thread_;
};

}  // namespace zantrio
