#pragma once

#include "base/log.h"
#include "base/worker_pool.h"
#include "engine/attempt.h"
#include "http/http_loop.h"

namespace zt_transfers {

// Used by every class of this folder; all must outlive it.
struct UploadDependencies {
  CHttpLoop& loop;
  CWorkerPool& pool;
  ILog& log;
  IAttemptObserver& observer;
};

}  // namespace zt_transfers
