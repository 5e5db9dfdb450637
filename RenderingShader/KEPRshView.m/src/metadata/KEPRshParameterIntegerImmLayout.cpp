#include "KEPRshParameterIntegerImmLayout.h"

#include <new>
#include <optional>

#include "KEPIRshParameter.h"
#include "KEPRecord.h"
#include "KEPRshParameterIntegerImmWidget.h"
#include "KEPRshUICtlParameterIntegral1.h"
#include "KEPTrace.h"
#include "KEP_var.h"

namespace {

/// Where the builder's assertions say they come from, and their lines there.
constexpr const char* kSourcePath =
    "RenderingShader/KEPRshView.m/src/KEPRshParameterIntegerImmLayout";
constexpr int kNoParameterLine = 46;
constexpr int kNoAllocationLine = 55;

/// The level read for this process; empty until first asked (and after a process reset).
std::optional<int> gBuilderLevel;

}  // namespace

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterIntegerImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaInteger")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterIntegerImmLayout)

KEPBaseUnknown* KEPRshParameterIntegerImmLayout::CreateItself() {
  return new KEPRshParameterIntegerImmLayout();
}

HRESULT KEPRshParameterIntegerImmLayout::GetTypedDefault(int& value) {
  return ReadIntegerDefault(value);
}

HRESULT KEPRshParameterIntegerImmLayout::GetTypedRange(int& min, int& max, int& step) {
  return ReadIntegerRange(min, max, step);
}

const char* KEPRshParameterIntegerImmLayout::DefaultWidgetKind() const {
  return "spinner";
}

std::vector<KEPString> KEPRshParameterIntegerImmLayout::WidgetKinds() const {
  return {"slider", "wheel", "combo", "check"};
}

int KEPRshParameterIntegerImmLayout::BuilderLevel() {
  if (!gBuilderLevel) gBuilderLevel = KEPRecord::GetSoftwareLevel("KEPRmaUIParameterConfiguration");
  return *gBuilderLevel;
}

void KEPRshParameterIntegerImmLayout::ForgetProcessCache() {
  gBuilderLevel.reset();
}

HRESULT KEPRshParameterIntegerImmLayout::BuildWidget(KEPVidWidget* parent, const char* name,
                                                     KEPVidWidget*& widget) {
  widget = nullptr;
  if (BuilderLevel() == 1) {
    const KEP_var<KEPIRshParameter> parameter = KEPQueryVar<KEPIRshParameter>(this);
    if (!parameter) {
      KEPAssertReport("hParameter && \"KEPIRshParameter not available\"", kSourcePath,
                      kNoParameterLine);
      return E_NOINTERFACE;
    }
    auto* control = new (std::nothrow) KEPRshUICtlParameterIntegral1();
    if (!control) {
      KEPAssertReport(
          "KEPRshParameterIntegerImmLayout::BuildWidget && \"Could not allocate widget\"",
          kSourcePath, kNoAllocationLine);
      return E_FAIL;
    }
    control->SetParameter(parameter.Get());
    widget = control;
    return S_OK;
  }
  if (!parent) return E_FAIL;
  const KEP_var<KEPIRshParameter> parameter = KEPQueryVar<KEPIRshParameter>(this);
  widget =
      new (std::nothrow) KEPRshParameterIntegerImmWidget(parameter.Get(), parent, name ? name : "");
  return S_OK;
}
