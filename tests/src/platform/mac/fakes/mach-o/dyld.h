#pragma once

#include <cstdint>

// Declared as the system has it.
extern "C" int _NSGetExecutablePath(char* buffer, std::uint32_t* bufferSize);
