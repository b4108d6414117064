// The script that every document gets before its own ones run.
#pragma once

#include <QString>
#include <utility>
#include <vector>

namespace cef_qt {

// Names of a router's two functions: query and cancel.
using RouterNames = std::pair<QString, QString>;
using RouterNameList = std::vector<RouterNames>;

// Query and cancel names one after the other, as JSON.
QString toJson(const RouterNameList& routers);

// The script's text. A document tells the version of the script it got. The lists are the functions
// that top documents and documents in frames are expected to get; a document whose list proves
// different is corrected.
QString pageScript(int version, const QString& dialogScheme, const RouterNameList& top,
                   const RouterNameList& frames);

}  // namespace cef_qt
