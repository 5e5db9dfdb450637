#include "KEPRshFrameUnits.h"

#include "KEPDlgTypes.h"

KEPRshFrameUnit KEPRshFrameUnitOf(const KEPString& unitName, KEPRshFrameControl control) {
  const KEPString lower = KEPToLower(unitName);
  if (lower == "mm") return {KEPDlgUnitMillimetre, 0.001};
  if (lower == "m") return {KEPDlgUnitMetre, 0.001};
  if (lower == "cm") return {KEPDlgUnitCentimetre, 0.001};
  if (lower == "km") return {KEPDlgUnitKilometre, 0.001};
  if (lower == "deg") return {KEPDlgUnitDegree, 1.0};
  const char* kelvin = control == KEPRshFrameControl::Slider ? "K" : "k";
  if (lower == kelvin) return {KEPDlgUnitKelvin, 1.0};
  return {};
}

bool KEPRshIsLengthUnitCode(int code) {
  return code == KEPDlgUnitMetre || code == KEPDlgUnitMillimetre || code == KEPDlgUnitCentimetre ||
         code == KEPDlgUnitKilometre;
}

double KEPRshFrameUnitOutFactor(int code) {
  return KEPRshIsLengthUnitCode(code) ? 1000.0 : 1.0;
}
