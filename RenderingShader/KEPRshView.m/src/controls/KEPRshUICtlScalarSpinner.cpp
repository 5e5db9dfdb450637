#include "KEPRshUICtlScalarSpinner.h"

#include <cmath>
#include <variant>

#include "KEPIRshParameter.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPISYPIntrospectable.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshIntrospectionAnnouncer.h"
#include "KEPSYPHashMapComparator.h"
#include "KEPSYPValue.h"

KEP_IMPLEMENT_CLASS(KEPRshUICtlScalarSpinner, KEPVidCtl, "RenderingShader")

namespace {

constexpr double kDefaultMinimum = 0.0;
constexpr double kDefaultMaximum = 1.0;
constexpr int kDefaultPrecision = 1;

KEPRshUICtlScalarSpinner* Spinner(KEPBaseUnknown* object) {
  return dynamic_cast<KEPRshUICtlScalarSpinner*>(object);
}

template <double (KEPRshUICtlScalarSpinner::*Getter)() const>
KEPSYPValue GetDouble(KEPBaseUnknown* object) {
  const KEPRshUICtlScalarSpinner* spinner = Spinner(object);
  if (!spinner) return std::monostate{};
  return (spinner->*Getter)();
}

HRESULT SetValueProperty(KEPBaseUnknown* object, const KEPSYPValue& value) {
  KEPRshUICtlScalarSpinner* spinner = Spinner(object);
  const double* number = std::get_if<double>(&value);
  if (!spinner || !number) return E_INVALIDARG;
  spinner->SetValue(*number);
  return S_OK;
}

KEPSYPValue GetDecimalPrecisionProperty(KEPBaseUnknown* object) {
  const KEPRshUICtlScalarSpinner* spinner = Spinner(object);
  if (!spinner) return std::monostate{};
  return spinner->GetDecimalPrecision();
}

KEPBaseUnknown* CreateSpinner() {
  return new KEPRshUICtlScalarSpinner();
}

/// 10^exponent by repeated squaring (exact for every power of ten a double holds exactly;
/// beyond the doubles, infinity).
double PowerOfTen(unsigned long long exponent) {
  double result = 1.0;
  double base = 10.0;
  while (exponent != 0) {
    if (exponent & 1ULL) result *= base;
    exponent >>= 1;
    if (exponent != 0) base *= base;
  }
  return result;
}

/// The component behind `object`: the object itself, or the component it extends.
KEPBaseUnknown* ComponentOf(KEPIUnknown* object) {
  auto* base = dynamic_cast<KEPBaseUnknown*>(object);
  if (!base) return nullptr;
  KEPBaseUnknown* extended = base->GetExtendedObject();
  return extended ? extended : base;
}

}  // namespace

const char* KEPRshUICtlScalarSpinner::SourcePath() {
  return "RenderingShader/KEPRshView.m/src/KEPRshUICtlScalarSpinner";
}

KEPRshUICtlScalarSpinner::KEPRshUICtlScalarSpinner() = default;

KEPRshUICtlScalarSpinner::KEPRshUICtlScalarSpinner(KEPIRshParameterImmLayout* layout)
    : trace_(std::make_unique<KEPTrace>("KEPRshUICtlScalarSpinner")),
      component_(ComponentOf(layout)) {
  if (const KEP_var<KEPIRshParameter> parameter = ResolveParameter()) {
    KEPString name;
    if (SUCCEEDED(parameter->GetName(name))) name_ = std::move(name);
  }
  for (const char* property : {"Step", "Value", "Unit", "Magnitude", "Minimum", "Maximum"})
    KEPRshIntrospectionAnnouncer::Announce(this, property, SourcePath());
}

KEPRshUICtlScalarSpinner::~KEPRshUICtlScalarSpinner() = default;

KEP_var<KEPIRshParameter> KEPRshUICtlScalarSpinner::ResolveParameter() const {
  return KEPQueryVar<KEPIRshParameter>(component_.Get());
}

KEP_var<KEPIRshParameterImmLayout> KEPRshUICtlScalarSpinner::ResolveLayout() const {
  return KEPQueryVar<KEPIRshParameterImmLayout>(component_.Get());
}

double KEPRshUICtlScalarSpinner::GetStep() const {
  const int precision = GetDecimalPrecision();
  // |precision| without overflow, INT_MIN included.
  const unsigned long long magnitude =
      precision < 0 ? static_cast<unsigned long long>(-static_cast<long long>(precision))
                    : static_cast<unsigned long long>(precision);
  const double power = PowerOfTen(magnitude);
  const double step = precision < 0 ? power : 1.0 / power;
  if (trace_) trace_->Info("Step is %.3f", step);
  return step;
}

double KEPRshUICtlScalarSpinner::ReadRangeEnd(bool minimum) const {
  const char* words = minimum ? "hard minimum" : "hard maximum";
  const double fallback = minimum ? kDefaultMinimum : kDefaultMaximum;
  const KEP_var<KEPIRshParameterImmLayout> layout = ResolveLayout();
  if (!layout) {
    if (trace_)
      trace_->Error(SourcePath(), __LINE__, "No parameter { %s (default) = %s }", words,
                    minimum ? "0.0" : "1.0");
    return fallback;
  }
  double low = kDefaultMinimum;
  double high = kDefaultMaximum;
  if (FAILED(layout->GetHardRange(low, high))) {
    if (trace_)
      trace_->Error(SourcePath(), __LINE__, "{ name = %s, %s = %.3f }", Name(), words, fallback);
    return fallback;
  }
  const double end = minimum ? low : high;
  if (trace_) trace_->Info("{ name = %s, %s = %.3f }", Name(), words, end);
  return end;
}

double KEPRshUICtlScalarSpinner::GetMinimum() const {
  return ReadRangeEnd(true);
}

double KEPRshUICtlScalarSpinner::GetMaximum() const {
  return ReadRangeEnd(false);
}

double KEPRshUICtlScalarSpinner::GetValue() const {
  const KEP_var<KEPIRshParameter> parameter = ResolveParameter();
  float red = 0.0f;
  float green = 0.0f;
  float blue = 0.0f;
  float alpha = 1.0f;
  if (!parameter || FAILED(parameter->GetColorValue(red, green, blue, &alpha))) {
    if (trace_)
      trace_->Error(SourcePath(), __LINE__, "{ name = %s, value (default) = 0.0 }", Name());
    return 0.0;
  }
  const float mean = (red + green + blue) / 3.0f;
  return static_cast<double>(mean);
}

int KEPRshUICtlScalarSpinner::GetDecimalPrecision() const {
  const KEP_var<KEPIRshParameterImmLayout> layout = ResolveLayout();
  if (!layout) return kDefaultPrecision;
  int precision = kDefaultPrecision;
  if (FAILED(layout->GetDecimalPrecision(precision))) {
    if (trace_)
      trace_->Error(SourcePath(), __LINE__, "{ name = %s, decimal precision = %d }", Name(),
                    kDefaultPrecision);
    return kDefaultPrecision;
  }
  if (trace_) trace_->Info("{ name = %s, decimal precision = %d }", Name(), precision);
  return precision;
}

void KEPRshUICtlScalarSpinner::SetValue(double value) {
  if (!std::isfinite(value)) {
    if (trace_)
      trace_->Error(SourcePath(), __LINE__, "Value is no finite number { name = %s, next = %f }",
                    Name(), value);
    return;
  }
  // The read, the write and the announcement are one step for a renderer.
  const KEPRdgRenderLock lock;
  const double previous = GetValue();
  if (KEPSYPHashMapComparatorDouble(previous, value) == 0) {
    if (trace_)
      trace_->Info("{ name = %s, previous = %.3f, next = %.3f, unit = none }", Name(), previous,
                   value);
    return;
  }
  const KEP_var<KEPIRshParameter> parameter = ResolveParameter();
  if (!parameter) return;
  const auto grey = static_cast<float>(value);
  const HRESULT hr = parameter->SetColorValue(grey, grey, grey, 1.0f);
  if (trace_) {
    if (FAILED(hr))
      trace_->Error(SourcePath(), __LINE__,
                    "{ name = %s, previous = %.3f, next = %.3f, unit = none }", Name(), previous,
                    value);
    else
      trace_->Info("{ name = %s, previous = %.3f, next = %.3f, unit = none }", Name(), previous,
                   value);
  }
  if (SUCCEEDED(hr)) KEPRshIntrospectionAnnouncer::Announce(this, "Value", SourcePath());
}

HRESULT fctCreateKEPRshUICtlScalarSpinnerSYPMetaClassBuilder(KEPSYPMetaClassBuilder& builder) {
  using Spinner = KEPRshUICtlScalarSpinner;
  static const KEPSYPPropertyEntry kProperties[] = {
      {"Step", "double", &GetDouble<&Spinner::GetStep>, nullptr},
      {"Minimum", "double", &GetDouble<&Spinner::GetMinimum>, nullptr},
      {"Maximum", "double", &GetDouble<&Spinner::GetMaximum>, nullptr},
      {"Value", "double", &GetDouble<&Spinner::GetValue>, &SetValueProperty},
  };
  static const KEPSYPPropertyEntry kIntegerProperties[] = {
      {"DecimalPrecision", "int", &GetDecimalPrecisionProperty, nullptr},
  };
  // No base: the spinner is described by its own properties only.
  builder.SetClass("KEPRshUICtlScalarSpinner", nullptr, &CreateSpinner);
  const HRESULT hr = builder.AddProperties(kProperties, 4);
  if (FAILED(hr)) return hr;
  return builder.AddIntegerProperties(kIntegerProperties, 1);
}

KEPSYPIntrospectableAdapter* CreateBOAKEPISYPIntrospectableKEPRshUICtlScalarSpinnerSYPIntro(
    KEPBaseUnknown* implementation) {
  KEPRshUICtlScalarSpinner* spinner = Spinner(implementation);
  if (!spinner) return nullptr;
  return new KEPSYPIntrospectableAdapter(spinner);
}
