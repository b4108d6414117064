// The script that every document runs before its own scripts.
#pragma once

#include <QString>
#include <utility>
#include <vector>

namespace cef_qt {

// The names of a router's query function and cancel function.
using RouterNames = std::pair<QString, QString>;
using RouterNameList = std::vector<RouterNames>;

// A JSON array of alternating query and cancel names.
QString toJson(const RouterNameList& routers);

// The lists are the functions that top documents and documents in frames are predicted to get. A
// document reports the version of its script, so that a wrong prediction is corrected.
QString pageScript(int version, const QString& dialogScheme, const RouterNameList& top,
                   const RouterNameList& frames);

}  // namespace cef_qt
