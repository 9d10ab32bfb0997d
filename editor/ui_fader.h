// CUIFader: a thumb dragged along a track, linear in its value (no taper: decibels are spread
// evenly), with optional detents it snaps to, and a default it returns to on a double click.
#pragma once

#include <vector>

#include "editor/ui_control.h"

class CUIFader final : public CUIControl {
 public:
  // A range of -96 to 6, value 0.
  CUIFader() = default;

  // Sets all; the hit rectangle is the track grown by half the thumb on each side. The value
  // starts at the default, clamped.
  void Create(const UIRect& track, bool visible, void* module, IUIControlHost* parent,
              bool horizontal, float min, float max, float defaultValue,
              std::vector<float> detents, const UIImage& trackImage, const UIImage& thumbImage);

  // Clamps to the range.
  void SetValue(float value);
  float Value() const noexcept { return m_value; }
  const UIRect& Track() const noexcept { return m_track; }
  const UIImage& TrackImage() const noexcept { return m_trackImage; }
  const UIImage& ThumbImage() const noexcept { return m_thumbImage; }
  bool Dragging() const noexcept { return m_dragging; }
  // Where the thumb stands for the present value.
  UIRect ThumbRect() const;

  // Over the thumb: grabs it where the cursor is and captures the mouse.
  int OnLButtonDown() override;
  // While dragging: the value follows the cursor along the track, snapped to the nearest
  // detent; marks the change and draws.
  int OnMouseMove(int x, int y) override;
  // Ends a drag, draws and releases the mouse.
  int OnLButtonUp() override;
  // On the thumb: back to the default, marked as changed.
  int OnLButtonDblClk() override;
  // Over the thumb, as the presses use it.
  bool HitTest(int x, int y) const override { return ThumbRect().Contains(x, y); }
  // Repaints what the thumb left since the last draw, then the thumb.
  void Draw() override;
  // The default, clamped to the range.
  void Reset() override;

 private:
  float Clamp(float value) const noexcept;
  void SnapToDetent();
  int ThumbCentre() const;

  UIRect m_track;
  UIRect m_lastThumb;
  UIImage m_trackImage;
  UIImage m_thumbImage;
  bool m_dragging = false;
  bool m_captured = false;
  bool m_horizontal = false;
  std::vector<float> m_detents;
  int m_grabOffset = 0;
  float m_min = -96.0f;
  float m_max = 6.0f;
  float m_default = 0.0f;
  float m_value = 0.0f;
};

// The parts of `from` that `cut` does not cover, as at most four rectangles.
std::vector<UIRect> SubtractRect(const UIRect& from, const UIRect& cut);
