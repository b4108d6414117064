#include "store/packed_spec.h"

#include <cstdint>
#include <cstring>

#include "store/packing.h"

namespace zt_transfers {
namespace {

std::string packed(const FileSpec& spec) {
  CPacker packer;
  packer.reserve(spec.location.size() + spec.url.size() + spec.contentMd5.size() + 64);
  packer.text(spec.location);
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
  return packer.bytes();
}

}  // namespace

CPackedSpec::CPackedSpec(const FileSpec& spec) : CPackedSpec(of(packed(spec))) {}

CPackedSpec CPackedSpec::of(std::string_view bytes) {
  CPackedSpec spec;
  const auto size = static_cast<std::uint32_t>(bytes.size());
  spec.block_.reset(new char[sizeof size + bytes.size()]);
  std::memcpy(spec.block_.get(), &size, sizeof size);
  bytes.copy(spec.block_.get() + sizeof size, bytes.size());
  return spec;
}

std::string_view CPackedSpec::bytes() const {
  if (empty()) {
    return {};
  }
  std::uint32_t size = 0;
  std::memcpy(&size, block_.get(), sizeof size);
  return {block_.get() + sizeof size, size};
}

std::optional<FileSpec> CPackedSpec::unpacked() const {
  CUnpacker unpacker(bytes());
  FileSpec spec;
  spec.location = unpacker.text();
  spec.url = unpacker.text();
  const std::uint64_t headers = unpacker.number();
  for (std::uint64_t count = 0; count < headers && unpacker.ok(); ++count) {
    std::string name(unpacker.text());
    spec.headers.emplace_back(std::move(name), std::string(unpacker.text()));
  }
  spec.size = unpacker.number();
  spec.modified = unpacker.number();
  spec.expires = unpacker.number();
  spec.contentMd5 = unpacker.text();
  if (!unpacker.ok()) {
    return std::nullopt;
  }
  return spec;
}

std::optional<std::string> CPackedSpec::location() const {
  CUnpacker unpacker(bytes());
  std::string location(unpacker.text());
  if (!unpacker.ok()) {
    return std::nullopt;
  }
  return location;
}

}  // namespace zt_transfers
