#include "editor/ui_fader.h"

#include <algorithm>
#include <cmath>

void CUIFader::Create(const UIRect& track, bool visible, void* module, IUIControlHost* parent,
                      bool horizontal, float min, float max, float defaultValue,
                      std::vector<float> detents, const UIImage& trackImage,
                      const UIImage& thumbImage) {
  const int halfWidth = thumbImage.width / 2;
  const int halfHeight = thumbImage.height / 2;
  CUIControl::Create({track.left - halfWidth, track.top - halfHeight, track.right + halfWidth,
                      track.bottom + halfHeight},
                     visible, module, parent);
  m_track = track;
  m_horizontal = horizontal;
  m_min = min;
  m_max = max;
  m_default = defaultValue;
  m_detents = std::move(detents);
  m_trackImage = trackImage;
  m_thumbImage = thumbImage;
  Reset();
  m_lastThumb = ThumbRect();
}

float CUIFader::Clamp(float value) const noexcept { return std::clamp(value, m_min, m_max); }

void CUIFader::SetValue(float value) { m_value = Clamp(value); }

void CUIFader::Reset() { m_value = Clamp(m_default); }

UIRect CUIFader::ThumbRect() const {
  const float f = (m_max - m_value) / (m_max - m_min);
  const int w = m_thumbImage.width, h = m_thumbImage.height;
  if (m_horizontal) {
    const float length = static_cast<float>(m_track.Width());
    const int left = m_track.left + static_cast<int>(length - f * length) - w / 2;
    return {left, m_track.top, left + w - 1, m_track.top + h - 1};
  }
  const float length = static_cast<float>(m_track.Height());
  const int top = m_track.top + static_cast<int>(length) - static_cast<int>(length - f * length) -
                  h / 2;
  return {m_track.left, top, m_track.left + w - 1, top + h - 1};
}

int CUIFader::ThumbCentre() const {
  const UIRect thumb = ThumbRect();
  return m_horizontal ? thumb.left + m_thumbImage.width / 2 : thumb.top + m_thumbImage.height / 2;
}

int CUIFader::OnLButtonDown() {
  if (!IsMouseOver()) return 0;
  m_grabOffset = (m_horizontal ? MouseX() : MouseY()) - ThumbCentre();
  // The mirrored axis of a vertical fader turns the offset round as well.
  if (!m_horizontal) m_grabOffset = -m_grabOffset;
  m_dragging = true;
  m_captured = true;
  Parent()->SetCapture(this);
  return 0;
}

int CUIFader::OnMouseMove(int x, int y) {
  CUIControl::OnMouseMove(x, y);
  if (!m_dragging) return 0;
  const int start = m_horizontal ? m_track.left : m_track.top;
  const int end = m_horizontal ? m_track.right : m_track.bottom;
  int c = std::max(m_horizontal ? x : y, 0);
  if (!m_horizontal) c = m_track.bottom + m_track.top - c;
  c = std::clamp(c - m_grabOffset, start, end);
  m_value = static_cast<float>(c - start) * (m_max - m_min) / static_cast<float>(end - start) +
            m_min;
  SnapToDetent();
  MarkChanged();
  Draw();
  return 0;
}

// The first of two equally near detents stays.
void CUIFader::SnapToDetent() {
  if (m_detents.empty()) return;
  float best = std::fabs(m_max - m_min);
  float chosen = m_value;
  for (float detent : m_detents) {
    const float distance = std::fabs(m_value - detent);
    if (distance < best) {
      best = distance;
      chosen = detent;
    }
  }
  m_value = chosen;
}

int CUIFader::OnLButtonUp() {
  m_dragging = false;
  Draw();
  if (m_captured && Parent()) Parent()->SetCapture(nullptr);
  m_captured = false;
  return 0;
}

int CUIFader::OnLButtonDblClk() {
  if (!IsMouseOver()) return 0;
  Reset();
  MarkChanged();
  Draw();
  return 0;
}

void CUIFader::Draw() {
  const UIRect thumb = ThumbRect();
  if (Parent()) Parent()->DrawFader(*this, SubtractRect(m_lastThumb, thumb), thumb);
  m_lastThumb = thumb;
}

std::vector<UIRect> SubtractRect(const UIRect& from, const UIRect& cut) {
  const bool overlap = cut.left <= from.right && cut.right >= from.left &&
                       cut.top <= from.bottom && cut.bottom >= from.top;
  if (!overlap) return {from};
  std::vector<UIRect> parts;
  if (cut.top > from.top) parts.push_back({from.left, from.top, from.right, cut.top - 1});
  if (cut.bottom < from.bottom)
    parts.push_back({from.left, cut.bottom + 1, from.right, from.bottom});
  const int top = std::max(from.top, cut.top), bottom = std::min(from.bottom, cut.bottom);
  if (cut.left > from.left) parts.push_back({from.left, top, cut.left - 1, bottom});
  if (cut.right < from.right) parts.push_back({cut.right + 1, top, from.right, bottom});
  return parts;
}
