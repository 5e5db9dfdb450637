#include "KEPRshParameterShaderImmLayout.h"

#include <new>

#include "KEPRshParameterShaderImmWidget.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterShaderImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaVoid")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterShaderImmLayout)

KEPBaseUnknown* KEPRshParameterShaderImmLayout::CreateItself() {
  return new KEPRshParameterShaderImmLayout();
}

const char* KEPRshParameterShaderImmLayout::DefaultWidgetKind() const {
  return "shader";
}

std::vector<KEPString> KEPRshParameterShaderImmLayout::WidgetKinds() const {
  return {};
}

HRESULT KEPRshParameterShaderImmLayout::BuildWidget(KEPVidWidget* parent, const char* name,
                                                    KEPVidWidget*& widget) {
  return BuildOwnWidget(
      parent, name, widget,
      [](KEPIRshParameter* parameter, KEPVidWidget* father, const KEPString& controlName) {
        return static_cast<KEPVidWidget*>(
            new (std::nothrow) KEPRshParameterShaderImmWidget(parameter, father, controlName));
      },
      "RenderingShader/KEPRshView.m/src/KEPRshParameterShaderImmLayout", __LINE__);
}
