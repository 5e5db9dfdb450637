#include "KEPRshScalarControlParameter.h"

#include <string>

#include "KEPIRshParameter.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPTrace.h"

namespace {

const char* Words(KEPRshScalarControlParameter::RangeEnd end) {
  switch (end) {
    case KEPRshScalarControlParameter::RangeEnd::HardMinimum:
      return "hard minimum";
    case KEPRshScalarControlParameter::RangeEnd::HardMaximum:
      return "hard maximum";
    case KEPRshScalarControlParameter::RangeEnd::SoftMinimum:
      return "soft minimum";
    case KEPRshScalarControlParameter::RangeEnd::SoftMaximum:
      return "soft maximum";
  }
  return "";
}

bool IsHard(KEPRshScalarControlParameter::RangeEnd end) {
  return end == KEPRshScalarControlParameter::RangeEnd::HardMinimum ||
         end == KEPRshScalarControlParameter::RangeEnd::HardMaximum;
}

bool IsMinimum(KEPRshScalarControlParameter::RangeEnd end) {
  return end == KEPRshScalarControlParameter::RangeEnd::HardMinimum ||
         end == KEPRshScalarControlParameter::RangeEnd::SoftMinimum;
}

HRESULT ReadRange(KEPIRshParameterImmLayout* layout, KEPRshScalarControlParameter::RangeEnd end,
                  double& value) {
  double min = 0.0;
  double max = 0.0;
  const HRESULT hr = IsHard(end) ? layout->GetHardRange(min, max) : layout->GetSoftRange(min, max);
  if (SUCCEEDED(hr)) value = IsMinimum(end) ? min : max;
  return hr;
}

/// parameter -> current: current.FromBase(parameterUnit.ToBase(value)).
double ToCurrent(const KEPICkeUnit* parameterUnit, const KEPICkeUnit* current, double value) {
  return current->FromBase(parameterUnit->ToBase(value));
}

/// current -> parameter: parameterUnit.FromBase(current.ToBase(value)).
double ToParameter(const KEPICkeUnit* parameterUnit, const KEPICkeUnit* current, double value) {
  return parameterUnit->FromBase(current->ToBase(value));
}

std::string NameOf(const KEPICkeUnit* unit) {
  return unit->Name().ToUTF8();
}

/// The component behind `object`: the object itself, or the component it extends.
KEPBaseUnknown* ComponentOf(KEPIUnknown* object) {
  auto* base = dynamic_cast<KEPBaseUnknown*>(object);
  if (!base) return nullptr;
  KEPBaseUnknown* extended = base->GetExtendedObject();
  return extended ? extended : base;
}

}  // namespace

void KEPRshScalarControlParameter::Attach(KEPIUnknown* parameter) {
  KEPBaseUnknown* component = ComponentOf(parameter);
  component_.Set(component);
  name_.clear();
  const KEP_var<KEPIRshParameter> named = KEPQueryVar<KEPIRshParameter>(component);
  if (named) {
    KEPString name;
    if (SUCCEEDED(named->GetName(name))) name_ = std::move(name);
  }
}

KEPRshScalarControlParameter::Resolved KEPRshScalarControlParameter::Resolve() const {
  KEPBaseUnknown* component = component_.Get();
  return {KEPQueryVar<KEPIRshParameter>(component),
          KEPQueryVar<KEPIRshParameterImmLayout>(component)};
}

KEPRshScalarControlParameter::Units KEPRshScalarControlParameter::ReadUnits(
    KEPIRshParameterImmLayout* layout) {
  Units units;
  KEPICkeUnit* unit = nullptr;
  layout->GetUnit(unit);
  units.unit = KEP_var<KEPICkeUnit>::Adopt(unit);
  KEPICkeMagnitude* magnitude = nullptr;
  const HRESULT hr = layout->GetMagnitude(magnitude);
  units.magnitude = KEP_var<KEPICkeMagnitude>::Adopt(magnitude);
  units.available = SUCCEEDED(hr) && units.unit && units.magnitude;
  return units;
}

double KEPRshScalarControlParameter::ReadRangeEnd(RangeEnd end, const Fallback& fallback) const {
  const char* words = Words(end);
  const Resolved resolved = Resolve();
  if (!resolved.layout) {
    if (trace_)
      trace_->Error(sourcePath_, __LINE__, "No parameter { %s (default) = %s }", words,
                    fallback.noParameterText);
    return fallback.value;
  }
  const Units units = ReadUnits(resolved.layout.Get());

  double value = 0.0;
  if (!units.available) {
    if (FAILED(ReadRange(resolved.layout.Get(), end, value))) {
      if (trace_)
        trace_->Error(sourcePath_, __LINE__, "{ name = %s, %s = %.3f }", Name(), words,
                      fallback.value);
      return fallback.value;
    }
    if (trace_) trace_->Info("{ name = %s, %s = %.3f }", Name(), words, value);
    return value;
  }

  if (FAILED(ReadRange(resolved.layout.Get(), end, value))) {
    if (trace_)
      trace_->Error(sourcePath_, __LINE__, "Cannot read range { name = %s, %s (default) = %s }",
                    Name(), words, fallback.text);
    return fallback.value;
  }
  const KEPICkeUnit* current = units.magnitude->CurrentUnit();
  if (!current) {
    if (trace_)
      trace_->Error(sourcePath_, __LINE__, "No current unit { name = %s, %s (default) = %s }",
                    Name(), words, fallback.text);
    return fallback.value;
  }
  const double converted = ToCurrent(units.unit.Get(), current, value);
  if (trace_)
    trace_->Info(
        "{ name = %s, %s (current) = %.3f, %s (parameter) = %.3f, unit (current) = %s, unit "
        "(parameter) = %s }",
        Name(), words, converted, words, value, NameOf(current).c_str(),
        NameOf(units.unit.Get()).c_str());
  return converted;
}

double KEPRshScalarControlParameter::ReadValue(const Fallback& fallback) const {
  const Resolved resolved = Resolve();
  float stored = 0.0f;
  if (!resolved.parameter || !resolved.layout ||
      FAILED(resolved.parameter->GetScalarValue(stored))) {
    if (trace_)
      trace_->Error(sourcePath_, __LINE__, "{ name = %s, value (default) = %s }", Name(),
                    fallback.text);
    return fallback.value;
  }
  const double value = stored;

  const Units units = ReadUnits(resolved.layout.Get());
  if (!units.available) {
    if (trace_) trace_->Info("{ name = %s, value = %.3f, unit = none }", Name(), value);
    return value;
  }
  const KEPICkeUnit* current = units.magnitude->CurrentUnit();
  if (!current) {
    if (trace_)
      trace_->Warning(
          "{ name = %s, value (parameter) = %.3f, unit (current) = none, unit (parameter) = %s }",
          Name(), value, NameOf(units.unit.Get()).c_str());
    return value;
  }
  const double converted = ToCurrent(units.unit.Get(), current, value);
  if (trace_)
    trace_->Info(
        "{ name = %s, value (current) = %.3f, value (parameter) = %.3f, unit (current) = %s, "
        "unit (parameter) = %s }",
        Name(), converted, value, NameOf(current).c_str(), NameOf(units.unit.Get()).c_str());
  return converted;
}

bool KEPRshScalarControlParameter::WriteValue(double next) const {
  const Resolved resolved = Resolve();
  if (!resolved.parameter || !resolved.layout) return false;
  float stored = 0.0f;
  if (FAILED(resolved.parameter->GetScalarValue(stored))) {
    if (trace_) trace_->Error(sourcePath_, __LINE__, "Cannot read current parameter's value");
    return false;
  }
  const double previous = stored;

  // The stored float widened to double is compared with the double target before narrowing:
  // a target that a float cannot hold exactly is always written again.
  const Units units = ReadUnits(resolved.layout.Get());
  double target = next;
  std::string text;
  if (!units.available) {
    text = KEPFormat("{ name = %s, previous = %.3f, next = %.3f, unit = none }", Name(), previous,
                     next);
  } else {
    const KEPICkeUnit* current = units.magnitude->CurrentUnit();
    if (!current) {
      if (trace_) trace_->Error(sourcePath_, __LINE__, "No current unit !");
      return false;
    }
    const KEPICkeUnit* unit = units.unit.Get();
    target = ToParameter(unit, current, next);
    text = KEPFormat(
        "{ name = %s, previous (current) = %.3f, previous (parameter) = %.3f, next (current) = "
        "%.3f, next (parameter) = %.3f, unit (current) = %s, unit (parameter) = %s }",
        Name(), ToCurrent(unit, current, previous), previous, next, target, NameOf(current).c_str(),
        NameOf(unit).c_str());
  }
  if (previous == target) {
    if (trace_) trace_->Info("%s", text.c_str());
    return false;
  }
  const HRESULT hr = resolved.parameter->SetScalarValue(static_cast<float>(target));
  if (trace_) {
    if (FAILED(hr))
      trace_->Error(sourcePath_, __LINE__, "%s", text.c_str());
    else
      trace_->Info("%s", text.c_str());
  }
  return SUCCEEDED(hr);
}

int KEPRshScalarControlParameter::ReadDecimalPrecision() const {
  const Resolved resolved = Resolve();
  if (!resolved.layout) return 1;
  int precision = 1;
  if (FAILED(resolved.layout->GetDecimalPrecision(precision))) {
    if (trace_)
      trace_->Error(sourcePath_, __LINE__, "{ name = %s, decimal precision = %d }", Name(), 1);
    return 1;
  }
  if (trace_) trace_->Info("{ name = %s, decimal precision = %d }", Name(), precision);
  return precision;
}

KEP_var<KEPICkeUnit> KEPRshScalarControlParameter::ReadUnit() const {
  const Resolved resolved = Resolve();
  KEPICkeUnit* unit = nullptr;
  if (resolved.layout) resolved.layout->GetUnit(unit);
  KEP_var<KEPICkeUnit> held = KEP_var<KEPICkeUnit>::Adopt(unit);
  if (trace_) {
    if (held)
      trace_->Info("{ name = %s, unit = %s }", Name(), NameOf(held.Get()).c_str());
    else
      trace_->Info("{ name = %s, unit = none }", Name());
  }
  return held;
}

KEP_var<KEPICkeMagnitude> KEPRshScalarControlParameter::ReadMagnitude() const {
  const Resolved resolved = Resolve();
  KEPICkeMagnitude* magnitude = nullptr;
  HRESULT hr = E_FAIL;
  if (resolved.layout) hr = resolved.layout->GetMagnitude(magnitude);
  KEP_var<KEPICkeMagnitude> held = KEP_var<KEPICkeMagnitude>::Adopt(magnitude);
  if (FAILED(hr)) held = NULL_var;
  if (trace_) {
    if (held)
      trace_->Info("{ name = %s, magnitude = %s }", Name(), held->Name().ToUTF8().c_str());
    else
      trace_->Info("{ name = %s, magnitude = none }", Name());
  }
  return held;
}
