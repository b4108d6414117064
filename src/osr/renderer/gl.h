// OpenGL with its fixed-function operations, under the name that the system's headers have.
#pragma once

#if __has_include(<OpenGL/gl.h>)
#include <OpenGL/gl.h>
#else
#include <GL/gl.h>
#endif
