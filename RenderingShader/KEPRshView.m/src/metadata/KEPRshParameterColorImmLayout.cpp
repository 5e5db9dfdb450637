#include "KEPRshParameterColorImmLayout.h"

#include <new>

#include "KEPIRshParameter.h"
#include "KEPRshUICtlParameterColor.h"
#include "KEPRshUICtlScalarSpinner.h"
#include "KEP_var.h"

namespace {

/// Where the builder's error entries say they come from.
constexpr const char* kSourcePath =
    "RenderingShader/KEPRshView.m/src/KEPRshParameterColorImmLayout";
constexpr int kBuildFailureLine = 89;

}  // namespace

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterColorImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaColor")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterColorImmLayout)

KEPBaseUnknown* KEPRshParameterColorImmLayout::CreateItself() {
  return new KEPRshParameterColorImmLayout();
}

HRESULT KEPRshParameterColorImmLayout::GetTypedDefault(float (&value)[4]) {
  return ReadFourFloatDefault(value);
}

HRESULT KEPRshParameterColorImmLayout::GetTypedRange(float& min, float& max, float& step) {
  return ReadModelUnitRange(min, max, step);
}

HRESULT KEPRshParameterColorImmLayout::GetStep(double& step) {
  // Colour nodes usually carry their metadata as shader resources: ask them first.
  return ReadStep(true, step);
}

HRESULT KEPRshParameterColorImmLayout::GetDecimalPrecision(int& precision) {
  return ReadDecimalPrecision(precision);
}

HRESULT KEPRshParameterColorImmLayout::GetSoftRange(double& min, double& max) {
  return ReadSoftRange(min, max);
}

HRESULT KEPRshParameterColorImmLayout::GetSecondaryParameterName(KEPString& name) {
  return ReadSecondaryParameterName(name);
}

HRESULT KEPRshParameterColorImmLayout::GetHardRange(double& min, double& max) {
  return ReadHardRange(min, max);
}

const char* KEPRshParameterColorImmLayout::DefaultWidgetKind() const {
  return "color";
}

std::vector<KEPString> KEPRshParameterColorImmLayout::WidgetKinds() const {
  return {"scalar-spinner", "color"};
}

HRESULT KEPRshParameterColorImmLayout::BuildWidget(KEPVidWidget* parent, const char* name,
                                                   KEPVidWidget*& widget) {
  widget = nullptr;
  const KEP_var<KEPIRshParameter> parameter = KEPQueryVar<KEPIRshParameter>(this);
  const KEP_var<KEPIRshParameterImmLayout> layout = KEPQueryVar<KEPIRshParameterImmLayout>(this);
  if (!parameter || !layout) return E_NOINTERFACE;

  // The choice traces the kind, or the default it fell back to, on this layout's channel.
  KEPString kind;
  layout->ChooseWidgetKind(kind);

  const KEPString controlName = name ? name : "";
  KEPVidWidget* control = nullptr;
  if (kind == "scalar-spinner") {
    if (auto* spinner = new (std::nothrow) KEPRshUICtlScalarSpinner(layout.Get())) {
      // The spinner's parts come from the style sheet's entry of its kind.
      spinner->SetCustomStyle("KEPRshUI.sypstyle", "Default", KEPUnicodeString::FromUTF8(kind));
      control = spinner;
    }
  } else {
    // "color" and any other kind: the lightness slider, its editor and the picker's button.
    control = new (std::nothrow) KEPRshUICtlParameterColor(parameter.Get(), parent, controlName);
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
