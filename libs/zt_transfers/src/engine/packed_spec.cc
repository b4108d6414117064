#include "engine/packed_spec.h"

#include <cstring>

namespace zt_transfers {
namespace {

// Numbers are written seven bits a byte, the lowest first; texts as their length and their bytes.
class CPacker {
 public:
  void number(std::uint64_t value) {
    while (value >= 0x80) {
      bytes_.push_back(static_cast<char>(value | 0x80));
      value >>= 7;
    }
    bytes_.push_back(static_cast<char>(value));
  }
  void text(std::string_view value) {
    number(value.size());
    bytes_.append(value);
  }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

class CUnpacker {
 public:
  explicit CUnpacker(const char* at) : at_(at) {}
  std::uint64_t number() {
    std::uint64_t value = 0;
    int shift = 0;
    unsigned char byte = 0;
    do {
      byte = static_cast<unsigned char>(*at_++);
      value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
      shift += 7;
    } while ((byte & 0x80) != 0);
    return value;
  }
  std::string_view text() {
    const auto length = static_cast<std::size_t>(number());
    const std::string_view value(at_, length);
    at_ += length;
    return value;
  }

 private:
  const char* at_;
};

}  // namespace

CPackedSpec::CPackedSpec(const FileSpec& spec) {
  CPacker packer;
  packer.text(spec.fileId);
  packer.text(spec.place);
  packer.text(spec.url);
  packer.number(spec.headers.size());
  for (const auto& [name, value] : spec.headers) {
    packer.text(name);
    packer.text(value);
  }
  packer.number(spec.size);
  packer.number(spec.modified);
  packer.number(spec.expires);
  packer.text(spec.contentMd5);
  block_.reset(new char[packer.bytes().size()]);
  std::memcpy(block_.get(), packer.bytes().data(), packer.bytes().size());
}

FileSpec CPackedSpec::unpacked() const {
  CUnpacker unpacker(block_.get());
  FileSpec spec;
  spec.fileId = unpacker.text();
  spec.place = unpacker.text();
  spec.url = unpacker.text();
  spec.headers.resize(static_cast<std::size_t>(unpacker.number()));
  for (auto& [name, value] : spec.headers) {
    name = unpacker.text();
    value = unpacker.text();
  }
  spec.size = unpacker.number();
  spec.modified = unpacker.number();
  spec.expires = unpacker.number();
  spec.contentMd5 = unpacker.text();
  return spec;
}

std::string_view CPackedSpec::fileId() const {
  return CUnpacker(block_.get()).text();
}

std::string_view CPackedSpec::place() const {
  CUnpacker unpacker(block_.get());
  unpacker.text();
  return unpacker.text();
}

}  // namespace zt_transfers
