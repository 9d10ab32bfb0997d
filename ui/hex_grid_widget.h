// The hex editors' byte grid on screen, over a CHexGrid: lines of `Columns` cells of two hex
// digits, an optional address column before them and character column after them. The caret
// stands on one digit. Typing a hex digit overwrites it, or, in insert mode (the Insert key),
// inserts a new byte when typed on a byte's first digit; at the end of the bytes a digit appends
// one. Delete removes the byte under the caret, Backspace the one before it (or the one being
// typed). Arrows, Home, End, Page Up and Page Down move; a click puts the caret on a digit.
// Every cell holds one byte: 4 or 8 digits a cell are not drawn, as no dialog asks for them.
#pragma once

#include <QtWidgets/QAbstractScrollArea>

#include "editor/hex_grid.h"

class CHexGridWidget final : public QAbstractScrollArea, private IHexGridObserver {
 public:
  explicit CHexGridWidget(CHexGrid& grid, QWidget* parent = nullptr);
  ~CHexGridWidget() override;

  // The caret: the byte it stands on (Size() at the end) and whether on its second digit.
  std::size_t CaretByte() const noexcept { return m_caret; }
  bool CaretOnSecondDigit() const noexcept { return m_secondDigit; }
  bool InsertMode() const noexcept { return m_insert; }

  // Where a digit of byte `index` (its second when `second`) is drawn, in the viewport's pixels.
  QRect DigitRect(std::size_t index, bool second) const;
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void OnGridDataChanged() override;

  void TypeDigit(std::uint8_t digit);
  void Backspace();
  void MoveCaret(std::ptrdiff_t bytes);
  void PlaceCaret(std::size_t byte, bool second);
  bool Navigate(int key, Qt::KeyboardModifiers modifiers);
  void EnsureCaretVisible();
  void UpdateScrollRange();

  int Columns() const;
  int Lines() const;
  int VisibleLines() const;
  int FirstCellX() const;  // where the cells begin, after the address column
  int CellWidth() const { return 3 * m_charWidth; }
  void PaintLine(QPainter& painter, int line, int y) const;
  void PaintCaret(QPainter& painter) const;

  CHexGrid& m_grid;
  std::size_t m_caret = 0;
  bool m_secondDigit = false;
  bool m_insert = false;
  int m_charWidth = 8;
  int m_lineHeight = 16;
  static constexpr int kMargin = 4;
};
