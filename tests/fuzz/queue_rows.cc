// A queue's database of the present schema whose rows hold anything: the queue is read, without
// rows that make no sense, or refused as unusable.
#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "expect.h"
#include "store/queue_database.h"
#include "store/stored_queue.h"

namespace fuzz {
namespace {

using namespace zt_transfers;

struct Table {
  const char* insert;
  int columns;
};

constexpr std::array<Table, 6> kTables{{
    {"INSERT OR REPLACE INTO groups VALUES(?,?,?,?,?,?,?,?)", 8},
    {"INSERT OR REPLACE INTO files VALUES(?,?,?,?)", 4},
    {"INSERT OR REPLACE INTO specs VALUES(?,?)", 2},
    {"INSERT OR REPLACE INTO resumes VALUES(?,?)", 2},
    {"INSERT OR REPLACE INTO failures VALUES(?,?,?)", 3},
    {"INSERT OR REPLACE INTO leftovers VALUES(?,?)", 2},
}};

// Mostly of one of two groups, so that rows meet.
std::int64_t anyId(FuzzedDataProvider& input, bool ofFile) {
  if (input.ConsumeIntegralInRange(0, 15) == 0) {
    return input.ConsumeIntegral<std::int64_t>();
  }
  const std::int64_t group = input.ConsumeIntegralInRange(1, 2);
  return ofFile ? group << 32 | input.ConsumeIntegralInRange(0, 3) : group;
}

void bindAny(FuzzedDataProvider& input, CSqliteStatement& row, int parameter, std::string& bytes) {
  switch (input.ConsumeIntegralInRange(0, 3)) {
    case 0:
      row.bindNull(parameter);
      break;
    case 1:
      row.bind(parameter, input.ConsumeIntegral<std::int64_t>());
      break;
    case 2:
      row.bind(parameter, input.ConsumeIntegralInRange(0, 3));
      break;
    default:
      bytes = input.ConsumeRandomLengthString(64);
      row.bindBytes(parameter, bytes);
  }
}

void addRow(FuzzedDataProvider& input, CQueueDatabase& database) {
  const std::size_t number = input.ConsumeIntegralInRange<std::size_t>(0, kTables.size() - 1);
  const Table& table = kTables[number];
  CSqliteStatement row(database.connection().get(), table.insert);
  row.bind(1, anyId(input, number != 0 && number != kTables.size() - 1));
  std::array<std::string, 8> bytes;
  for (int column = 2; column <= table.columns; ++column) {
    bindAny(input, row, column, bytes.at(static_cast<std::size_t>(column) - 1));
  }
  try {
    row.run();
  } catch (const CSqliteError&) {
    row.reset();  // a column that takes no NULL
  }
}

void checkGroup(const RestoredGroup& group, CQueueCache& store) {
  const std::int32_t id = group.group.identity.id;
  for (const auto& [index, resume] : group.resumes) {
    expect(index < group.files.size() && resume.begun());
  }
  for (const auto& [index, failure] : group.failures) {
    expect(index < group.files.size());
  }
  for (std::uint32_t index = 0; index < group.files.size(); ++index) {
    if (group.files[index].phase != FilePhase::kRemoved) {
      expect(store.find(id, store.fileId({id, index})).has_value());
    }
  }
}

void readSpecs(CQueueDatabase& database, const RestoredGroup& group) {
  const auto count = static_cast<std::uint32_t>(group.files.size());
  database.readSpecs(group.group.identity.id, 0, count, [](FileRef, std::string_view bytes) {
    const CPackedSpec spec = CPackedSpec::of(bytes);
    spec.unpacked();
    spec.location();
  });
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  zt_transfers::CQueueDatabase database(":memory:");
  while (input.remaining_bytes() > 0) {
    fuzz::addRow(input, database);
  }
  zt_transfers::CQueueCache store;
  zt_transfers::RestoredQueue found;
  try {
    zt_transfers::readQueue(database, store, found);
  } catch (const zt_transfers::CQueueDatabase::CUnusable&) {
    return 0;
  }
  for (const auto& group : found.groups) {
    fuzz::checkGroup(group, store);
    fuzz::readSpecs(database, group);
  }
  return 0;
}
