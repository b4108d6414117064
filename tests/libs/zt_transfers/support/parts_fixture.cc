#include "parts_fixture.h"

#include <chrono>
#include <filesystem>
#include <sstream>
#include <thread>

#include "base/wide_bytes.h"
#include "zt_transfers/global_config.h"

namespace zt_transfers::test {

namespace fs = std::filesystem;

void CPartsTest::SetUp() {
  auto* config = CZtTransfersGlobalConfig::getInstance();
  config->setAppFilesPath(widened(sandbox.folder().string()));
  config->setUserAgent("Zantrio-Test/1.0");
  createMessage();
  manager = std::make_unique<CUploadManager>();
  manager->subscribeToEvents(&recorder);
  configure([](auto& configuration) {
    configuration.minMultipartSize = 1;
    configuration.partSize = kPart;
  });
}

void CPartsTest::TearDown() {
  manager.reset();
}

void CPartsTest::configure(const std::function<void(CUploadManager::Configuration&)>& change) {
  auto configuration = manager->getConfiguration();
  change(configuration);
  manager->setConfiguration(configuration);
}

CUploadManager::FileDesc CPartsTest::describe(const std::string& name, const std::string& content) {
  CUploadManager::FileDesc file;
  file.fileId = name;
  file.fileURL = fileUrl(sandbox.file(name, content));
  file.url = server_->url() + announce("", name);
  file.headers = {{"X-Zantrio-Token", token_}};
  return file;
}

std::int32_t CPartsTest::upload(const std::vector<CUploadManager::FileDesc>& files) {
  const std::int32_t group = manager->createGroup("bucket", "message", "token", 0);
  manager->queueFiles(group, files);
  manager->markQueue(group);
  manager->startup();
  return group;
}

void CPartsTest::uploadAll(const std::vector<CUploadManager::FileDesc>& files) {
  ASSERT_TRUE(recorder.waitForGroupState(upload(files), kGroupCompleted));
}

void CPartsTest::restartManager() {
  const auto configuration = manager->getConfiguration();
  manager->shutdown();
  manager = std::make_unique<CUploadManager>();
  manager->subscribeToEvents(&recorder);
  manager->setConfiguration(configuration);
  manager->startup();
}

bool CPartsTest::waitForMoreThan(std::int32_t group, std::uint64_t bytes) {
  return recorder.waitForGroup(
      group, [bytes](const auto& state) { return state.bytesTransferred > bytes; });
}

void CPartsTest::fault(const std::string& method, const std::string& query,
                       const std::string& what) {
  const std::string rule =
      "{\"method\":\"" + method + "\",\"query\":\"" + query + "\"," + what + "}";
  const auto response = request("POST", "/faults", rule);
  ASSERT_EQ(response.status, 201) << response.body;
}

int CPartsTest::count(const std::string& method, const std::string& query) {
  fault(method, query, R"("type":"delay","milliseconds":0)");
  return static_cast<int>(request("GET", "/faults").json()["faults"].size());
}

std::uint64_t CPartsTest::counted(int rule) {
  return request("GET", "/faults").json()["faults"][rule - 1]["used"].asUInt64();
}

void CPartsTest::stallPart(int number) {
  fault("PUT", "*partNumber=" + std::to_string(number) + "&*", R"("type":"stall","count":1)");
}

std::string CPartsTest::arrived(const std::string& name) const {
  return contentOf(arrivedFile(name));
}

std::vector<std::string> CPartsTest::sessions() const {
  std::vector<std::string> ids;
  for (const auto& entry : fs::directory_iterator(fs::path(options_.data) / "multipart")) {
    ids.push_back(entry.path().filename().string());
  }
  return ids;
}

std::string CPartsTest::log() const {
  return contentOf(sandbox.folder() / "zt_transfers.log");
}

}  // namespace zt_transfers::test
