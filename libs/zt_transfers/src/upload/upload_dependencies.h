#pragma once

#include "base/executor.h"
#include "base/log.h"
#include "engine/attempt.h"
#include "http/http_transport.h"

namespace zt_transfers {

// Used by every class of this folder; all must outlive it.
struct UploadDependencies {
  IHttpTransport& loop;
  IExecutor& pool;
  ILog& log;
  IAttemptObserver& observer;
};

}  // namespace zt_transfers
