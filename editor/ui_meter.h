// CUIMeter: a bar that lights a strip in whole segments, linear in its value. The page shows
// its MIDI activity on two of them; the ballistics (how the value rises and falls) are the
// owner's.
#pragma once

#include "editor/ui_control.h"

class CUIMeter final : public CUIControl {
 public:
  // One-pixel segments, vertical, a range of -96 to 6, both values 0.
  CUIMeter() = default;

  // As CUIControl::Create, visible, with the strips; then the page's numbers: segments of 7
  // pixels, horizontal, a range of 0 to 127, both values 0.
  void Create(const UIRect& rect, void* module, IUIControlHost* parent, const UIImage& back,
              const UIImage& lit);

  // The general update: takes `decay` off both values, clamps the new ones to the range, and
  // raises a value that is below its new one.
  void SetValues(float left, float right, float decay);
  // Sets both values as they are, with no clamping: the owner's ballistics decide them.
  void SetRawValues(float left, float right) {
    m_left = left;
    m_right = right;
  }
  float Left() const noexcept { return m_left; }
  float Right() const noexcept { return m_right; }
  float Min() const noexcept { return m_min; }
  float Max() const noexcept { return m_max; }
  float Clamp(float value) const noexcept;

  void SetStep(int step) { m_step = step; }
  void SetHorizontal(bool horizontal) { m_horizontal = horizontal; }
  void SetRange(float min, float max) {
    m_min = min;
    m_max = max;
  }
  const UIImage& BackImage() const noexcept { return m_backImage; }
  const UIImage& LitImage() const noexcept { return m_litImage; }

  // The strip's length: the rectangle's width when horizontal, else its height, both without
  // the extra edge pixel.
  int StripLength() const noexcept;
  // Pixels lit for `value`: linear over the strip, raised to a whole segment, at most the
  // strip. Only the left value is shown.
  int LitLength(float value) const noexcept;
  // Draws the left value's lit length straight to the parent.
  void Draw() override;

 private:
  int m_step = 1;
  bool m_horizontal = false;
  UIImage m_backImage;
  UIImage m_litImage;
  float m_min = -96.0f;
  float m_max = 6.0f;
  float m_left = 0.0f;
  float m_right = 0.0f;
};
