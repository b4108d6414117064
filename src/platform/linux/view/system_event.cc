#include "platform/linux/view/system_event.h"

#include <QApplication>
#include <QMimeData>
#include <QUrl>
#include <algorithm>

#include "osr/input/system_event.h"

namespace client {
namespace {

// Points per wheel line, as in an ordinary browser window.
constexpr double kPointsOfALine = 20;
constexpr double kAngleOfAStep = 120;

OsrPoint toPoint(const QPointF& point) {
  return {point.x(), point.y()};
}

EventKind pressOf(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return EventKind::kLeftDown;
    case Qt::RightButton:
      return EventKind::kRightDown;
    default:
      return EventKind::kOtherDown;
  }
}

EventKind releaseOf(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return EventKind::kLeftUp;
    case Qt::RightButton:
      return EventKind::kRightUp;
    default:
      return EventKind::kOtherUp;
  }
}

EventKind moveOf(Qt::MouseButtons held) {
  if (held & Qt::LeftButton) {
    return EventKind::kLeftDragged;
  }
  if (held & Qt::RightButton) {
    return EventKind::kRightDragged;
  }
  return held & Qt::MiddleButton ? EventKind::kOtherDragged : EventKind::kMoved;
}

EventKind kindOf(const QMouseEvent& event) {
  switch (event.type()) {
    case QEvent::MouseButtonRelease:
      return releaseOf(event.button());
    case QEvent::MouseMove:
      return moveOf(event.buttons());
    default:
      return pressOf(event.button());
  }
}

ScrollPhase phaseOf(Qt::ScrollPhase phase) {
  switch (phase) {
    case Qt::ScrollBegin:
      return ScrollPhase::kBegan;
    case Qt::ScrollUpdate:
    case Qt::ScrollMomentum:
      return ScrollPhase::kChanged;
    case Qt::ScrollEnd:
      return ScrollPhase::kEnded;
    default:
      return ScrollPhase::kNone;
  }
}

struct ModifierPair {
  Qt::KeyboardModifier qt;
  uint32_t system;
};

constexpr ModifierPair kModifiers[] = {
    {Qt::ShiftModifier, kShift},  {Qt::ControlModifier, kControl},   {Qt::AltModifier, kOption},
    {Qt::MetaModifier, kCommand}, {Qt::KeypadModifier, kNumericPad},
};

struct KeyPair {
  int qt;
  int windows;
};

constexpr KeyPair kKeys[] = {
    {Qt::Key_Backspace, 0x08},  {Qt::Key_Tab, 0x09},
    {Qt::Key_Backtab, 0x09},    {Qt::Key_Return, 0x0D},
    {Qt::Key_Enter, 0x0D},      {Qt::Key_Shift, 0x10},
    {Qt::Key_Control, 0x11},    {Qt::Key_Alt, 0x12},
    {Qt::Key_Pause, 0x13},      {Qt::Key_CapsLock, 0x14},
    {Qt::Key_Escape, 0x1B},     {Qt::Key_Space, 0x20},
    {Qt::Key_PageUp, 0x21},     {Qt::Key_PageDown, 0x22},
    {Qt::Key_End, 0x23},        {Qt::Key_Home, 0x24},
    {Qt::Key_Left, 0x25},       {Qt::Key_Up, 0x26},
    {Qt::Key_Right, 0x27},      {Qt::Key_Down, 0x28},
    {Qt::Key_Print, 0x2C},      {Qt::Key_Insert, 0x2D},
    {Qt::Key_Delete, 0x2E},     {Qt::Key_Super_L, 0x5B},
    {Qt::Key_Super_R, 0x5C},    {Qt::Key_Menu, 0x5D},
    {Qt::Key_NumLock, 0x90},    {Qt::Key_ScrollLock, 0x91},
    {Qt::Key_Semicolon, 0xBA},  {Qt::Key_Equal, 0xBB},
    {Qt::Key_Comma, 0xBC},      {Qt::Key_Minus, 0xBD},
    {Qt::Key_Period, 0xBE},     {Qt::Key_Slash, 0xBF},
    {Qt::Key_QuoteLeft, 0xC0},  {Qt::Key_BracketLeft, 0xDB},
    {Qt::Key_Backslash, 0xDC},  {Qt::Key_BracketRight, 0xDD},
    {Qt::Key_Apostrophe, 0xDE}, {Qt::Key_Meta, 0x5B},
    {Qt::Key_AltGr, 0xE1},      {Qt::Key_Back, 0xA6},
    {Qt::Key_Forward, 0xA7},    {Qt::Key_Refresh, 0xA8},
    {Qt::Key_Reload, 0xA8},     {Qt::Key_Stop, 0xA9},
    {Qt::Key_Search, 0xAA},     {Qt::Key_Favorites, 0xAB},
    {Qt::Key_HomePage, 0xAC},   {Qt::Key_VolumeMute, 0xAD},
    {Qt::Key_VolumeDown, 0xAE}, {Qt::Key_VolumeUp, 0xAF},
    {Qt::Key_MediaNext, 0xB0},  {Qt::Key_MediaPrevious, 0xB1},
    {Qt::Key_MediaStop, 0xB2},  {Qt::Key_MediaPlay, 0xB3},
    {Qt::Key_MediaPause, 0xB3}, {Qt::Key_MediaTogglePlayPause, 0xB3},
    {Qt::Key_LaunchMail, 0xB4}, {Qt::Key_LaunchMedia, 0xB5},
    {Qt::Key_Launch0, 0xB6},    {Qt::Key_Launch1, 0xB7},
};

bool isBetween(int key, int first, int last) {
  return key >= first && key <= last;
}

int windowsKeyCodeOf(const QKeyEvent& event) {
  const int key = event.key();
  if (isBetween(key, Qt::Key_0, Qt::Key_9)) {
    return event.modifiers() & Qt::KeypadModifier ? 0x60 + (key - Qt::Key_0) : key;
  }
  if (isBetween(key, Qt::Key_A, Qt::Key_Z)) {
    return key;
  }
  if (isBetween(key, Qt::Key_F1, Qt::Key_F24)) {
    return 0x70 + (key - Qt::Key_F1);
  }
  for (const KeyPair& pair : kKeys) {
    if (pair.qt == key) {
      return pair.windows;
    }
  }
  return 0;
}

// Qt has no modifier for caps lock; X11's and Wayland's keyboards have.
uint32_t lockModifiersOf(const QKeyEvent& event) {
  constexpr quint32 kLock = 1U << 1U;
  return (event.nativeModifiers() & kLock) != 0 ? uint32_t{kCapsLock} : 0;
}

bool isNamedBy(const QString& line, const QUrl& url) {
  return line == url.toString() || line == url.toString(QUrl::FullyEncoded) ||
         line == url.toLocalFile();
}

// Whether the text is nothing but the addresses, a line each: Qt and file managers give those of
// dragged files as text, too.
bool areNamedBy(const QString& text, const QList<QUrl>& urls) {
  const QStringList lines = text.split('\n', Qt::SkipEmptyParts);
  return std::equal(
      lines.begin(), lines.end(), urls.begin(), urls.end(),
      [](const QString& line, const QUrl& url) { return isNamedBy(line.trimmed(), url); });
}

}  // namespace

uint32_t toSystemModifiers(Qt::KeyboardModifiers modifiers) {
  uint32_t flags = 0;
  for (const ModifierPair& pair : kModifiers) {
    if (modifiers & pair.qt) {
      flags |= pair.system;
    }
  }
  return flags;
}

SystemEvent toSystemEvent(const QMouseEvent& event, int clickCount) {
  SystemEvent result;
  result.kind = kindOf(event);
  result.modifiers = toSystemModifiers(event.modifiers());
  result.point = toPoint(event.position());
  result.clickCount = clickCount;
  return result;
}

SystemEvent toSystemEvent(const QWheelEvent& event) {
  SystemEvent result;
  result.kind = EventKind::kScroll;
  result.modifiers = toSystemModifiers(event.modifiers());
  result.point = toPoint(event.position());
  const double factor = kPointsOfALine * QApplication::wheelScrollLines() / kAngleOfAStep;
  result.deltaX = event.angleDelta().x() * factor;
  result.deltaY = event.angleDelta().y() * factor;
  result.phase = phaseOf(event.phase());
  return result;
}

SystemEvent toSystemEvent(const QKeyEvent& event) {
  SystemEvent result;
  result.kind = event.type() == QEvent::KeyRelease ? EventKind::kKeyUp : EventKind::kKeyDown;
  result.modifiers = toSystemModifiers(event.modifiers()) | lockModifiersOf(event);
  result.isRepeat = event.isAutoRepeat();
  result.characters = event.text().toStdU16String();
  result.windowsKeyCode = windowsKeyCodeOf(event);
  result.charactersIgnoringModifiers = charactersWithoutControl(result);
  result.nativeKeyCode = static_cast<int>(event.nativeScanCode());
  return result;
}

std::optional<EditCommand> editCommandOf(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Undo:
      return EditCommand::kUndo;
    case Qt::Key_Redo:
      return EditCommand::kRedo;
    case Qt::Key_Cut:
      return EditCommand::kCut;
    case Qt::Key_Copy:
      return EditCommand::kCopy;
    case Qt::Key_Paste:
      return EditCommand::kPaste;
    default:
      return std::nullopt;
  }
}

DroppedItems toDroppedItems(const QMimeData& mime) {
  DroppedItems items;
  for (const QUrl& url : mime.urls()) {
    if (url.isLocalFile()) {
      items.paths.push_back(url.toLocalFile().toStdString());
    }
  }
  if (mime.hasText() && (items.paths.empty() || !areNamedBy(mime.text(), mime.urls()))) {
    items.text = mime.text().toStdString();
  }
  return items;
}

cef_drag_operations_mask_t toDragOperations(Qt::DropActions actions) {
  unsigned int operations = DRAG_OPERATION_NONE;
  operations |= actions & Qt::CopyAction ? DRAG_OPERATION_COPY : DRAG_OPERATION_NONE;
  operations |= actions & Qt::LinkAction ? DRAG_OPERATION_LINK : DRAG_OPERATION_NONE;
  operations |= actions & Qt::MoveAction ? DRAG_OPERATION_MOVE : DRAG_OPERATION_NONE;
  return static_cast<cef_drag_operations_mask_t>(operations);
}

Qt::DropActions toDropActions(cef_drag_operations_mask_t operations) {
  Qt::DropActions actions;
  actions.setFlag(Qt::CopyAction, (operations & DRAG_OPERATION_COPY) != 0);
  actions.setFlag(Qt::LinkAction, (operations & DRAG_OPERATION_LINK) != 0);
  actions.setFlag(Qt::MoveAction, (operations & DRAG_OPERATION_MOVE) != 0);
  return actions;
}

Qt::DropAction toDropAction(cef_drag_operations_mask_t operation) {
  for (const Qt::DropAction action : {Qt::CopyAction, Qt::MoveAction, Qt::LinkAction}) {
    if (toDropActions(operation) & action) {
      return action;
    }
  }
  return Qt::IgnoreAction;
}

}  // namespace client
