// A one-line text box as a passive view: the drawing keeps the text, the selection and its undo
// step, and asks its logic before a typed character or an editing key takes effect.
#pragma once

#include <optional>
#include <string>

// Characters from `start` up to, not including, `end`; the caret stands at `end`. Equal ends
// are a caret with nothing selected.
struct TextSelection {
  int start = 0;
  int end = 0;
};

// Editing keys that act without typing a character.
enum class EditKey {
  Delete,  // the Delete key
  Cut,     // Ctrl+X
  Paste,   // Ctrl+V
};

class ITextBoxEvents {
 public:
  // [editor thread] A typed character (backspace is 8), before it goes in: what to insert in
  // its place at the selection, or nothing when the key is swallowed.
  virtual std::optional<wchar_t> OnChar(wchar_t c) = 0;
  // [editor thread] An editing key, before the box acts on it: false swallows it.
  virtual bool OnEditKey(EditKey key) = 0;
  // [editor thread] The text changed, whatever changed it (typing, a command, SetText).
  virtual void OnTextChanged() = 0;
  // [editor thread] A right click at `x`, `y` in screen pixels.
  virtual void OnContextMenu(int x, int y) = 0;

 protected:
  ~ITextBoxEvents() = default;
};

class ITextBoxView {
 public:
  // [editor thread] Where the box reports; null to stop.
  virtual void SetEvents(ITextBoxEvents* events) = 0;
  // [editor thread]
  virtual std::wstring Text() const = 0;
  // [editor thread] Replaces the whole text, caret at the end; reported as a change.
  virtual void SetText(const std::wstring& text) = 0;
  virtual TextSelection Selection() const = 0;
  virtual void SetSelection(TextSelection selection) = 0;
  virtual bool CanUndo() const = 0;
  virtual bool IsReadOnly() const = 0;
  virtual void TakeFocus() = 0;
  virtual void Redraw() = 0;
  // [editor thread] The box's own editing commands, acting at once (no key filter); a change
  // of the text is reported as for typing. Cut, Copy and Paste go through the clipboard of
  // platform/clipboard.h.
  virtual void Undo() = 0;
  virtual void Cut() = 0;
  virtual void Copy() = 0;
  virtual void Paste() = 0;
  virtual void DeleteSelection() = 0;

 protected:
  ~ITextBoxView() = default;
};
