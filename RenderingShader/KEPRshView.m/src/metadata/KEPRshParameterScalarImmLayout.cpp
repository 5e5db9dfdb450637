#include "KEPRshParameterScalarImmLayout.h"

#include <new>

#include "KEPIRshParameter.h"
#include "KEPIRshShader.h"
#include "KEPRshParameterScalarImmWidget.h"
#include "KEPRshParameterServices.h"
#include "KEPRshUIScalarRatio.h"
#include "KEPRshUIScalarSoftHardRange.h"
#include "KEP_var.h"

namespace {

/// Where the builder's error entries say they come from.
constexpr const char* kSourcePath =
    "RenderingShader/KEPRshView.m/src/KEPRshParameterScalarImmLayout";
constexpr int kBuildFailureLine = 165;

/// The introspectable controls take their parts from one style sheet, one entry per kind.
void ApplyStyle(KEPVidCtl* control, const KEPString& kind) {
  control->SetCustomStyle("KEPRshUI.sypstyle", "Default", KEPUnicodeString::FromUTF8(kind));
}

/// The ratio control of `parameter` and the sibling that its ".SecondaryParameter" names, or null
/// when the key, the owning shader or the sibling is missing.
KEPVidCtl* MakeRatio(KEPIRshParameter* parameter, KEPIRshParameterImmLayout* layout) {
  KEPString secondaryName;
  const bool named = SUCCEEDED(layout->GetSecondaryParameterName(secondaryName));
  const auto shader =
      KEP_var<KEPIRshShader>::Adopt(KEPRshParameterServices::FindShaderParent(parameter));
  if (!shader || !named) return nullptr;
  KEP_var<KEPIRshParameter> secondary;
  if (FAILED(shader->GetParameter(secondaryName, *secondary.Out())) || !secondary) return nullptr;
  auto* ratio = new (std::nothrow) KEPRshUIScalarRatio();
  if (ratio) ratio->SetParameters(parameter, secondary.Get());
  return ratio;
}

}  // namespace

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterScalarImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaScalar")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterScalarImmLayout)

KEPBaseUnknown* KEPRshParameterScalarImmLayout::CreateItself() {
  return new KEPRshParameterScalarImmLayout();
}

HRESULT KEPRshParameterScalarImmLayout::GetTypedDefault(float& value) {
  return ReadScalarDefault(value);
}

HRESULT KEPRshParameterScalarImmLayout::GetTypedRange(float& min, float& max, float& step) {
  return ReadModelUnitRange(min, max, step);
}

HRESULT KEPRshParameterScalarImmLayout::GetStep(double& step) {
  return ReadStep(false, step);
}

HRESULT KEPRshParameterScalarImmLayout::GetDecimalPrecision(int& precision) {
  return ReadDecimalPrecision(precision);
}

HRESULT KEPRshParameterScalarImmLayout::GetSoftRange(double& min, double& max) {
  return ReadSoftRange(min, max);
}

HRESULT KEPRshParameterScalarImmLayout::GetSecondaryParameterName(KEPString& name) {
  return ReadSecondaryParameterName(name);
}

HRESULT KEPRshParameterScalarImmLayout::GetHardRange(double& min, double& max) {
  return ReadHardRange(min, max);
}

const char* KEPRshParameterScalarImmLayout::DefaultWidgetKind() const {
  return "no-value";
}

std::vector<KEPString> KEPRshParameterScalarImmLayout::WidgetKinds() const {
  return {"slider", "wheel", "spinner", "ratio", "dynamic-slider", "no-value", "generic"};
}

HRESULT KEPRshParameterScalarImmLayout::BuildWidget(KEPVidWidget* parent, const char* name,
                                                    KEPVidWidget*& widget) {
  widget = nullptr;
  if (!parent) return E_FAIL;
  const KEP_var<KEPIRshParameter> parameter = KEPQueryVar<KEPIRshParameter>(this);
  const KEP_var<KEPIRshParameterImmLayout> layout = KEPQueryVar<KEPIRshParameterImmLayout>(this);
  if (!parameter || !layout) return E_NOINTERFACE;

  // The choice traces the kind, or the default it fell back to, on this layout's channel.
  KEPString kind;
  layout->ChooseWidgetKind(kind);

  const KEPString controlName = name ? name : "";
  KEPVidWidget* control = nullptr;
  if (kind == "ratio") {
    if (KEPVidCtl* ratio = MakeRatio(parameter.Get(), layout.Get())) {
      ApplyStyle(ratio, kind);
      control = ratio;
    }
  } else if (kind == "dynamic-slider") {
    if (auto* range = new (std::nothrow) KEPRshUIScalarSoftHardRange(layout.Get())) {
      ApplyStyle(range, kind);
      control = range;
    }
  } else {
    // "slider", "wheel", "spinner", "no-value" and any other kind: the widget reads the kind
    // again and builds the controls that fit it.
    control =
        new (std::nothrow) KEPRshParameterScalarImmWidget(parameter.Get(), parent, controlName);
  }

  // The same text on both paths: an error entry already says that the build failed.
  if (!control) {
    GetTrace()->Error(kSourcePath, kBuildFailureLine, "Widget successfully built");
    return E_FAIL;
  }
  GetTrace()->Info("Widget successfully built");
  control->SetName(controlName);
  if (control->GetFather() != parent) control->SetFather(parent);
  widget = control;
  return S_OK;
}
