#include "src/osr/renderer/gl_recorder.h"

#include <dlfcn.h>

#include "osr/renderer/gl.h"

namespace client::test {
namespace {

GlRecorder* current = nullptr;
int rowLength = 0;
int skippedPixels = 0;
int skippedRows = 0;

// The library's function.
template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// Calls `describe` only while a recorder lives.
template <class Describe>
void note(const Describe& describe) {
  if (current != nullptr) {
    current->note(describe());
  }
}

std::string pair(int a, char between, int b) {
  return std::to_string(a) + between + std::to_string(b);
}

}  // namespace

GlRecorder::GlRecorder() {
  current = this;
}

GlRecorder::~GlRecorder() {
  current = nullptr;
}

}  // namespace client::test

// Interpose the library's functions.
extern "C" {

void glPixelStorei(GLenum name, GLint value) {
  using namespace client::test;
  if (name == GL_UNPACK_ROW_LENGTH) {
    rowLength = value;
  } else if (name == GL_UNPACK_SKIP_PIXELS) {
    skippedPixels = value;
  } else if (name == GL_UNPACK_SKIP_ROWS) {
    skippedRows = value;
  }
  static auto* const kReal = client::test::real<decltype(glPixelStorei)>("glPixelStorei");
  kReal(name, value);
}

void glTexImage2D(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                  GLint border, GLenum format, GLenum type, const void* pixels) {
  using namespace client::test;
  note([&] { return "whole " + pair(width, 'x', height); });
  static auto* const kReal = client::test::real<decltype(glTexImage2D)>("glTexImage2D");
  kReal(target, level, internal, width, height, border, format, type, pixels);
}

void glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                     GLenum format, GLenum type, const void* pixels) {
  using namespace client::test;
  note([&] {
    return "part " + pair(x, ',', y) + " " + pair(width, 'x', height) + " from " +
           pair(skippedPixels, ',', skippedRows) + " of " + std::to_string(rowLength);
  });
  static auto* const kReal = client::test::real<decltype(glTexSubImage2D)>("glTexSubImage2D");
  kReal(target, level, x, y, width, height, format, type, pixels);
}

void glClear(GLbitfield mask) {
  client::test::note([] { return "clear"; });
  static auto* const kReal = client::test::real<decltype(glClear)>("glClear");
  kReal(mask);
}

void glDeleteTextures(GLsizei count, const GLuint* textures) {
  client::test::note([] { return "delete"; });
  static auto* const kReal = client::test::real<decltype(glDeleteTextures)>("glDeleteTextures");
  kReal(count, textures);
}
}
