// Enumerations and plain structures of the framework. Values are part of the interface.
#ifndef CEF_INCLUDE_INTERNAL_CEF_TYPES_H_
#define CEF_INCLUDE_INTERNAL_CEF_TYPES_H_

#include <climits>
#include <cstddef>
#include <cstdint>

#include "include/internal/cef_string.h"

// Native handles: an X11 window or cursor; 0 for none.
using cef_window_handle_t = unsigned long;
using cef_cursor_handle_t = unsigned long;
using CefWindowHandle = cef_window_handle_t;
using CefCursorHandle = cef_cursor_handle_t;
constexpr CefWindowHandle kNullWindowHandle = 0;

enum cef_log_severity_t {
  LOGSEVERITY_DEFAULT = 0,
  LOGSEVERITY_VERBOSE = 1,
  LOGSEVERITY_DEBUG = LOGSEVERITY_VERBOSE,
  LOGSEVERITY_INFO = 2,
  LOGSEVERITY_WARNING = 3,
  LOGSEVERITY_ERROR = 4,
  LOGSEVERITY_FATAL = 5,
  LOGSEVERITY_DISABLE = 99
};

// Results of CefGetExitCode.
enum cef_resultcode_t {
  CEF_RESULT_CODE_NORMAL_EXIT = 0,
  CEF_RESULT_CODE_FAILURE = 1,
  CEF_RESULT_CODE_NORMAL_EXIT_PROCESS_NOTIFIED = 24
};

enum cef_state_t { STATE_DEFAULT = 0, STATE_ENABLED, STATE_DISABLED };

enum cef_process_id_t { PID_BROWSER = 0, PID_RENDERER };

enum cef_thread_id_t {
  TID_UI = 0,
  TID_FILE_BACKGROUND,
  TID_FILE_USER_VISIBLE,
  TID_FILE_USER_BLOCKING,
  TID_PROCESS_LAUNCHER,
  TID_IO,
  TID_RENDERER
};

enum cef_jsdialog_type_t { JSDIALOGTYPE_ALERT = 0, JSDIALOGTYPE_CONFIRM, JSDIALOGTYPE_PROMPT };

enum cef_paint_element_type_t { PET_VIEW = 0, PET_POPUP };

enum cef_mouse_button_type_t { MBT_LEFT = 0, MBT_MIDDLE, MBT_RIGHT };

enum cef_key_event_type_t {
  KEYEVENT_RAWKEYDOWN = 0,
  KEYEVENT_KEYDOWN,
  KEYEVENT_KEYUP,
  KEYEVENT_CHAR
};

enum cef_drag_operations_mask_t : unsigned int {
  DRAG_OPERATION_NONE = 0,
  DRAG_OPERATION_COPY = 1,
  DRAG_OPERATION_LINK = 2,
  DRAG_OPERATION_GENERIC = 4,
  DRAG_OPERATION_PRIVATE = 8,
  DRAG_OPERATION_MOVE = 16,
  DRAG_OPERATION_DELETE = 32,
  DRAG_OPERATION_EVERY = UINT_MAX
};

enum cef_event_flags_t {
  EVENTFLAG_NONE = 0,
  EVENTFLAG_CAPS_LOCK_ON = 1 << 0,
  EVENTFLAG_SHIFT_DOWN = 1 << 1,
  EVENTFLAG_CONTROL_DOWN = 1 << 2,
  EVENTFLAG_ALT_DOWN = 1 << 3,
  EVENTFLAG_LEFT_MOUSE_BUTTON = 1 << 4,
  EVENTFLAG_MIDDLE_MOUSE_BUTTON = 1 << 5,
  EVENTFLAG_RIGHT_MOUSE_BUTTON = 1 << 6,
  EVENTFLAG_COMMAND_DOWN = 1 << 7,
  EVENTFLAG_NUM_LOCK_ON = 1 << 8,
  EVENTFLAG_IS_KEY_PAD = 1 << 9,
  EVENTFLAG_IS_REPEAT = 1 << 13
};

enum cef_termination_status_t {
  TS_ABNORMAL_TERMINATION = 0,
  TS_PROCESS_WAS_KILLED,
  TS_PROCESS_CRASHED
};

enum cef_window_open_disposition_t {
  CEF_WOD_UNKNOWN = 0,
  CEF_WOD_CURRENT_TAB,
  CEF_WOD_SINGLETON_TAB,
  CEF_WOD_NEW_FOREGROUND_TAB,
  CEF_WOD_NEW_BACKGROUND_TAB,
  CEF_WOD_NEW_POPUP,
  CEF_WOD_NEW_WINDOW
};

enum cef_value_type_t {
  VTYPE_INVALID = 0,
  VTYPE_NULL,
  VTYPE_BOOL,
  VTYPE_INT,
  VTYPE_DOUBLE,
  VTYPE_STRING
};

enum cef_cursor_type_t {
  CT_POINTER = 0,
  CT_CROSS,
  CT_HAND,
  CT_IBEAM,
  CT_WAIT,
  CT_HELP,
  CT_EASTRESIZE,
  CT_NORTHRESIZE,
  CT_NORTHEASTRESIZE,
  CT_NORTHWESTRESIZE,
  CT_SOUTHRESIZE,
  CT_SOUTHEASTRESIZE,
  CT_SOUTHWESTRESIZE,
  CT_WESTRESIZE,
  CT_NORTHSOUTHRESIZE,
  CT_EASTWESTRESIZE,
  CT_NORTHEASTSOUTHWESTRESIZE,
  CT_NORTHWESTSOUTHEASTRESIZE,
  CT_COLUMNRESIZE,
  CT_ROWRESIZE,
  CT_MIDDLEPANNING,
  CT_EASTPANNING,
  CT_NORTHPANNING,
  CT_NORTHEASTPANNING,
  CT_NORTHWESTPANNING,
  CT_SOUTHPANNING,
  CT_SOUTHEASTPANNING,
  CT_SOUTHWESTPANNING,
  CT_WESTPANNING,
  CT_MOVE,
  CT_VERTICALTEXT,
  CT_CELL,
  CT_CONTEXTMENU,
  CT_ALIAS,
  CT_PROGRESS,
  CT_NODROP,
  CT_COPY,
  CT_NONE,
  CT_NOTALLOWED,
  CT_ZOOMIN,
  CT_ZOOMOUT,
  CT_GRAB,
  CT_GRABBING,
  CT_MIDDLE_PANNING_VERTICAL,
  CT_MIDDLE_PANNING_HORIZONTAL,
  CT_CUSTOM
};

// The kind of text that a field takes.
enum cef_text_input_mode_t {
  CEF_TEXT_INPUT_MODE_DEFAULT = 0,
  CEF_TEXT_INPUT_MODE_NONE,  // nothing
  CEF_TEXT_INPUT_MODE_TEXT,
  CEF_TEXT_INPUT_MODE_TEL,
  CEF_TEXT_INPUT_MODE_URL,
  CEF_TEXT_INPUT_MODE_EMAIL,
  CEF_TEXT_INPUT_MODE_NUMERIC,
  CEF_TEXT_INPUT_MODE_DECIMAL,
  CEF_TEXT_INPUT_MODE_SEARCH
};

enum cef_composition_underline_style_t {
  CEF_CUS_SOLID = 0,
  CEF_CUS_DOT,
  CEF_CUS_DASH,
  CEF_CUS_NONE
};

// ARGB with alpha in the highest bits.
using cef_color_t = uint32_t;

// A range of UTF-16 code units. Both ends are UINT32_MAX for no range.
struct cef_range_t {
  uint32_t from = 0;
  uint32_t to = 0;
};

struct cef_point_t {
  int x = 0;
  int y = 0;
};

struct cef_size_t {
  int width = 0;
  int height = 0;
};

struct cef_rect_t {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

#endif  // CEF_INCLUDE_INTERNAL_CEF_TYPES_H_
