#include "KEPRshParameterTextureImmLayout.h"

#include <new>

#include "KEPRshParameterTextureImmWidget.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterTextureImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaTexture")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterTextureImmLayout)

KEPBaseUnknown* KEPRshParameterTextureImmLayout::CreateItself() {
  return new KEPRshParameterTextureImmLayout();
}

const char* KEPRshParameterTextureImmLayout::DefaultWidgetKind() const {
  return "texture";
}

std::vector<KEPString> KEPRshParameterTextureImmLayout::WidgetKinds() const {
  return {};
}

HRESULT KEPRshParameterTextureImmLayout::BuildWidget(KEPVidWidget* parent, const char* name,
                                                     KEPVidWidget*& widget) {
  return BuildOwnWidget(
      parent, name, widget,
      [](KEPIRshParameter* parameter, KEPVidWidget* father, const KEPString& controlName) {
        return static_cast<KEPVidWidget*>(
            new (std::nothrow) KEPRshParameterTextureImmWidget(parameter, father, controlName));
      },
      "RenderingShader/KEPRshView.m/src/KEPRshParameterTextureImmLayout", __LINE__);
}
