#include "ui/html_view.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QTimer>

#include "resources/resources.h"

namespace {

// Where the element that holds `at` begins: the '<' of its tag.
qsizetype TagStart(const QString& html, qsizetype at) {
  return html.lastIndexOf(QLatin1Char('<'), at);
}

// Where the element opened at `start` with `name` ends, after its closing tag; nested elements
// of the same name are counted. The end of its opening tag for an element that closes itself or
// never closes.
qsizetype ElementEnd(const QString& html, qsizetype start, const QString& name) {
  const qsizetype openEnd = html.indexOf(QLatin1Char('>'), start);
  if (openEnd < 0) return html.size();
  if (html[openEnd - 1] == QLatin1Char('/')) return openEnd + 1;
  const QRegularExpression tags(QStringLiteral("<(/?)%1(?=[\\s>/])").arg(name),
                                QRegularExpression::CaseInsensitiveOption);
  int depth = 1;
  auto match = tags.globalMatch(html, openEnd + 1);
  while (match.hasNext()) {
    const QRegularExpressionMatch tag = match.next();
    depth += tag.captured(1).isEmpty() ? 1 : -1;
    if (depth == 0) {
      const qsizetype closeEnd = html.indexOf(QLatin1Char('>'), tag.capturedEnd());
      return closeEnd < 0 ? html.size() : closeEnd + 1;
    }
  }
  return openEnd + 1;
}

}  // namespace

std::optional<QString> ReplaceHtmlElement(const QString& html, const QString& id,
                                          const QString& text) {
  const QRegularExpression attribute(QStringLiteral("\\bid\\s*=\\s*(\"%1\"|'%1'|%1(?=[\\s>/]))")
                                         .arg(QRegularExpression::escape(id)),
                                     QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch found = attribute.match(html);
  if (!found.hasMatch()) return std::nullopt;
  const qsizetype start = TagStart(html, found.capturedStart());
  if (start < 0) return std::nullopt;
  static const QRegularExpression nameAt(QStringLiteral("^<([A-Za-z][A-Za-z0-9]*)"));
  const QRegularExpressionMatch name = nameAt.match(html.mid(start, 64));
  if (!name.hasMatch()) return std::nullopt;
  const qsizetype end = ElementEnd(html, start, name.captured(1));
  QString replaced = html;
  replaced.replace(start, end - start, text.toHtmlEscaped());
  return replaced;
}

CQtHtmlView::CQtHtmlView(QWidget* parent) : QTextBrowser(parent) {
  setOpenLinks(false);
  setFrameShape(QFrame::NoFrame);
  setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  connect(this, &QTextBrowser::anchorClicked, this, &CQtHtmlView::OnAnchor);
}

bool CQtHtmlView::NavigateToFile(const std::wstring& path) {
  QFile file(QString::fromStdWString(path));
  if (!file.open(QIODevice::ReadOnly)) return false;
  Show(QString::fromUtf8(file.readAll()), QFileInfo(file).absolutePath());
  return true;
}

void CQtHtmlView::LoadHtml(const std::string& html, const std::wstring& baseFolder) {
  Show(QString::fromStdString(html), QString::fromStdWString(baseFolder));
}

bool CQtHtmlView::ReplaceElement(const std::wstring& id, const std::wstring& text) {
  const std::optional<QString> replaced =
      ReplaceHtmlElement(m_source, QString::fromStdWString(id), QString::fromStdWString(text));
  if (!replaced) return false;
  m_source = *replaced;
  setHtml(m_source);
  return true;
}

// A view completes its page later than the call that loaded it, as a browser does: the owner
// hears of it from the event loop.
void CQtHtmlView::Show(const QString& html, const QString& baseFolder) {
  m_source = html;
  setSearchPaths({baseFolder});
  setHtml(m_source);
  QTimer::singleShot(0, this, [this] {
    if (m_events) m_events->OnDocumentComplete();
  });
}

QVariant CQtHtmlView::loadResource(int type, const QUrl& name) {
  QVariant found = QTextBrowser::loadResource(type, name);
  if (found.isValid()) return found;
  const QByteArray file = name.fileName().toUtf8();
  if (const auto builtIn = BuiltInResource(
          "HTML", std::string_view(file.constData(), static_cast<std::size_t>(file.size()))))
    return QByteArray(reinterpret_cast<const char*>(builtIn->data()),
                      static_cast<qsizetype>(builtIn->size()));
  return found;
}

void CQtHtmlView::OnAnchor(const QUrl& url) {
  if (url.scheme() == QLatin1String("app")) {
    if (m_events) m_events->OnAppCommand(url.toString(QUrl::RemoveScheme).toStdWString());
    return;
  }
  const QString local = url.isLocalFile() ? url.toLocalFile() : url.path();
  for (const QString& folder : searchPaths()) {
    const QString path = QDir(folder).filePath(local);
    if (QFileInfo::exists(path)) {
      NavigateToFile(path.toStdWString());
      return;
    }
  }
}
