#include "ui/hex_grid_widget.h"

#include <QtGui/QFontDatabase>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QScrollBar>
#include <algorithm>

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

std::optional<std::uint8_t> HexDigit(const QString& text) {
  if (text.size() != 1) return std::nullopt;
  const qsizetype value = QStringLiteral("0123456789ABCDEF").indexOf(text[0].toUpper());
  if (value < 0) return std::nullopt;
  return static_cast<std::uint8_t>(value);
}

}  // namespace

CHexGridWidget::CHexGridWidget(CHexGrid& grid, QWidget* parent)
    : QAbstractScrollArea(parent), m_grid(grid) {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSize(10);
  setFont(font);
  const QFontMetrics metrics(font);
  m_charWidth = metrics.horizontalAdvance(QLatin1Char('0'));
  m_lineHeight = metrics.height() + 2;
  setFocusPolicy(Qt::StrongFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  viewport()->setCursor(Qt::IBeamCursor);
  m_grid.SetObserver(this);
  UpdateScrollRange();
}

CHexGridWidget::~CHexGridWidget() { m_grid.SetObserver(nullptr); }

int CHexGridWidget::Columns() const { return std::max(1, m_grid.Columns()); }

// One line more than the bytes fill when the last is full: the caret may stand after the end.
int CHexGridWidget::Lines() const {
  return static_cast<int>(m_grid.Size() / static_cast<std::size_t>(Columns())) + 1;
}

int CHexGridWidget::VisibleLines() const {
  return std::max(1, (viewport()->height() - 2 * kMargin) / m_lineHeight);
}

int CHexGridWidget::FirstCellX() const {
  const int address = m_grid.ShowAddress() ? (m_grid.AddressDigits() + 2) * m_charWidth : 0;
  return kMargin + address - horizontalScrollBar()->value();
}

QRect CHexGridWidget::DigitRect(std::size_t index, bool second) const {
  const auto columns = static_cast<std::size_t>(Columns());
  const int line = static_cast<int>(index / columns) - verticalScrollBar()->value();
  const int column = static_cast<int>(index % columns);
  return QRect(FirstCellX() + column * CellWidth() + (second ? m_charWidth : 0),
               kMargin + line * m_lineHeight, m_charWidth, m_lineHeight);
}

QSize CHexGridWidget::sizeHint() const {
  const int address = m_grid.ShowAddress() ? m_grid.AddressDigits() + 2 : 0;
  const int text = m_grid.ShowText() ? Columns() + 2 : 0;
  const int width = 2 * kMargin + (address + Columns() * 3 + text) * m_charWidth +
                    verticalScrollBar()->sizeHint().width() + 2 * frameWidth();
  return QSize(width, 8 * m_lineHeight + 2 * kMargin + 2 * frameWidth());
}

void CHexGridWidget::OnGridDataChanged() {
  m_caret = std::min(m_caret, m_grid.Size());
  if (m_caret == m_grid.Size()) m_secondDigit = false;
  UpdateScrollRange();
  viewport()->update();
}

void CHexGridWidget::UpdateScrollRange() {
  verticalScrollBar()->setRange(0, std::max(0, Lines() - VisibleLines()));
  verticalScrollBar()->setPageStep(VisibleLines());
  const int contentWidth = sizeHint().width() - verticalScrollBar()->sizeHint().width();
  horizontalScrollBar()->setRange(0, std::max(0, contentWidth - viewport()->width()));
}

void CHexGridWidget::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  UpdateScrollRange();
}

void CHexGridWidget::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update();
}

void CHexGridWidget::focusOutEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusOutEvent(event);
  viewport()->update();
}

void CHexGridWidget::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  painter.fillRect(viewport()->rect(), palette().base());
  painter.setFont(font());
  const int first = verticalScrollBar()->value();
  const int last = std::min(Lines(), first + VisibleLines() + 1);
  for (int line = first; line < last; ++line)
    PaintLine(painter, line, kMargin + (line - first) * m_lineHeight);
  PaintCaret(painter);
}

void CHexGridWidget::PaintLine(QPainter& painter, int line, int y) const {
  const std::span<const std::uint8_t> bytes = m_grid.Bytes();
  const auto columns = static_cast<std::size_t>(Columns());
  const std::size_t begin = static_cast<std::size_t>(line) * columns;
  const std::size_t end = std::min(bytes.size(), begin + columns);
  const QRect lineRect(0, y, viewport()->width(), m_lineHeight);
  if (m_grid.ShowAddress()) {
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(
        lineRect.translated(FirstCellX() - (m_grid.AddressDigits() + 2) * m_charWidth, 0),
        Qt::AlignLeft | Qt::AlignVCenter,
        QStringLiteral("%1").arg(begin, m_grid.AddressDigits(), 16, QLatin1Char('0')).toUpper());
  }
  painter.setPen(palette().color(QPalette::Text));
  QString text;
  for (std::size_t i = begin; i < end; ++i) {
    const char pair[3] = {kDigits[bytes[i] >> 4], kDigits[bytes[i] & 0xF], 0};
    const int x = FirstCellX() + static_cast<int>(i - begin) * CellWidth();
    painter.drawText(QRect(x, y, 2 * m_charWidth, m_lineHeight), Qt::AlignLeft | Qt::AlignVCenter,
                     QString::fromLatin1(pair));
    text += (bytes[i] >= 0x20 && bytes[i] < 0x7F) ? QChar(bytes[i]) : QLatin1Char('.');
  }
  if (m_grid.ShowText()) {
    const int x = FirstCellX() + (Columns() * 3 + 1) * m_charWidth;
    painter.drawText(QRect(x, y, (Columns() + 1) * m_charWidth, m_lineHeight),
                     Qt::AlignLeft | Qt::AlignVCenter, text);
  }
}

// Overwrite shows a block on the digit, insert a bar before it; without the focus, an outline.
void CHexGridWidget::PaintCaret(QPainter& painter) const {
  const QRect digit = DigitRect(m_caret, m_secondDigit);
  if (!hasFocus()) {
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(digit.adjusted(0, 0, -1, -1));
    return;
  }
  if (m_insert) {
    painter.fillRect(QRect(digit.left(), digit.top(), 2, digit.height()),
                     palette().color(QPalette::Text));
    return;
  }
  painter.fillRect(digit, palette().color(QPalette::Highlight));
  if (m_caret < m_grid.Size()) {
    const std::uint8_t value = m_grid.Bytes()[m_caret];
    painter.setPen(palette().color(QPalette::HighlightedText));
    painter.drawText(digit, Qt::AlignLeft | Qt::AlignVCenter,
                     QString(QLatin1Char(kDigits[m_secondDigit ? value & 0xF : value >> 4])));
  }
}

void CHexGridWidget::TypeDigit(std::uint8_t digit) {
  const std::size_t size = m_grid.Size();
  if (m_caret >= size) {
    if (m_grid.Overwrite(size, static_cast<std::uint8_t>(digit << 4))) PlaceCaret(size, true);
    return;
  }
  if (m_insert && !m_secondDigit) {
    const std::uint8_t value = static_cast<std::uint8_t>(digit << 4);
    if (m_grid.Insert(m_caret, std::span(&value, 1))) PlaceCaret(m_caret, true);
    return;
  }
  const std::uint8_t old = m_grid.Bytes()[m_caret];
  const std::uint8_t value = m_secondDigit ? static_cast<std::uint8_t>((old & 0xF0) | digit)
                                           : static_cast<std::uint8_t>((old & 0x0F) | digit << 4);
  if (!m_grid.Overwrite(m_caret, value)) return;
  if (m_secondDigit)
    PlaceCaret(m_caret + 1, false);
  else
    PlaceCaret(m_caret, true);
}

void CHexGridWidget::Backspace() {
  if (m_secondDigit) {
    m_grid.Erase(m_caret, 1);
    PlaceCaret(m_caret, false);
  } else if (m_caret > 0) {
    const std::size_t before = m_caret - 1;  // the erase clamps the caret to the new end
    m_grid.Erase(before, 1);
    PlaceCaret(before, false);
  }
}

void CHexGridWidget::MoveCaret(std::ptrdiff_t bytes) {
  const auto target = static_cast<std::ptrdiff_t>(m_caret) + bytes;
  PlaceCaret(static_cast<std::size_t>(
                 std::clamp<std::ptrdiff_t>(target, 0, static_cast<std::ptrdiff_t>(m_grid.Size()))),
             false);
}

void CHexGridWidget::PlaceCaret(std::size_t byte, bool second) {
  m_caret = std::min(byte, m_grid.Size());
  m_secondDigit = second && m_caret < m_grid.Size();
  EnsureCaretVisible();
  viewport()->update();
}

void CHexGridWidget::EnsureCaretVisible() {
  const int line = static_cast<int>(m_caret / static_cast<std::size_t>(Columns()));
  QScrollBar* bar = verticalScrollBar();
  if (line < bar->value())
    bar->setValue(line);
  else if (line >= bar->value() + VisibleLines())
    bar->setValue(line - VisibleLines() + 1);
}

bool CHexGridWidget::Navigate(int key, Qt::KeyboardModifiers modifiers) {
  const auto columns = static_cast<std::ptrdiff_t>(Columns());
  const std::size_t lineStart = m_caret - m_caret % static_cast<std::size_t>(columns);
  switch (key) {
    case Qt::Key_Left:
      if (m_secondDigit)
        PlaceCaret(m_caret, false);
      else if (m_caret > 0)
        PlaceCaret(m_caret - 1, true);
      return true;
    case Qt::Key_Right:
      if (!m_secondDigit && m_caret < m_grid.Size())
        PlaceCaret(m_caret, true);
      else
        MoveCaret(1);
      return true;
    case Qt::Key_Up: MoveCaret(-columns); return true;
    case Qt::Key_Down: MoveCaret(columns); return true;
    case Qt::Key_PageUp: MoveCaret(-columns * VisibleLines()); return true;
    case Qt::Key_PageDown: MoveCaret(columns * VisibleLines()); return true;
    case Qt::Key_Home:
      PlaceCaret(modifiers & Qt::ControlModifier ? 0 : lineStart, false);
      return true;
    case Qt::Key_End:
      PlaceCaret(modifiers & Qt::ControlModifier
                     ? m_grid.Size()
                     : std::min(m_grid.Size(), lineStart + static_cast<std::size_t>(columns) - 1),
                 false);
      return true;
    default: return false;
  }
}

void CHexGridWidget::keyPressEvent(QKeyEvent* event) {
  if (Navigate(event->key(), event->modifiers())) return;
  switch (event->key()) {
    case Qt::Key_Insert:
      m_insert = !m_insert;
      viewport()->update();
      return;
    case Qt::Key_Delete:
      m_grid.Erase(m_caret, 1);
      PlaceCaret(m_caret, false);
      return;
    case Qt::Key_Backspace: Backspace(); return;
    default: break;
  }
  if (const std::optional<std::uint8_t> digit = HexDigit(event->text())) {
    TypeDigit(*digit);
    return;
  }
  QAbstractScrollArea::keyPressEvent(event);
}

void CHexGridWidget::mousePressEvent(QMouseEvent* event) {
  setFocus(Qt::MouseFocusReason);
  const QPoint at = event->position().toPoint();
  const int line = std::max(0, (at.y() - kMargin) / m_lineHeight + verticalScrollBar()->value());
  const int x = at.x() - FirstCellX();
  const int column = std::clamp(x / CellWidth(), 0, Columns() - 1);
  const bool second = x - column * CellWidth() >= m_charWidth;
  PlaceCaret(static_cast<std::size_t>(line) * static_cast<std::size_t>(Columns()) +
                 static_cast<std::size_t>(column),
             second);
}
