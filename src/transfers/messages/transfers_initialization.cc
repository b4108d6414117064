#include "transfers/messages/transfers_initialization.h"

#include <string>

#include "app/log/logger.h"
#include "app/settings/app_settings.h"
#include "transfers/transfer_json.h"
#include "zt_transfers/global_config.h"

namespace zantrio::messages {

void initializeTransfers(const CAppSettings& settings) {
  logInformation("Initializing zt-transfers!");
  zt_transfers::CZtTransfersGlobalConfig* const config =
      zt_transfers::CZtTransfersGlobalConfig::getInstance();
  if (config == nullptr) {
    return;
  }
  std::string restEndPoint;
  std::string userAgent;
  std::string appFilesPath;
  settings.getAppBaseUrl(restEndPoint);
  settings.getUserAgent(userAgent);
  settings.getAppDataFolder(appFilesPath);
  config->setRestEndPointUrl(restEndPoint);
  config->setUserAgent(userAgent);
  config->setAppFilesPath(widenBytes(appFilesPath));
}

}  // namespace zantrio::messages
