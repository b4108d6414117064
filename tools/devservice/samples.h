#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "devservice/content.h"
#include "devservice/message.h"

namespace zantrio::devservice {

// Messages that are there from the beginning, for who has nothing to fetch yet. Their files are
// made by code whenever they are read; nothing of them is on the disk.
// Thread: any. They are made at the first use.
class CSamples {
 public:
  // `offered`: false for none at all.
  explicit CSamples(bool offered) : offered_(offered) {}

  std::vector<const CMessage*> messages();
  // Null when there is none.
  CMessage* find(const std::string& bucketId);
  // Content of a file that is there.
  std::unique_ptr<IContent> open(const std::string& bucketId, const std::string& path);

 private:
  using Maker = std::function<std::unique_ptr<IContent>()>;
  struct Sample {
    CMessage message;
    std::map<std::string, Maker> contents;  // by path
  };

  void make();
  Sample& addMessage(const std::string& id, const std::string& subject, const std::string& text);
  static void addFile(Sample& sample, const std::string& path, Maker maker);
  void makeTour();
  void makeManyFiles();

  const bool offered_;
  std::once_flag made_;
  std::map<std::string, Sample> samples_;  // by bucket; only read once they are made
};

}  // namespace zantrio::devservice
