#pragma once

#include <array>

// The names of the bridges, which are the page's query functions.
namespace zantrio::bridge_names {

inline constexpr const char* kAddressBook = "addressBookSearchManagerBridge_IPC";
inline constexpr const char* kDownloads = "downloadManagerBridge_IPC";
inline constexpr const char* kNotifications = "eventNotificationBridge_IPC";
inline constexpr const char* kFiles = "fileHandleChooserBridge_IPC";
inline constexpr const char* kNativeApp = "nativeAppBridge_IPC";
inline constexpr const char* kUploads = "uploadManagerBridge_IPC";

// In ascending order.
inline constexpr std::array kAll = {kAddressBook, kDownloads, kNotifications,
                                    kFiles,       kNativeApp, kUploads};

}  // namespace zantrio::bridge_names
