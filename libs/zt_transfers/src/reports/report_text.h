#pragma once

#include <string>

#include "engine/transfer_engine.h"

namespace zt_transfers {

// The JSON of a report (docs/service-api.md). `direction`: "upload" or "download".
std::string reportText(const std::string& direction, const CTransferEngine::GroupReport& report);

// The URL for reports of this bucket; empty without a REST end point.
std::string reportUrl(const std::string& restEndPoint, const std::string& bucketId);

}  // namespace zt_transfers
