// The byte grid of the hex editors, apart from its drawing: a byte array of any length edited
// in place, cell by cell, with the grid's display settings and its Modified mark. The drawn grid
// shows a CHexGrid and edits it through Overwrite, Insert and Erase; the dialogs hand it their
// working array with SetData and read the mark.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// Told when the bytes the grid shows change, so that a drawn grid repaints.
class IHexGridObserver {
 public:
  // [editor thread] After SetData and after each edit.
  virtual void OnGridDataChanged() = 0;

 protected:
  ~IHexGridObserver() = default;
};

class CHexGrid {
 public:
  // --- display settings ----------------------------------------------------------------------
  // Cells a line.
  int Columns() const noexcept { return m_columns; }
  void SetColumns(int columns) noexcept { m_columns = columns; }
  // The address column and its digits, 4 or 8.
  bool ShowAddress() const noexcept { return m_showAddress; }
  void SetShowAddress(bool show) noexcept { m_showAddress = show; }
  int AddressDigits() const noexcept { return m_addressDigits; }
  void SetAddressDigits(int digits) noexcept { m_addressDigits = digits; }
  // Hex digits of one cell: 2, 4 or 8.
  int DataDigits() const noexcept { return m_dataDigits; }
  void SetDataDigits(int digits) noexcept { m_dataDigits = digits; }
  // The character column beside the cells.
  bool ShowText() const noexcept { return m_showText; }
  void SetShowText(bool show) noexcept { m_showText = show; }

  // --- the bytes ------------------------------------------------------------------------------
  // [editor thread] Shows and edits `array` in place from now on; it must outlive the grid's
  // use of it. Null shows nothing. Modified stays as it was.
  void SetData(std::vector<std::uint8_t>* array);
  std::size_t Size() const noexcept { return m_array ? m_array->size() : 0; }
  std::span<const std::uint8_t> Bytes() const noexcept;

  // [editor thread] The user's edits. Each sets Modified; false, with nothing changed, when
  // there is no array or the place lies outside it. Overwrite at the end appends a byte.
  bool Overwrite(std::size_t index, std::uint8_t value);
  bool Insert(std::size_t index, std::span<const std::uint8_t> bytes);
  bool Erase(std::size_t index, std::size_t count);

  // True once the user changed a byte; the dialogs clear it after an export.
  bool Modified() const noexcept { return m_modified; }
  void SetModified(bool modified) noexcept { m_modified = modified; }

  // [editor thread] Where changes are told; null to stop.
  void SetObserver(IHexGridObserver* observer) noexcept { m_observer = observer; }

 private:
  void Changed();

  std::vector<std::uint8_t>* m_array = nullptr;
  IHexGridObserver* m_observer = nullptr;
  int m_columns = 8;
  int m_addressDigits = 4;
  int m_dataDigits = 2;
  bool m_showAddress = true;
  bool m_showText = true;
  bool m_modified = false;
};
