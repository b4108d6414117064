// Input methods of an off-screen browser.
#pragma once

#include <QObject>
#include <QString>
#include <vector>

#include "include/internal/cef_types_wrappers.h"

class QInputMethodEvent;

namespace cef_qt {

class OffScreenBrowser;

// The state of the focused field, in view points of the client.
struct TextInputState {
  cef_text_input_mode_t mode = CEF_TEXT_INPUT_MODE_NONE;
  CefRect caret;
  QString selected;
  CefRange selection;
};

// Passes the client's compositions to the page and reports the focused field to the client. Qt
// knows the position of the caret but not of each character, so only the caret is reported. Owned
// by the off-screen browser. UI thread.
class OffScreenTextInput final : public QObject {
  Q_OBJECT

 public:
  explicit OffScreenTextInput(OffScreenBrowser& browser);

  // Ranges are in UTF-16 code units; `replaced` is a range of the field's text.
  void compose(const QString& text, const std::vector<CefCompositionUnderline>& underlines,
               const CefRange& replaced, const CefRange& selection);
  void commit(const QString& text, const CefRange& replaced);
  void finish();
  void cancel();

  // Reports changes since the last report.
  void report();

 private:
  void reportSoon();
  void send(QInputMethodEvent& event);

  OffScreenBrowser& browser_;
  QString composed_;  // the unfinished composition
  TextInputState reported_;
  bool isReportScheduled_ = false;
};

}  // namespace cef_qt
