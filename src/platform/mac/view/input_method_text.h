// What the system's input methods hand over: strings, or strings with attributes.
#pragma once

#import <AppKit/AppKit.h>

#include "osr/input/text_input.h"

namespace client {

std::u16string textOf(id string);

// The lines under a composition, as its attributes ask for them, or one under all of it.
TextInput::Underlines underlinesOf(id string);

}  // namespace client
