#include "devservice/samples.h"

#include <utility>

#include "devservice/generated_content.h"
#include "devservice/md5.h"

namespace zantrio::devservice {

namespace {

constexpr const char* kSender = "Zantrio <welcome@zantrio.example>";
constexpr std::int64_t kModified = 1'767'600'000'000;  // fixed, so that tests can check it
constexpr std::int64_t kHour = 3'600'000;
constexpr std::uint64_t kLargeFile = 48'000'000;
constexpr int kManyFiles = 10'000;
constexpr unsigned kPictureWidth = 480;
constexpr unsigned kPictureHeight = 320;

constexpr const char* kWelcome =
    "Welcome to Zantrio.\n"
    "\n"
    "This message and its files come from the local service on your own computer. Download them, "
    "all\n"
    "or some: they go to the folder \"Zantrio\" below your Downloads, or to a folder of your "
    "choice.\n"
    "\n"
    "Whatever you send on the page \"Send\" arrives under \"Received\", too.\n";

// Reads the content once for its size and checksum.
void fillSizeAndDigest(const IContent& content, MessageFile& file) {
  std::vector<char> buffer(256UL * 1024);
  CMd5 md5;
  std::uint64_t size = 0;
  while (const std::size_t count = content.readAt(buffer, size)) {
    md5.update(buffer.data(), count);
    size += count;
  }
  file.size = file.arrivedSize = size;
  file.md5 = file.etag = toHex(md5.finish());
  file.arrived = true;
}

auto text(std::string content) {
  return [content = std::move(content)]() -> std::unique_ptr<IContent> {
    return std::make_unique<CTextContent>(content);
  };
}

auto picture(double timeOfDay) {
  return text(drawSeascape(kPictureWidth, kPictureHeight, timeOfDay));
}

}  // namespace

std::vector<const CMessage*> CSamples::messages() {
  make();
  std::vector<const CMessage*> all;
  for (const auto& [id, sample] : samples_) {
    all.push_back(&sample.message);
  }
  return all;
}

CMessage* CSamples::find(const std::string& bucketId) {
  make();
  const auto found = samples_.find(bucketId);
  return found == samples_.end() ? nullptr : &found->second.message;
}

std::unique_ptr<IContent> CSamples::open(const std::string& bucketId, const std::string& path) {
  make();
  return samples_.at(bucketId).contents.at(path)();
}

void CSamples::make() {
  std::call_once(made_, [this] {
    if (offered_) {
      makeWelcome();
      makeManyFiles();
    }
  });
}

CSamples::Sample& CSamples::addMessage(const std::string& id, const std::string& subject,
                                       const std::string& messageText) {
  Sample& sample = samples_[id];
  sample.message.id = id;
  sample.message.subject = subject;
  sample.message.text = messageText;
  sample.message.sender = kSender;
  sample.message.recipients.append("you@localhost");
  sample.message.state = CMessage::State::kCompleted;
  sample.message.created = kModified;
  return sample;
}

void CSamples::addFile(Sample& sample, const std::string& path, Maker maker) {
  const auto number = static_cast<std::int64_t>(sample.contents.size());
  fillSizeAndDigest(*maker(), sample.message.announce(path, 0, kModified + number * kHour));
  sample.contents[path] = std::move(maker);
}

void CSamples::makeWelcome() {
  Sample& welcome = addMessage("sample-welcome", "Welcome: files to try",
                               "A few files of several kinds, for a first download.");
  addFile(welcome, "Read me first.txt", text(kWelcome));
  addFile(welcome, "Pictures/Dawn.png", picture(0));
  addFile(welcome, "Pictures/Vormittag über dem Meer.png", picture(0.5));
  addFile(welcome, "Pictures/Μεσημέρι.png", picture(1));
  addFile(welcome, "Folders/one/two/three/deep down.txt", text("Three folders deep.\n"));
  addFile(welcome, "Folders/日本語/読んでください.txt", text("こんにちは\n"));
  addFile(welcome, "Folders/100% & more #1.txt",
          text("A name that has to be escaped in addresses.\n"));
  addFile(welcome, "Folders/empty.txt", text(""));
  addFile(welcome, "Large/48 MB of noise.bin",
          [] { return std::make_unique<CNoiseContent>(kLargeFile); });
}

void CSamples::makeManyFiles() {
  Sample& many =
      addMessage("sample-many", "10,000 small files", "Shows that any number of files works.");
  many.message.created -= kHour;  // so that the other sample comes first
  for (int i = 1; i <= kManyFiles; ++i) {
    const std::string number = std::to_string(i);
    const std::string folder = "Folder " + std::to_string((i - 1) / 500 + 1);
    addFile(many, folder + "/Note " + number + ".txt", text("This is note " + number + ".\n"));
  }
}

}  // namespace zantrio::devservice
