// GNUstep's headers include this for blocks.
#pragma once

#include <Block.h>
