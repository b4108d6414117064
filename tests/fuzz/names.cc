// Any two names of a service, as paths of received files and as summaries of messages: what is made
// of them stays in its folder, is visible and harmless, and different paths stay different.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "download/received_name.h"
#include "download/target_path.h"
#include "expect.h"
#include "shown_text/characters.h"
#include "transfers/safe_folder_name.h"

namespace fuzz {
namespace {

using zt_transfers::TargetPath;

bool showsControl(std::string_view text) {
  while (!text.empty()) {
    const shown_text::Character character = shown_text::firstCharacter(text);
    if (character.valid && shown_text::isControl(character.code)) {
      return true;
    }
    text.remove_prefix(character.length);
  }
  return false;
}

void expectStays(const std::string& name) {
  expect(!name.empty() && name != "." && name != "..");
  expect(name.size() <= zt_transfers::kLongestName);
  expect(name.find('/') == std::string::npos && name.find('\0') == std::string::npos);
}

void expectHarmless(const std::string& name) {
  expectStays(name);
  expect(name.front() != '.' && name.front() != '-' && !showsControl(name));
}

std::optional<TargetPath> targetOf(std::string_view path) {
  try {
    return zt_transfers::parseTargetPath(path);
  } catch (const std::invalid_argument&) {
    return std::nullopt;
  }
}

void checkTarget(const TargetPath& target) {
  for (const std::string& folder : target.folders) {
    expectStays(folder);
  }
  expectStays(target.name);
  const TargetPath received = zt_transfers::receivedTarget(target);
  expect(received.folders.size() == target.folders.size());
  for (const std::string& folder : received.folders) {
    expectHarmless(folder);
  }
  expectHarmless(received.name);
  for (const unsigned count : {1U, zt_transfers::kMaxCounted}) {
    expectHarmless(zt_transfers::countedName(received.name, count));
  }
  expectStays(zt_transfers::partialName(received.name, target.name));
}

void checkSummary(const std::string& summary) {
  const std::string folder = zantrio::safeFolderName(summary);
  expect(folder.empty() == summary.empty());
  std::string_view rest = folder;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('/'), rest.size());
    expectHarmless(std::string(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

}  // namespace
}  // namespace fuzz

// The first byte says where the first text ends.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
  const std::string_view first = text.substr(0, data[0]);
  const std::string_view second = text.substr(first.size());
  const auto left = fuzz::targetOf(first);
  const auto right = fuzz::targetOf(second);
  for (const auto& target : {left, right}) {
    if (target) {
      fuzz::checkTarget(*target);
    }
  }
  if (left && right) {
    fuzz::expect((*left == *right) ==
                 (zt_transfers::receivedTarget(*left) == zt_transfers::receivedTarget(*right)));
  }
  fuzz::checkSummary(std::string(first));
  return 0;
}
