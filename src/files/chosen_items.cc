#include "files/chosen_items.h"

#include <Poco/Path.h>

#include <utility>

#include "app/log/logger.h"
#include "app/text/utf8_text.h"
#include "files/file_item_json.h"
#include "files/file_url.h"
#include "files/folder_walk.h"
#include "files/path_names.h"

namespace zantrio {
namespace {

Json::Value textOrNull(const std::string& text) {
  return text.empty() ? Json::Value() : Json::Value(toValidUtf8(text));
}

Json::Value makeResponse(Json::Value files, const std::string& directoryName,
                         const std::string& summary) {
  Json::Value response(Json::objectValue);
  response["files"] = std::move(files);
  response["directoryName"] = textOrNull(directoryName);
  response["summary"] = textOrNull(summary);
  return response;
}

std::string toPath(const std::string& url) {
  std::string path;
  fileUrlToPath(url, path);
  return path;
}

}  // namespace

Json::Value describeChosenFiles(const std::vector<std::string>& urls) {
  std::string directoryName;
  if (!urls.empty()) {
    directoryName = parentFolderName(Poco::Path(toPath(urls.front())));
  }
  Json::Value files(Json::arrayValue);
  logInformation("selectFiles", ": User selected the following files: ");
  for (const std::string& url : urls) {
    logInformation("\t", url);
    const std::string path = toPath(url);
    Json::Value record;
    if (fillFileItemJson(record, path, "", "")) {
      files.append(std::move(record));
    }
    // Only names are compared, not whole paths: folders with equal names in two places count as
    // one.
    if (!directoryName.empty() && parentFolderName(Poco::Path(path)) != directoryName) {
      directoryName.clear();
    }
  }
  const std::string summary =
      urls.size() == 1 ? Poco::Path(toPath(urls.front())).getFileName() : directoryName;
  return makeResponse(std::move(files), directoryName, summary);
}

Json::Value describeChosenFolder(const std::string& url) {
  logInformation("selectFolder", ": user selected the following folder: ", url);
  const std::string folder = toPath(url);
  Json::Value files(Json::arrayValue);
  CFolderWalk(files, folder).walk(folder);
  const std::string name = Poco::Path(folder).getBaseName();
  return makeResponse(std::move(files), name, name);
}

}  // namespace zantrio
