// Text of input methods for an off-screen browser.
#pragma once

#include <QObject>
#include <QString>
#include <vector>

#include "include/internal/cef_types_wrappers.h"

class QInputMethodEvent;

namespace cef_qt {

class OffScreenBrowser;

// What an input method has to know of the focused field; in view points of the client.
struct TextInputState {
  cef_text_input_mode_t mode = CEF_TEXT_INPUT_MODE_NONE;
  CefRect caret;
  QString selected;
  CefRange selection;
};

// Hands the client's compositions to the page, and tells the client of the field that has the
// focus. Qt knows the caret's place, not the characters': that is what the client is told.
// Ownership: the off-screen browser's. UI thread.
class OffScreenTextInput final : public QObject {
  Q_OBJECT

 public:
  explicit OffScreenTextInput(OffScreenBrowser& browser);

  // Ranges count UTF-16 units; a range to be replaced counts in the field's text.
  void compose(const QString& text, const std::vector<CefCompositionUnderline>& underlines,
               const CefRange& replaced, const CefRange& selection);
  void commit(const QString& text, const CefRange& replaced);
  void finish();
  void cancel();

  // Tells the client what has changed since it was told last.
  void report();

 private:
  void reportSoon();
  void send(QInputMethodEvent& event);

  OffScreenBrowser& browser_;
  QString composed_;  // what the page shows unfinished
  TextInputState told_;
  bool isReportDue_ = false;
};

}  // namespace cef_qt
