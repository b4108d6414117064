// The system's header with macOS's names of the times. Linux's structure has no birth time; the
// time of the last status change replaces it.
#pragma once
#pragma GCC system_header

#include_next <sys/stat.h>

#define st_mtimespec st_mtim
#define st_birthtimespec st_ctim
