// The system's own header, with the names that macOS has for the times. There is no birth time in
// the structure here; the time of the last status change stands in its place.
#pragma once
#pragma GCC system_header

#include_next <sys/stat.h>

#define st_mtimespec st_mtim
#define st_birthtimespec st_ctim
