#include "include/cef_stream.h"

namespace {

class HandlerWriter final : public CefStreamWriter {
 public:
  explicit HandlerWriter(CefRefPtr<CefWriteHandler> handler) : handler_(std::move(handler)) {}

  size_t Write(const void* ptr, size_t size, size_t n) override {
    return handler_->Write(ptr, size, n);
  }
  int Seek(int64_t offset, int whence) override { return handler_->Seek(offset, whence); }
  int64_t Tell() override { return handler_->Tell(); }
  int Flush() override { return handler_->Flush(); }
  bool MayBlock() override { return handler_->MayBlock(); }

 private:
  CefRefPtr<CefWriteHandler> handler_;
  IMPLEMENT_REFCOUNTING(HandlerWriter);
};

}  // namespace

CefRefPtr<CefStreamWriter> CefStreamWriter::CreateForHandler(CefRefPtr<CefWriteHandler> handler) {
  if (!handler) {
    return nullptr;
  }
  return new HandlerWriter(std::move(handler));
}
