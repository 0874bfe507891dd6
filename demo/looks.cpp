#include "demo/looks.h"

namespace avdemo {

std::vector<Look> allLooks() {
  std::vector<Look> looks;
  for (const std::span<const Look> ofControl : {viewLooks(), meterLooks(), analyserLooks()})
    looks.insert(looks.end(), ofControl.begin(), ofControl.end());
  return looks;
}

}  // namespace avdemo
