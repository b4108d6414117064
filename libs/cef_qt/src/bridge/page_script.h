// The script that every document runs before its own scripts.
#pragma once

#include <QString>
#include <utility>
#include <vector>

namespace cef_qt {

// The names of a router's query function and cancel function.
using RouterNames = std::pair<QString, QString>;
using RouterNameList = std::vector<RouterNames>;

// The schemes to which documents send requests.
struct SchemeNames {
  QString dialogs;
  QString origins;
};

// A JSON array of alternating query and cancel names.
QString toJson(const RouterNameList& routers);

// The script creates the query functions when a document begins, before the render side has said
// which routers that document has. `top` and `frames` are the expected functions of top documents
// and of documents in frames. A document reports the version of its script, so that it can be
// corrected if the expectation was wrong.
QString pageScript(int version, const SchemeNames& schemes, const RouterNameList& top,
                   const RouterNameList& frames);

}  // namespace cef_qt
