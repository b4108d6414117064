#include "upload/source_reader.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "sandbox.h"

namespace zt_transfers::test {
namespace {

using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::Optional;

class SourceReader : public ::testing::Test {
 protected:
  // Reads to the end and gives the content, or the problem.
  static std::string readAll(CSourceReader& reader, std::string& md5) {
    std::string content;
    SourceChunk chunk;
    do {
      if (const auto problem = reader.readNext(chunk)) {
        return problem->reason;
      }
      content.append(chunk.data.get(), chunk.size);
    } while (!chunk.last);
    md5 = chunk.md5;
    return content;
  }

  CSandbox sandbox;
};

TEST_F(SourceReader, GivesContentAndDigestForEverySizeAroundItsChunks) {
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, CSourceReader::kChunk - 1, CSourceReader::kChunk,
        CSourceReader::kChunk + 1, 2 * CSourceReader::kChunk}) {
    const std::string content = patternOf(size);
    CSourceReader reader({.path = sandbox.file("file", content), .hash = true});
    ASSERT_FALSE(reader.open().has_value());
    EXPECT_EQ(reader.version().size, size);
    std::string md5;
    EXPECT_EQ(readAll(reader, md5), content) << size;
    EXPECT_EQ(md5, md5Of(content)) << size;
  }
}

// Of a disk's file system it may be nothing; not every one can tell.
TEST_F(SourceReader, GivesWhatIsCachedAtOnceButTheEndOnlyAfterItsCheck) {
  const CSandbox memory("/dev/shm");
  const std::string content = patternOf(3 * CSourceReader::kChunk);
  const auto inMemory = memory.file("file", content);
  for (const auto& path : {inMemory, sandbox.file("file", content)}) {
    CSourceReader reader({.path = path});
    ASSERT_FALSE(reader.open().has_value());
    std::string cached;
    SourceChunk chunk;
    while (reader.readCached(chunk)) {
      cached.append(chunk.data.get(), chunk.size);
    }
    EXPECT_LE(cached.size(), 2 * CSourceReader::kChunk);
    EXPECT_TRUE(!cached.empty() || path != inMemory);
    std::string md5;
    EXPECT_EQ(cached + readAll(reader, md5), content) << path;

    CSourceReader hashing({.path = path, .hash = true});
    ASSERT_FALSE(hashing.open().has_value());
    EXPECT_FALSE(hashing.readCached(chunk));
  }
}

TEST_F(SourceReader, WithholdsTheEndOfAFileThatChangedOrWhoseNameAnotherTook) {
  namespace fs = std::filesystem;
  const auto path = sandbox.folder() / "file";
  const auto grow = [&] { std::ofstream(path, std::ios::app) << "more"; };
  const auto replace = [&] {
    const auto other = sandbox.file("other", patternOf(CSourceReader::kChunk + 10, 2));
    fs::last_write_time(other, fs::last_write_time(path));
    fs::rename(other, path);
  };
  for (const std::function<void()>& change : {std::function<void()>(grow), {replace}}) {
    sandbox.file("file", patternOf(CSourceReader::kChunk + 10));
    CSourceReader reader({.path = path});
    ASSERT_FALSE(reader.open().has_value());
    SourceChunk chunk;
    ASSERT_FALSE(reader.readNext(chunk).has_value());
    change();
    EXPECT_THAT(reader.readNext(chunk),
                Optional(Field(&AttemptOutcome::reason, HasSubstr("changed"))));
  }
}

TEST_F(SourceReader, FailsForAMissingFileButRestsForAMissingFolderOrALackOfDescriptors) {
  CSourceReader missing({.path = sandbox.folder() / "missing"});
  const auto gone = missing.open();
  EXPECT_THAT(gone, Optional(Field(&AttemptOutcome::code, failure::kSourceMissing)));
  EXPECT_THAT(gone, Optional(Field(&AttemptOutcome::kind, AttemptOutcome::Kind::kFinal)));

  CSourceReader away({.path = sandbox.folder() / "away" / "file"});
  CSourceReader present({.path = sandbox.file("present", "x")});
  const auto folderGone = away.open();
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
  const rlimit none{.rlim_cur = 0, .rlim_max = limit.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const auto noDescriptor = present.open();
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
  for (const auto& outcome : {folderGone, noDescriptor}) {
    ASSERT_TRUE(outcome.has_value());
    EXPECT_EQ(outcome->kind, AttemptOutcome::Kind::kRetry);
    EXPECT_EQ(outcome->retryBudget, AttemptOutcome::RetryBudget::kFree);
  }
  EXPECT_EQ(folderGone->scope, AttemptOutcome::Scope::kFile);  // others may lie elsewhere
  EXPECT_EQ(noDescriptor->scope, AttemptOutcome::Scope::kFolder);
  CSourceReader folder({.path = sandbox.folder()});
  EXPECT_THAT(folder.open(),
              Optional(Field(&AttemptOutcome::reason, HasSubstr("not a regular file"))));
}

}  // namespace
}  // namespace zt_transfers::test
