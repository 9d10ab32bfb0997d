// An HTML view inside a dialog. The dialog's drawing provides one (Qt in the editor, a recorder
// in tests); the logic loads a page into it and rewrites one element once the page is complete.
#pragma once

#include <string>

class IHtmlViewEvents {
 public:
  // [editor thread] The document is complete: elements can be looked up now.
  virtual void OnDocumentComplete() = 0;
  // [editor thread] A link to "app:<command>" was followed; the view did not navigate.
  virtual void OnAppCommand(const std::wstring& command) = 0;

 protected:
  ~IHtmlViewEvents() = default;
};

class IHtmlView {
 public:
  // [editor thread] Where the view reports; null to stop reporting.
  virtual void SetEvents(IHtmlViewEvents* events) = 0;
  // [editor thread] Shows the file at `path`; false when it cannot be read.
  virtual bool NavigateToFile(const std::wstring& path) = 0;
  // [editor thread] Shows `html`, with relative references resolved against `baseFolder`.
  virtual void LoadHtml(const std::string& html, const std::wstring& baseFolder) = 0;
  // [editor thread] Replaces the element with id `id`, the element included, by `text`; false
  // when no element has that id.
  virtual bool ReplaceElement(const std::wstring& id, const std::wstring& text) = 0;

 protected:
  ~IHtmlView() = default;
};
