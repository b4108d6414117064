#pragma once

namespace zantrio {
class CAppSettings;
}

namespace zantrio::messages {

// Tells the transfer library the service's address, the user agent and where its files go. To be
// called before the first manager is used. Thread: UI.
void initializeTransfers(const CAppSettings& settings);

}  // namespace zantrio::messages
