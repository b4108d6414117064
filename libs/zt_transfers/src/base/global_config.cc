#include "zt_transfers/global_config.h"

#include "base/mutex.h"
#include "base/wide_bytes.h"

namespace zt_transfers {

struct CZtTransfersGlobalConfig::Values {
  CMutex mutex;
  std::string restEndPointUrl GUARDED_BY(mutex);
  std::string userAgent GUARDED_BY(mutex);
  std::string appFilesPath GUARDED_BY(mutex);
};

CZtTransfersGlobalConfig::CZtTransfersGlobalConfig() : values_(std::make_unique<Values>()) {}

CZtTransfersGlobalConfig::~CZtTransfersGlobalConfig() = default;

CZtTransfersGlobalConfig* CZtTransfersGlobalConfig::getInstance() {
  static CZtTransfersGlobalConfig instance;
  return &instance;
}

void CZtTransfersGlobalConfig::setRestEndPointUrl(const std::string& url) {
  const CMutexLock lock(values_->mutex);
  values_->restEndPointUrl = url;
}

void CZtTransfersGlobalConfig::setUserAgent(const std::string& userAgent) {
  const CMutexLock lock(values_->mutex);
  values_->userAgent = userAgent;
}

void CZtTransfersGlobalConfig::setAppFilesPath(const std::wstring& path) {
  const CMutexLock lock(values_->mutex);
  values_->appFilesPath = bytesOf(path);
}

std::string CZtTransfersGlobalConfig::restEndPointUrl() const {
  const CMutexLock lock(values_->mutex);
  return values_->restEndPointUrl;
}

std::string CZtTransfersGlobalConfig::userAgent() const {
  const CMutexLock lock(values_->mutex);
  return values_->userAgent;
}

std::string CZtTransfersGlobalConfig::appFilesPath() const {
  const CMutexLock lock(values_->mutex);
  return values_->appFilesPath;
}

}  // namespace zt_transfers
