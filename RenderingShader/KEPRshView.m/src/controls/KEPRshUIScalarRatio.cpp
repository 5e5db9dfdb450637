#include "KEPRshUIScalarRatio.h"

#include <variant>

#include "KEPIRshParameter.h"
#include "KEPISYPIntrospectable.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshIntrospectionAnnouncer.h"

KEP_IMPLEMENT_CLASS(KEPRshUIScalarRatio, KEPVidCtl, "RenderingShader")

namespace {

using RangeEnd = KEPRshScalarControlParameter::RangeEnd;
using Fallback = KEPRshScalarControlParameter::Fallback;

constexpr Fallback kMinimum{0.0, "0.0", "0.0"};
// Without a parameter the hard maximum answers 1.0, the slider's usual upper end, while its
// message keeps its fixed text, which says 0.0.
constexpr Fallback kHardMaximum{1.0, "1.0", "0.0"};
constexpr Fallback kSoftMaximum{1.0, "1.0", "1.0"};
constexpr Fallback kPrimaryValue{0.0, "0.0", "0.0"};
constexpr Fallback kSecondaryValue{1.0, "1.0", "1.0"};

KEPRshUIScalarRatio* Ratio(KEPBaseUnknown* object) {
  return dynamic_cast<KEPRshUIScalarRatio*>(object);
}

template <double (KEPRshUIScalarRatio::*Getter)() const>
KEPSYPValue GetDouble(KEPBaseUnknown* object) {
  const KEPRshUIScalarRatio* ratio = Ratio(object);
  if (!ratio) return std::monostate{};
  return (ratio->*Getter)();
}

KEPSYPValue GetMagnitudeProperty(KEPBaseUnknown* object) {
  const KEPRshUIScalarRatio* ratio = Ratio(object);
  if (!ratio) return std::monostate{};
  return KEPSYPBoxInterface(ratio->GetMagnitude().Detach());
}

KEPSYPValue GetValuesProperty(KEPBaseUnknown* object) {
  const KEPRshUIScalarRatio* ratio = Ratio(object);
  if (!ratio) return std::monostate{};
  return ratio->GetValues();
}

HRESULT SetValuesProperty(KEPBaseUnknown* object, const KEPSYPValue& value) {
  KEPRshUIScalarRatio* ratio = Ratio(object);
  const KEPMathPoint2D* point = std::get_if<KEPMathPoint2D>(&value);
  if (!ratio || !point) return E_INVALIDARG;
  ratio->SetValues(*point);
  return S_OK;
}

KEPSYPValue GetDecimalPrecisionProperty(KEPBaseUnknown* object) {
  const KEPRshUIScalarRatio* ratio = Ratio(object);
  if (!ratio) return std::monostate{};
  return ratio->GetDecimalPrecision();
}

KEPBaseUnknown* CreateRatio() {
  return new KEPRshUIScalarRatio();
}

}  // namespace

const char* KEPRshUIScalarRatio::SourcePath() {
  return "RenderingShader/KEPRshView.m/src/KEPRshUIScalarRatio";
}

KEPRshUIScalarRatio::KEPRshUIScalarRatio()
    : trace_(std::make_unique<KEPTrace>("KEPRshUIScalarRatio")),
      primary_(trace_.get(), SourcePath()),
      secondary_(trace_.get(), SourcePath()) {}

KEPRshUIScalarRatio::~KEPRshUIScalarRatio() = default;

void KEPRshUIScalarRatio::SetParameters(KEPIRshParameter* primary, KEPIRshParameter* secondary) {
  const bool wasUpdating = updating_;
  updating_ = true;
  primary_.Attach(primary);
  secondary_.Attach(secondary);
  for (const char* property : {"Values", "HardMinimum", "HardMaximum", "SoftMinimum", "SoftMaximum",
                               "Magnitude", "DecimalPrecision"})
    KEPRshIntrospectionAnnouncer::Announce(this, property, SourcePath());
  updating_ = wasUpdating;
}

double KEPRshUIScalarRatio::GetHardMinimum() const {
  return primary_.ReadRangeEnd(RangeEnd::HardMinimum, kMinimum);
}

double KEPRshUIScalarRatio::GetHardMaximum() const {
  return primary_.ReadRangeEnd(RangeEnd::HardMaximum, kHardMaximum);
}

double KEPRshUIScalarRatio::GetSoftMinimum() const {
  return primary_.ReadRangeEnd(RangeEnd::SoftMinimum, kMinimum);
}

double KEPRshUIScalarRatio::GetSoftMaximum() const {
  return primary_.ReadRangeEnd(RangeEnd::SoftMaximum, kSoftMaximum);
}

KEP_var<KEPICkeMagnitude> KEPRshUIScalarRatio::GetMagnitude() const {
  return primary_.ReadMagnitude();
}

int KEPRshUIScalarRatio::GetDecimalPrecision() const {
  return primary_.ReadDecimalPrecision();
}

KEPMathPoint2D KEPRshUIScalarRatio::GetValues() const {
  KEPMathPoint2D values;
  values.y = secondary_.ReadValue(kSecondaryValue);
  values.x = primary_.ReadValue(kPrimaryValue);
  return values;
}

void KEPRshUIScalarRatio::SetValues(const KEPMathPoint2D& values) {
  if (updating_) return;
  // One hold for both writes: a renderer sees neither new value or both. A failed or skipped
  // write of x does not keep y from being written.
  const KEPRdgRenderLock lock;
  if (primary_.WriteValue(values.x))
    KEPRshIntrospectionAnnouncer::Announce(this, "Value", SourcePath());
  if (secondary_.WriteValue(values.y))
    KEPRshIntrospectionAnnouncer::Announce(this, "Value", SourcePath());
}

HRESULT fctCreateKEPRshUIScalarRatioSYPMetaClassBuilder(KEPSYPMetaClassBuilder& builder) {
  using Ratio = KEPRshUIScalarRatio;
  static const KEPSYPPropertyEntry kProperties[] = {
      {"HardMinimum", "double", &GetDouble<&Ratio::GetHardMinimum>, nullptr},
      {"HardMaximum", "double", &GetDouble<&Ratio::GetHardMaximum>, nullptr},
      {"SoftMinimum", "double", &GetDouble<&Ratio::GetSoftMinimum>, nullptr},
      {"SoftMaximum", "double", &GetDouble<&Ratio::GetSoftMaximum>, nullptr},
      {"Magnitude", "KEPICkeMagnitude", &GetMagnitudeProperty, nullptr},
      {"Values", "KEPMathPoint2D", &GetValuesProperty, &SetValuesProperty},
  };
  static const KEPSYPPropertyEntry kIntegerProperties[] = {
      {"DecimalPrecision", "int", &GetDecimalPrecisionProperty, nullptr},
  };
  // No base: the ratio is described by its own properties only.
  builder.SetClass("KEPRshUIScalarRatio", nullptr, &CreateRatio);
  const HRESULT hr = builder.AddProperties(kProperties, 6);
  if (FAILED(hr)) return hr;
  return builder.AddIntegerProperties(kIntegerProperties, 1);
}

KEPSYPIntrospectableAdapter* CreateBOAKEPISYPIntrospectableKEPRshUIScalarRatioSYPIntro(
    KEPBaseUnknown* implementation) {
  KEPRshUIScalarRatio* ratio = Ratio(implementation);
  if (!ratio) return nullptr;
  return new KEPSYPIntrospectableAdapter(ratio);
}
