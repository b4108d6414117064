#include "zt_transfers/global_config.h"

#include "base/wide_bytes.h"

namespace zt_transfers {

CZtTransfersGlobalConfig* CZtTransfersGlobalConfig::getInstance() {
  static CZtTransfersGlobalConfig instance;
  return &instance;
}

void CZtTransfersGlobalConfig::setRestEndPointUrl(const std::string& url) {
  const std::lock_guard lock(mutex_);
  restEndPointUrl_ = url;
}

void CZtTransfersGlobalConfig::setUserAgent(const std::string& userAgent) {
  const std::lock_guard lock(mutex_);
  userAgent_ = userAgent;
}

void CZtTransfersGlobalConfig::setAppFilesPath(const std::wstring& path) {
  const std::lock_guard lock(mutex_);
  appFilesPath_ = bytesOf(path);
}

std::string CZtTransfersGlobalConfig::restEndPointUrl() const {
  const std::lock_guard lock(mutex_);
  return restEndPointUrl_;
}

std::string CZtTransfersGlobalConfig::userAgent() const {
  const std::lock_guard lock(mutex_);
  return userAgent_;
}

std::string CZtTransfersGlobalConfig::appFilesPath() const {
  const std::lock_guard lock(mutex_);
  return appFilesPath_;
}

}  // namespace zt_transfers
