#pragma once

namespace zantrio {
class CAppSettings;
}

namespace zantrio::messages {

// Sets the transfer library's service address, user agent and data folder. Call it before the first
// manager is used. Thread: UI.
void initializeTransfers(const CAppSettings& settings);

}  // namespace zantrio::messages
