// An HTML view on QTextBrowser for the About box. It keeps the page's source, so that one
// element can be replaced, the element included, once the page is complete; links to "app:"
// go to the owner instead of being followed. Pictures a page names are looked for in its folder
// first, then among the module's built-in files of the type "HTML" (the About page's background).
#pragma once

#include <QtWidgets/QTextBrowser>

#include "platform/html_view.h"

class CQtHtmlView final : public QTextBrowser, public IHtmlView {
 public:
  explicit CQtHtmlView(QWidget* parent = nullptr);

  void SetEvents(IHtmlViewEvents* events) override { m_events = events; }
  bool NavigateToFile(const std::wstring& path) override;
  void LoadHtml(const std::string& html, const std::wstring& baseFolder) override;
  bool ReplaceElement(const std::wstring& id, const std::wstring& text) override;

  // The page's source as it stands, with every replacement made.
  const QString& Source() const noexcept { return m_source; }

 protected:
  QVariant loadResource(int type, const QUrl& name) override;

 private:
  void Show(const QString& html, const QString& baseFolder);
  void OnAnchor(const QUrl& url);

  IHtmlViewEvents* m_events = nullptr;
  QString m_source;
};

// `html` with the element whose id is `id` (and all it holds) replaced by `text`, escaped for
// HTML; nothing when no element bears that id.
std::optional<QString> ReplaceHtmlElement(const QString& html, const QString& id,
                                          const QString& text);
