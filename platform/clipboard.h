// The clipboard's text, through one presenter: the system's in the editor, a process-local one
// by default (headless and in tests), so that copy and paste still meet each other.
#pragma once

#include <optional>
#include <string>

class CClipboardPresenter {
 public:
  // [editor thread] The clipboard's 8-bit text, or nothing when it holds no text.
  virtual std::optional<std::string> Text() = 0;
  // [editor thread] Replaces the clipboard's content with `text`.
  virtual void SetText(const std::string& text) = 0;

 protected:
  ~CClipboardPresenter() = default;
};

// [editor thread] The current presenter: the one installed, else the process-local clipboard.
CClipboardPresenter& Clipboard();
// Replaces the presenter; null restores the process-local one. Returns the previous one.
CClipboardPresenter* SetClipboardPresenter(CClipboardPresenter* presenter);
