#include "KEPRshParameterBooleanImmLayout.h"

#include <new>

#include "KEPRshParameterBooleanImmWidget.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterBooleanImmLayout, KEPRshParameterImmLayout, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaBoolean")

KEP_DEFINE_TIE(KEPIRshParameterImmLayout, KEPRshParameterBooleanImmLayout)

KEPBaseUnknown* KEPRshParameterBooleanImmLayout::CreateItself() {
  return new KEPRshParameterBooleanImmLayout();
}

HRESULT KEPRshParameterBooleanImmLayout::GetTypedDefault(bool& value) {
  return ReadBooleanDefault(value);
}

const char* KEPRshParameterBooleanImmLayout::DefaultWidgetKind() const {
  return "check";
}

std::vector<KEPString> KEPRshParameterBooleanImmLayout::WidgetKinds() const {
  return {};
}

HRESULT KEPRshParameterBooleanImmLayout::BuildWidget(KEPVidWidget* parent, const char* name,
                                                     KEPVidWidget*& widget) {
  return BuildOwnWidget(
      parent, name, widget,
      [](KEPIRshParameter* parameter, KEPVidWidget* father, const KEPString& controlName) {
        return static_cast<KEPVidWidget*>(
            new (std::nothrow) KEPRshParameterBooleanImmWidget(parameter, father, controlName));
      },
      "RenderingShader/KEPRshView.m/src/KEPRshParameterBooleanImmLayout", __LINE__);
}
