#pragma once

#include <memory>
#include <string>
#include <vector>

namespace zantrio {

// The dialogs in which the user chooses files or a folder. Ownership: the caller's. Thread: UI.

class IFsItemChooseDialog {
 public:
  virtual ~IFsItemChooseDialog() = default;

  // The text of the title bar, which should be ASCII: Linux takes its bytes for UTF-8, macOS for
  // the system's default encoding.
  virtual void setTitle(const std::string& title) = 0;
};

// Keeps the title for the platform's dialogs.
class CFsItemChooseDialogBase : public virtual IFsItemChooseDialog {
 public:
  void setTitle(const std::string& title) override { title_ = title; }

 protected:
  const std::string& title() const { return title_; }

 private:
  std::string title_;
};

// Lets the user choose existing files.
class IFileChooseDialog : public virtual IFsItemChooseDialog {
 public:
  // Runs modally. Appends one absolute, percent-encoded `file:` URL for each chosen file and
  // returns true. Returns false, with `chosenUrls` unchanged, when the user cancelled, chose
  // nothing, or the dialog could not be shown.
  virtual bool show(std::vector<std::string>& chosenUrls) = 0;
};

// Lets the user choose one folder, or create one.
class IFolderChooseDialog : public virtual IFsItemChooseDialog {
 public:
  // As IFileChooseDialog::show, with exactly one URL, which ends with "/".
  virtual bool show(std::vector<std::string>& chosenUrls) = 0;
};

// Null when memory runs out. Implemented by each platform.
std::unique_ptr<IFileChooseDialog> createFileChooseDialog();
std::unique_ptr<IFolderChooseDialog> createFolderChooseDialog();

}  // namespace zantrio
