#include "devservice/message_journal.h"

#include <sstream>
#include <utility>

namespace zantrio::devservice {

namespace {

constexpr const char* kMessageFile = "message.json";
constexpr const char* kJournalFile = "journal.jsonl";

std::string line(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  return Json::writeString(builder, value) + "\n";
}

bool parse(const std::string& text, Json::Value& value) {
  static const Json::CharReaderBuilder kBuilder;
  const std::unique_ptr<Json::CharReader> reader(kBuilder.newCharReader());
  return reader->parse(text.data(), text.data() + text.size(), &value, nullptr) && value.isObject();
}

std::string announcement(const MessageFile& file) {
  Json::Value entry;
  entry["announced"] = file.path;
  entry["size"] = Json::UInt64(file.size);
  entry["modified"] = Json::Int64(file.modified);
  return line(entry);
}

void replay(const Json::Value& entry, CMessage& message) {
  if (entry.isMember("announced")) {
    MessageFile file;
    file.path = entry["announced"].asString();
    file.size = entry["size"].asUInt64();
    file.modified = entry["modified"].asInt64();
    message.restore(std::move(file));
  } else if (MessageFile* file = message.byId(entry["arrived"].asString())) {
    file->arrived = true;
    file->arrivedSize = entry["size"].asUInt64();
    file->md5 = entry["md5"].asString();
    file->etag = entry.get("etag", file->md5).asString();
  } else if (MessageFile* gone = message.byId(entry["removed"].asString())) {
    gone->removed = true;
    gone->arrived = false;
  } else if (MessageFile* emptied = message.byId(entry["deleted"].asString())) {
    emptied->arrived = false;
  }
}

}  // namespace

CMessageJournal::CMessageJournal(std::filesystem::path folder) : folder_(std::move(folder)) {}

void CMessageJournal::saveMessage(const CMessage& message) {
  Json::Value json;
  json["id"] = message.id;
  json["token"] = message.token;
  json["tokenExpires"] = Json::UInt64(message.tokenExpires);
  json["subject"] = message.subject;
  json["text"] = message.text;
  json["sender"] = message.sender;
  json["recipients"] = message.recipients;
  json["state"] = stateName(message.state);
  json["created"] = Json::Int64(message.created);
  json["expires"] = Json::UInt64(message.expires);
  replaceText(folder_ / kMessageFile, json.toStyledString());
}

void CMessageJournal::announced(const std::vector<MessageFile>& files) {
  std::string lines;
  for (const MessageFile& file : files) {
    lines += announcement(file);
  }
  append(lines);
}

void CMessageJournal::arrived(const MessageFile& file) {
  Json::Value entry;
  entry["arrived"] = file.id;
  entry["size"] = Json::UInt64(file.arrivedSize);
  entry["md5"] = file.md5;
  if (file.etag != file.md5) {
    entry["etag"] = file.etag;
  }
  append(line(entry));
}

void CMessageJournal::removed(const MessageFile& file) {
  Json::Value entry;
  entry["removed"] = file.id;
  append(line(entry));
}

void CMessageJournal::deleted(const MessageFile& file) {
  Json::Value entry;
  entry["deleted"] = file.id;
  append(line(entry));
}

void CMessageJournal::append(const std::string& lines) {
  if (!file_) {
    // Begins with a line end, so that a line truncated by a crash does not swallow the next one.
    file_ = std::make_unique<CFile>(CFile::openForAppending(folder_ / kJournalFile));
    file_->write(std::string("\n"));
  }
  file_->write(lines);
}

std::unique_ptr<CMessage> CMessageJournal::load(const std::filesystem::path& folder) {
  Json::Value json;
  if (!parse(readText(folder / kMessageFile), json)) {
    return nullptr;
  }
  auto message = std::make_unique<CMessage>();
  message->id = json["id"].asString();
  message->token = json["token"].asString();
  message->tokenExpires = json["tokenExpires"].asUInt64();
  message->subject = json["subject"].asString();
  message->text = json["text"].asString();
  message->sender = json["sender"].asString();
  message->recipients = json["recipients"];
  message->state = stateFromName(json["state"].asString());
  message->created = json["created"].asInt64();
  message->expires = json["expires"].asUInt64();

  std::istringstream lines(readText(folder / kJournalFile));
  for (std::string text; std::getline(lines, text);) {
    if (Json::Value entry; parse(text, entry)) {
      replay(entry, *message);
    }
  }
  return message;
}

}  // namespace zantrio::devservice
