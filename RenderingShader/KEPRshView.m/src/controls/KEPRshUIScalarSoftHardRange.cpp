#include "KEPRshUIScalarSoftHardRange.h"

#include <variant>

#include "KEPIRshParameterImmLayout.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshIntrospectionAnnouncer.h"
#include "KEPSYPValue.h"

KEP_IMPLEMENT_CLASS(KEPRshUIScalarSoftHardRange, KEPVidCtl, "RenderingShader")

namespace {

using RangeEnd = KEPRshScalarControlParameter::RangeEnd;
using Fallback = KEPRshScalarControlParameter::Fallback;

/// Every fallback of this control is 0.0, the maxima's too.
constexpr Fallback kZero{0.0, "0.0", "0.0"};

KEPRshUIScalarSoftHardRange* Control(KEPBaseUnknown* object) {
  return dynamic_cast<KEPRshUIScalarSoftHardRange*>(object);
}

template <double (KEPRshUIScalarSoftHardRange::*Getter)() const>
KEPSYPValue GetDouble(KEPBaseUnknown* object) {
  const KEPRshUIScalarSoftHardRange* control = Control(object);
  if (!control) return std::monostate{};
  return (control->*Getter)();
}

KEPSYPValue GetUnitProperty(KEPBaseUnknown* object) {
  const KEPRshUIScalarSoftHardRange* control = Control(object);
  if (!control) return std::monostate{};
  return KEPSYPBoxInterface(control->GetUnit().Detach());
}

KEPSYPValue GetMagnitudeProperty(KEPBaseUnknown* object) {
  const KEPRshUIScalarSoftHardRange* control = Control(object);
  if (!control) return std::monostate{};
  return KEPSYPBoxInterface(control->GetMagnitude().Detach());
}

KEPSYPValue GetDecimalPrecisionProperty(KEPBaseUnknown* object) {
  const KEPRshUIScalarSoftHardRange* control = Control(object);
  if (!control) return std::monostate{};
  return control->GetDecimalPrecision();
}

HRESULT SetValueProperty(KEPBaseUnknown* object, const KEPSYPValue& value) {
  KEPRshUIScalarSoftHardRange* control = Control(object);
  const double* number = std::get_if<double>(&value);
  if (!control || !number) return E_INVALIDARG;
  control->SetValue(*number);
  return S_OK;
}

KEPBaseUnknown* CreateControl() {
  return new KEPRshUIScalarSoftHardRange();
}

}  // namespace

const char* KEPRshUIScalarSoftHardRange::SourcePath() {
  return "RenderingShader/KEPRshView.m/src/KEPRshUIScalarSoftHardRange";
}

KEPRshUIScalarSoftHardRange::KEPRshUIScalarSoftHardRange() : parameter_(nullptr, SourcePath()) {}

KEPRshUIScalarSoftHardRange::KEPRshUIScalarSoftHardRange(KEPIRshParameterImmLayout* layout)
    : trace_(std::make_unique<KEPTrace>("KEPRshUIScalarSoftHardRange")),
      parameter_(trace_.get(), SourcePath()) {
  parameter_.Attach(layout);
  // "DecimalPrecision" is not announced: parts read it when they are built.
  for (const char* property :
       {"Value", "Unit", "Magnitude", "HardMinimum", "HardMaximum", "SoftMinimum", "SoftMaximum"})
    KEPRshIntrospectionAnnouncer::Announce(this, property, SourcePath());
}

KEPRshUIScalarSoftHardRange::~KEPRshUIScalarSoftHardRange() = default;

double KEPRshUIScalarSoftHardRange::GetHardMinimum() const {
  return parameter_.ReadRangeEnd(RangeEnd::HardMinimum, kZero);
}

double KEPRshUIScalarSoftHardRange::GetHardMaximum() const {
  return parameter_.ReadRangeEnd(RangeEnd::HardMaximum, kZero);
}

double KEPRshUIScalarSoftHardRange::GetSoftMinimum() const {
  return parameter_.ReadRangeEnd(RangeEnd::SoftMinimum, kZero);
}

double KEPRshUIScalarSoftHardRange::GetSoftMaximum() const {
  return parameter_.ReadRangeEnd(RangeEnd::SoftMaximum, kZero);
}

double KEPRshUIScalarSoftHardRange::GetValue() const {
  return parameter_.ReadValue(kZero);
}

KEP_var<KEPICkeUnit> KEPRshUIScalarSoftHardRange::GetUnit() const {
  return parameter_.ReadUnit();
}

KEP_var<KEPICkeMagnitude> KEPRshUIScalarSoftHardRange::GetMagnitude() const {
  return parameter_.ReadMagnitude();
}

int KEPRshUIScalarSoftHardRange::GetDecimalPrecision() const {
  return parameter_.ReadDecimalPrecision();
}

void KEPRshUIScalarSoftHardRange::SetValue(double value) {
  // The read of the stored value, the write and the announcement are one step for a renderer.
  const KEPRdgRenderLock lock;
  if (parameter_.WriteValue(value))
    KEPRshIntrospectionAnnouncer::Announce(this, "Value", SourcePath());
}

HRESULT fctCreateKEPRshUIScalarSoftHardRangeSYPMetaClassBuilder(KEPSYPMetaClassBuilder& builder) {
  using Control = KEPRshUIScalarSoftHardRange;
  static const KEPSYPPropertyEntry kProperties[] = {
      {"HardMinimum", "double", &GetDouble<&Control::GetHardMinimum>, nullptr},
      {"HardMaximum", "double", &GetDouble<&Control::GetHardMaximum>, nullptr},
      {"SoftMinimum", "double", &GetDouble<&Control::GetSoftMinimum>, nullptr},
      {"SoftMaximum", "double", &GetDouble<&Control::GetSoftMaximum>, nullptr},
      {"Value", "double", &GetDouble<&Control::GetValue>, &SetValueProperty},
      {"Unit", "KEPICkeUnit", &GetUnitProperty, nullptr},
      {"Magnitude", "KEPICkeMagnitude", &GetMagnitudeProperty, nullptr},
  };
  static const KEPSYPPropertyEntry kIntegerProperties[] = {
      {"DecimalPrecision", "int", &GetDecimalPrecisionProperty, nullptr},
  };
  builder.SetClass("KEPRshUIScalarSoftHardRange", "KEPVidCtl", &CreateControl);
  const HRESULT hr = builder.AddProperties(kProperties, 7);
  if (FAILED(hr)) return hr;
  return builder.AddIntegerProperties(kIntegerProperties, 1);
}
