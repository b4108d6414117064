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

// Sample messages for users without received ones. Their files are generated whenever they are read
// and are not on disk.
// Thread: any. They are created at the first use.
class CSamples {
 public:
  // `offered`: false for no samples.
  explicit CSamples(bool offered) : offered_(offered) {}

  std::vector<const CMessage*> messages();
  // Null if there is none.
  CMessage* find(const std::string& bucketId);
  // Content of an existing file.
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
  void makeWelcome();
  void makeManyFiles();

  const bool offered_;
  std::once_flag made_;
  std::map<std::string, Sample> samples_;  // by bucket; read-only after their creation
};

}  // namespace zantrio::devservice
