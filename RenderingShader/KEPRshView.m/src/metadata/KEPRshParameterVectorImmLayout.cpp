#include "KEPRshParameterVectorImmLayout.h"

#include <new>

#include "KEPRshParameterVectorImmWidget.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterVectorImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaVector")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterVectorImmLayout)

KEPBaseUnknown* KEPRshParameterVectorImmLayout::CreateItself() {
  return new KEPRshParameterVectorImmLayout();
}

HRESULT KEPRshParameterVectorImmLayout::GetTypedDefault(float (&value)[4]) {
  return ReadFourFloatDefault(value);
}

const char* KEPRshParameterVectorImmLayout::DefaultWidgetKind() const {
  return "spinner";
}

std::vector<KEPString> KEPRshParameterVectorImmLayout::WidgetKinds() const {
  return {"sliderx2", "sliderx3", "sliderx4", "no-value"};
}

HRESULT KEPRshParameterVectorImmLayout::BuildWidget(KEPVidWidget* parent, const char* name,
                                                    KEPVidWidget*& widget) {
  return BuildOwnWidget(
      parent, name, widget,
      [](KEPIRshParameter* parameter, KEPVidWidget* father, const KEPString& controlName) {
        return static_cast<KEPVidWidget*>(
            new (std::nothrow) KEPRshParameterVectorImmWidget(parameter, father, controlName));
      },
      "RenderingShader/KEPRshView.m/src/KEPRshParameterVectorImmLayout", __LINE__);
}
