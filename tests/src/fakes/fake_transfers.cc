#include "src/fakes/fake_transfers.h"

#include <stdexcept>

#include "zt_transfers/global_config.h"

namespace zantrio::test {

FakeTransfers& FakeTransfers::instance() {
  static FakeTransfers fake;
  return fake;
}

void FakeTransfers::reset() {
  *this = FakeTransfers();
}

namespace {

FakeTransfers& fake() {
  return FakeTransfers::instance();
}

void record(const std::string& call) {
  fake().calls.push_back(call);
}

void record(const std::string& call, std::int32_t groupId) {
  record(call + " " + std::to_string(groupId));
}

}  // namespace
}  // namespace zantrio::test

using zantrio::test::fake;
using zantrio::test::record;

namespace zt_transfers {

class CUploadManager::Impl {};
class CDownloadManager::Impl {};

CUploadManager::CUploadManager() {
  ++fake().managersAlive;
}
CUploadManager::~CUploadManager() {
  --fake().managersAlive;
}
void CUploadManager::subscribeToEvents(ICallback* callback) {
  fake().uploadCallback = callback;
}
const CUploadManager::Configuration& CUploadManager::getConfiguration() const {
  return fake().uploadConfiguration;
}
void CUploadManager::setConfiguration(const Configuration& configuration) {
  fake().uploadConfiguration = configuration;
}
void CUploadManager::fetchGroupsInfo(std::vector<GroupState>& groups) {
  groups = fake().uploadGroups;
}
std::int32_t CUploadManager::createGroup(const std::string& bucketId, const std::string& bucketType,
                                         const std::string& token, std::uint64_t tokenExpires) {
  record("createGroup " + bucketId + " " + bucketType + " " + token + " " +
         std::to_string(tokenExpires));
  return fake().createdGroup;
}
int CUploadManager::getGroupState(std::int32_t groupId, GroupState& state) {
  if (fake().groupStateThrows) {
    throw std::runtime_error("no state");
  }
  state.id = groupId;
  return fake().groupStateResult;
}
void CUploadManager::queueFiles(std::int32_t groupId, const std::vector<FileDesc>& files) {
  record("queueFiles", groupId);
  fake().uploadFiles = files;
}
void CUploadManager::dequeueFile(std::int32_t groupId, const std::vector<FileDesc>& files) {
  record("dequeueFile", groupId);
  fake().uploadFiles = files;
}
void CUploadManager::markQueue(std::int32_t groupId) {
  record("markQueue", groupId);
}
void CUploadManager::unmarkQueue(std::int32_t groupId) {
  record("unmarkQueue", groupId);
}
void CUploadManager::pauseGroup(std::int32_t groupId) {
  record("pauseGroup", groupId);
}
void CUploadManager::resumeGroup(std::int32_t groupId) {
  record("resumeGroup", groupId);
}
void CUploadManager::cancelGroup(std::int32_t groupId) {
  record("cancelGroup", groupId);
}
void CUploadManager::startup() {
  record("upload startup");
  if (fake().startupThrows) {
    throw std::runtime_error("no start");
  }
}
void CUploadManager::shutdown() {
  record("upload shutdown");
  if (fake().shutdownThrows) {
    throw std::runtime_error("no end");
  }
}

CDownloadManager::CDownloadManager() {
  ++fake().managersAlive;
}
CDownloadManager::~CDownloadManager() {
  --fake().managersAlive;
}
void CDownloadManager::subscribeToEvents(ICallback* callback) {
  fake().downloadCallback = callback;
}
const CDownloadManager::Configuration& CDownloadManager::getConfiguration() const {
  return fake().downloadConfiguration;
}
void CDownloadManager::setConfiguration(const Configuration& configuration) {
  fake().downloadConfiguration = configuration;
}
void CDownloadManager::fetchGroupsInfo(std::vector<GroupState>& groups) {
  groups = fake().downloadGroups;
}
std::int32_t CDownloadManager::createGroup(const std::string& bucketId,
                                           const std::string& bucketType, const std::string& token,
                                           std::uint64_t tokenExpires,
                                           const std::wstring& downloadDirectory) {
  record("createGroup " + bucketId + " " + bucketType + " " + token + " " +
         std::to_string(tokenExpires));
  fake().downloadDirectory = downloadDirectory;
  return fake().createdGroup;
}
int CDownloadManager::getGroupState(std::int32_t groupId, GroupState& state) {
  state.id = groupId;
  return fake().groupStateResult;
}
void CDownloadManager::queueFiles(std::int32_t groupId,
                                  const std::vector<FileDownloadDetails>& files) {
  record("queueFiles", groupId);
  fake().downloadFiles = files;
}
void CDownloadManager::dequeueFiles(std::int32_t groupId,
                                    const std::vector<FileDownloadDetails>& files) {
  record("dequeueFiles", groupId);
  fake().downloadFiles = files;
}
void CDownloadManager::pauseGroup(std::int32_t groupId) {
  record("pauseGroup", groupId);
}
void CDownloadManager::resumeGroup(std::int32_t groupId) {
  record("resumeGroup", groupId);
}
void CDownloadManager::cancelGroup(std::int32_t groupId) {
  record("cancelGroup", groupId);
}
void CDownloadManager::startup() {
  record("download startup");
}
void CDownloadManager::shutdown() {
  record("download shutdown");
}

CZtTransfersGlobalConfig* CZtTransfersGlobalConfig::getInstance() {
  static CZtTransfersGlobalConfig config;
  return &config;
}
void CZtTransfersGlobalConfig::setRestEndPointUrl(const std::string& url) {
  fake().restEndPoint = url;
}
void CZtTransfersGlobalConfig::setUserAgent(const std::string& userAgent) {
  fake().userAgent = userAgent;
}
void CZtTransfersGlobalConfig::setAppFilesPath(const std::wstring& path) {
  fake().appFilesPath = path;
}

}  // namespace zt_transfers
