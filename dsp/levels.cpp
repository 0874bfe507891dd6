#include "dsp/levels.h"

#include <cmath>

namespace av::dsp {

double powerToLevelDb(double power, double fullScale) noexcept {
  return power == 0.0 ? emptyBinDb : 20.0 * std::log10(std::sqrt(power) / fullScale);
}

void hartleyBinsToLevels(std::span<double> hartley, double fullScale) noexcept {
  for (std::size_t k = 1; k < hartley.size() / 2; ++k)
    hartley[k] = powerToLevelDb(hartleyBinPower(hartley, k), fullScale);
}

void hartleyBinsToLevels(std::span<double> hartley, double fullScale, double floorDb) noexcept {
  for (std::size_t k = 1; k < hartley.size() / 2; ++k) {
    const double levelDb = powerToLevelDb(hartleyBinPower(hartley, k), fullScale);
    hartley[k] = levelDb >= floorDb ? levelDb : floorDb;
  }
}

}  // namespace av::dsp
