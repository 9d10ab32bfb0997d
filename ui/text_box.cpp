#include "ui/text_box.h"

#include <QtGui/QContextMenuEvent>
#include <QtGui/QKeyEvent>

#include "platform/clipboard.h"

CTextBox::CTextBox(QWidget* parent) : QLineEdit(parent) {
  connect(this, &QLineEdit::textChanged, this, [this] {
    if (m_events) m_events->OnTextChanged();
  });
}

void CTextBox::SetText(const std::wstring& text) {
  setText(QString::fromStdWString(text));
  end(false);
}

TextSelection CTextBox::Selection() const {
  if (!hasSelectedText()) return {cursorPosition(), cursorPosition()};
  return {selectionStart(), selectionEnd()};
}

void CTextBox::SetSelection(TextSelection selection) {
  if (selection.end == selection.start)
    setCursorPosition(selection.end);
  else
    setSelection(selection.start, selection.end - selection.start);
}

void CTextBox::Copy() {
  if (hasSelectedText()) Clipboard().SetText(selectedText().toLocal8Bit().toStdString());
}

void CTextBox::Cut() {
  if (!hasSelectedText() || isReadOnly()) return;
  Copy();
  del();
}

void CTextBox::Paste() {
  if (isReadOnly()) return;
  if (const std::optional<std::string> text = Clipboard().Text())
    insert(QString::fromLocal8Bit(text->data(), static_cast<qsizetype>(text->size())));
}

void CTextBox::DeleteSelection() {
  if (hasSelectedText() && !isReadOnly()) del();
}

// Delete, Ctrl+X and Ctrl+V ask the logic first; the box then acts as its own commands do.
bool CTextBox::FilterEditKey(QKeyEvent& event) {
  const bool control = event.modifiers() & Qt::ControlModifier;
  if (event.key() == Qt::Key_Delete && !control) {
    if (!m_events || m_events->OnEditKey(EditKey::Delete)) QLineEdit::keyPressEvent(&event);
    return true;
  }
  if (control && event.key() == Qt::Key_X) {
    if (!m_events || m_events->OnEditKey(EditKey::Cut)) Cut();
    return true;
  }
  if (control && event.key() == Qt::Key_V) {
    if (!m_events || m_events->OnEditKey(EditKey::Paste)) Paste();
    return true;
  }
  if (control && event.key() == Qt::Key_C) {
    Copy();
    return true;
  }
  return false;
}

void CTextBox::keyPressEvent(QKeyEvent* event) {
  if (FilterEditKey(*event)) return;
  const QString typed = event->text();
  const bool backspace = event->key() == Qt::Key_Backspace;
  const bool character = typed.size() == 1 && (typed[0].isPrint() || backspace);
  if (!m_events || !character || (event->modifiers() & Qt::ControlModifier))
    return QLineEdit::keyPressEvent(event);
  const std::optional<wchar_t> answer = m_events->OnChar(backspace ? L'\b' : typed[0].unicode());
  if (!answer) return;
  if (*answer == L'\b')
    backspace ? QLineEdit::keyPressEvent(event) : this->backspace();
  else
    insert(QString(QChar(static_cast<char16_t>(*answer))));
}

void CTextBox::contextMenuEvent(QContextMenuEvent* event) {
  if (!m_events) return QLineEdit::contextMenuEvent(event);
  m_events->OnContextMenu(event->globalPos().x(), event->globalPos().y());
}
