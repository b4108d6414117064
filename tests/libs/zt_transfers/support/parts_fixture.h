#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/eventually.h"
#include "tools/devservice/service_fixture.h"
#include "upload_fixture.h"

namespace zt_transfers::test {

using zantrio::test::eventually;

// An upload manager against the local service, which takes uploads in parts. Every file that is not
// empty is sent in parts of 64 KiB.
class CPartsTest : public zantrio::devservice::ServiceTest {
 protected:
  static constexpr std::size_t kPart = 64 * 1024;

  void SetUp() override;
  void TearDown() override;

  void configure(const std::function<void(CUploadManager::Configuration&)>& change);
  // A file of the message, whose fileId and name are `name`.
  CUploadManager::FileDesc describe(const std::string& name, const std::string& content);
  // A started group of these files, marked.
  std::int32_t upload(const std::vector<CUploadManager::FileDesc>& files);
  // The same, waited for until it is completed.
  void uploadAll(const std::vector<CUploadManager::FileDesc>& files);
  // Another manager takes up what the first one has left.
  void restartManager();
  // Waits until this many bytes and one more are on their way.
  bool waitForMoreThan(std::int32_t group, std::uint64_t bytes);

  // Makes requests with this method and query fail. An object of rules without their braces.
  void fault(const std::string& method, const std::string& query, const std::string& what);
  // From now on requests like these are counted, unless an earlier rule is for them.
  int count(const std::string& method, const std::string& query);
  std::uint64_t counted(int rule);
  // The n-th part does not get on, as long as the service lives.
  void stallPart(int number);

  // What arrived under this name; nothing when it did not.
  std::string arrived(const std::string& name) const;
  std::vector<std::string> sessions() const;
  // Asks again and again; false when that takes longer than a minute.
  bool waitForNoSession() const {
    return eventually([this] { return sessions().empty(); });
  }
  std::string log() const;

  CSandbox sandbox;
  CRecorder recorder;
  std::unique_ptr<CUploadManager> manager;
};

}  // namespace zt_transfers::test
