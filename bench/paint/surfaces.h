#pragma once

namespace bench {

// Compares the view's way of frames to the screen with Qt's OpenGL widget: prints time and
// processor time per frame of 1400 × 900. Needs a QApplication.
void compareSurfaces();

}  // namespace bench
