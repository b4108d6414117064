// Streams that the program implements.
#ifndef CEF_INCLUDE_CEF_STREAM_H_
#define CEF_INCLUDE_CEF_STREAM_H_

#include <cstdint>

#include "include/cef_base.h"

// Receives bytes. Implemented by the program.
class CefWriteHandler : public virtual CefBaseRefCounted {
 public:
  // Writes `n` items of `size` bytes and returns the number of items written.
  virtual size_t Write(const void* ptr, size_t size, size_t n) = 0;
  // Moves the position like fseek. 0 on success.
  virtual int Seek(int64_t offset, int whence) = 0;
  virtual int64_t Tell() = 0;
  virtual int Flush() = 0;
  // Whether the methods may block on a device.
  virtual bool MayBlock() = 0;
};

class CefStreamWriter : public virtual CefBaseRefCounted {
 public:
  static CefRefPtr<CefStreamWriter> CreateForHandler(CefRefPtr<CefWriteHandler> handler);

  virtual size_t Write(const void* ptr, size_t size, size_t n) = 0;
  virtual int Seek(int64_t offset, int whence) = 0;
  virtual int64_t Tell() = 0;
  virtual int Flush() = 0;
  virtual bool MayBlock() = 0;
};

#endif  // CEF_INCLUDE_CEF_STREAM_H_
