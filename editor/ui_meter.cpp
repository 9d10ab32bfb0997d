#include "editor/ui_meter.h"

#include <algorithm>

void CUIMeter::Create(const UIRect& rect, void* module, IUIControlHost* parent,
                      const UIImage& back, const UIImage& lit) {
  CUIControl::Create(rect, true, module, parent);
  m_backImage = back;
  m_litImage = lit;
  m_step = 7;
  m_horizontal = true;
  m_min = 0.0f;
  m_max = 127.0f;
  m_left = m_right = 0.0f;
}

float CUIMeter::Clamp(float value) const noexcept { return std::clamp(value, m_min, m_max); }

void CUIMeter::SetValues(float left, float right, float decay) {
  m_left -= decay;
  m_right -= decay;
  m_left = std::max(m_left, Clamp(left));
  m_right = std::max(m_right, Clamp(right));
}

int CUIMeter::StripLength() const noexcept {
  return m_horizontal ? Rect().right - Rect().left : Rect().bottom - Rect().top;
}

int CUIMeter::LitLength(float value) const noexcept {
  const int length = StripLength();
  const float strip = static_cast<float>(length);
  int lit = static_cast<int>(strip - (m_max - value) / (m_max - m_min) * strip);
  lit = std::max(lit, 0);  // a value below the range lights nothing
  if (m_step > 0 && lit % m_step != 0) lit += m_step - lit % m_step;
  return std::min(lit, length);
}

void CUIMeter::Draw() {
  if (Parent()) Parent()->DrawMeter(*this, LitLength(m_left));
}
