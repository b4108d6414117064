// What Foundation's headers here ask for where there are blocks, from the library that runs them.
#pragma once

#include <Block.h>
