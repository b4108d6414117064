// The framework's structures with constructors. All fields start at zero (empty, default).
#ifndef CEF_INCLUDE_INTERNAL_CEF_TYPES_WRAPPERS_H_
#define CEF_INCLUDE_INTERNAL_CEF_TYPES_WRAPPERS_H_

#include <iterator>

#include "include/internal/cef_string.h"
#include "include/internal/cef_types.h"

class CefPoint : public cef_point_t {
 public:
  CefPoint() = default;
  CefPoint(int x_value, int y_value) {
    x = x_value;
    y = y_value;
  }
  void Set(int x_value, int y_value) { *this = CefPoint(x_value, y_value); }
};

class CefSize : public cef_size_t {
 public:
  CefSize() = default;
  CefSize(int width_value, int height_value) {
    width = width_value;
    height = height_value;
  }
  void Set(int width_value, int height_value) { *this = CefSize(width_value, height_value); }
};

class CefRect : public cef_rect_t {
 public:
  CefRect() = default;
  CefRect(const cef_rect_t& rect) : cef_rect_t(rect) {}  // NOLINT(google-explicit-constructor)
  CefRect(int x_value, int y_value, int width_value, int height_value) {
    x = x_value;
    y = y_value;
    width = width_value;
    height = height_value;
  }

  bool IsEmpty() const { return width <= 0 || height <= 0; }
  void Set(int x_value, int y_value, int width_value, int height_value) {
    *this = CefRect(x_value, y_value, width_value, height_value);
  }
  bool Contains(int point_x, int point_y) const {
    return point_x >= x && point_x < x + width && point_y >= y && point_y < y + height;
  }
};

inline bool operator==(const CefPoint& a, const CefPoint& b) {
  return a.x == b.x && a.y == b.y;
}
inline bool operator==(const CefSize& a, const CefSize& b) {
  return a.width == b.width && a.height == b.height;
}
inline bool operator==(const CefRect& a, const CefRect& b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

class CefRange : public cef_range_t {
 public:
  CefRange() = default;
  CefRange(uint32_t from_value, uint32_t to_value) {
    from = from_value;
    to = to_value;
  }
  void Set(uint32_t from_value, uint32_t to_value) { *this = CefRange(from_value, to_value); }
};

inline bool operator==(const CefRange& a, const CefRange& b) {
  return a.from == b.from && a.to == b.to;
}

// The style of a part of a composition. A colour of 0 stands for the text's colour.
struct CefCompositionUnderline {
  cef_range_t range;
  cef_color_t color = 0;
  cef_color_t background_color = 0;
  int thick = 0;
  cef_composition_underline_style_t style = CEF_CUS_SOLID;
};

struct CefScreenInfo {
  float device_scale_factor = 0;
  int depth = 0;
  int depth_per_component = 0;
  int is_monochrome = 0;
  cef_rect_t rect;
  cef_rect_t available_rect;

  void Set(float scale, int depth_value, int per_component, int monochrome,
           const cef_rect_t& rect_value, const cef_rect_t& available) {
    device_scale_factor = scale;
    depth = depth_value;
    depth_per_component = per_component;
    is_monochrome = monochrome;
    rect = rect_value;
    available_rect = available;
  }
};

struct CefMouseEvent {
  int x = 0;
  int y = 0;
  uint32_t modifiers = 0;  // cef_event_flags_t
};

struct CefKeyEvent {
  cef_key_event_type_t type = KEYEVENT_RAWKEYDOWN;
  uint32_t modifiers = 0;  // cef_event_flags_t
  int windows_key_code = 0;
  int native_key_code = 0;
  int is_system_key = 0;
  char16_t character = 0;
  char16_t unmodified_character = 0;
  int focus_on_editable_field = 0;
};

// An image cursor: premultiplied BGRA pixels, valid during the call. Hot spot and size in pixels.
struct CefCursorInfo {
  cef_point_t hotspot;
  float image_scale_factor = 0;
  const void* buffer = nullptr;
  cef_size_t size;
};

struct CefPopupFeatures {
  int x = 0;
  int xSet = 0;
  int y = 0;
  int ySet = 0;
  int width = 0;
  int widthSet = 0;
  int height = 0;
  int heightSet = 0;
};

// The process's arguments, which must outlive the framework.
class CefMainArgs {
 public:
  CefMainArgs() = default;
  CefMainArgs(int argc_value, char** argv_value) : argc(argc_value), argv(argv_value) {}

  int argc = 0;
  char** argv = nullptr;
};

// A structure that owns its text fields.
template <class Fields>
class CefStructWithText : public Fields {
 public:
  CefStructWithText() = default;
  CefStructWithText(const CefStructWithText& other) : Fields() { copyFrom(other); }
  CefStructWithText& operator=(const CefStructWithText& other) {
    if (this != &other) {
      copyFrom(other);
    }
    return *this;
  }
  ~CefStructWithText() {
    for (auto field : Fields::kTextFields) {
      cef_string_clear(&(this->*field));
    }
  }

 private:
  void copyFrom(const CefStructWithText& other) {
    constexpr std::size_t kCount = std::size(Fields::kTextFields);
    cef_string_t texts[kCount];
    for (std::size_t i = 0; i < kCount; ++i) {
      texts[i] = this->*Fields::kTextFields[i];
    }
    static_cast<Fields&>(*this) = other;
    for (std::size_t i = 0; i < kCount; ++i) {
      auto field = Fields::kTextFields[i];
      this->*field = texts[i];
      CefString(&(this->*field)) = CefString(&(other.*field));
    }
  }
};

struct CefSettingsFields {
  int no_sandbox = 0;
  cef_string_t browser_subprocess_path;  // executable started as sub-process; empty: the default
  int multi_threaded_message_loop = 0;
  int external_message_pump = 0;
  int windowless_rendering_enabled = 0;
  cef_string_t cache_path;       // absolute; empty: in memory
  cef_string_t root_cache_path;  // absolute; cache_path is it or lies below it
  int persist_session_cookies = 0;
  cef_string_t user_agent;
  cef_string_t log_file;
  cef_log_severity_t log_severity = LOGSEVERITY_DEFAULT;
  int remote_debugging_port = 0;

  static constexpr cef_string_t CefSettingsFields::*kTextFields[] = {
      &CefSettingsFields::browser_subprocess_path, &CefSettingsFields::cache_path,
      &CefSettingsFields::root_cache_path, &CefSettingsFields::user_agent,
      &CefSettingsFields::log_file};
};
using CefSettings = CefStructWithText<CefSettingsFields>;

struct CefBrowserSettings {
  int windowless_frame_rate = 0;  // frames a second, 1 to 60; 0: 30
  cef_state_t javascript = STATE_DEFAULT;
  cef_state_t local_storage = STATE_DEFAULT;
};

struct CefWindowInfoFields {
  cef_string_t window_name;
  cef_rect_t bounds;
  cef_window_handle_t parent_window = kNullWindowHandle;
  int windowless_rendering_enabled = 0;

  static constexpr cef_string_t CefWindowInfoFields::*kTextFields[] = {
      &CefWindowInfoFields::window_name};
};
class CefWindowInfo : public CefStructWithText<CefWindowInfoFields> {
 public:
  // Makes the browser an off-screen one; `parent` is the parent window of its menus and dialogs.
  void SetAsWindowless(CefWindowHandle parent) {
    windowless_rendering_enabled = 1;
    parent_window = parent;
  }
};

#endif  // CEF_INCLUDE_INTERNAL_CEF_TYPES_WRAPPERS_H_
