#include "dsp/centred_windows.h"

#include <cmath>
#include <numbers>

namespace av::dsp {
double centredWindowWeight(int type, int index, int length) noexcept {
  const double n = length;
  const double fromApex = index - 0.5 * n;
  switch (type) {
    case 1: {
      const double u = (2.0 * index - n) / n;
      return 1.0 - u * u;
    }
    case 2:
      if (index == length / 2) return 1.0;
      return index < length / 2 ? fromApex * 2.0 / n + 1.0 : 1.0 - fromApex * 2.0 / n;
    case 3: return 0.5 * std::cos(fromApex * 2.0 * std::numbers::pi / n) + 0.5;
    case 4: return double{0.46f} * std::cos(fromApex * 2.0 * std::numbers::pi / n) + double{0.54f};
    default: return 1.0;
  }
}

void CentredWindow::makeWeights(int type, std::size_t length) {
  m_type = 0;  // should the table fail to grow, it counts as not made
  m_weights.resize(length);
  for (std::size_t i = 0; i < length; ++i)
    m_weights[i] = centredWindowWeight(type, static_cast<int>(i), static_cast<int>(length));
  m_type = type;
}

}  // namespace av::dsp
