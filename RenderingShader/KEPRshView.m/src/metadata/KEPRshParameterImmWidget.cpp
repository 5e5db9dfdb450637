#include "KEPRshParameterImmWidget.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterImmWidget, KEPVidLayGrid, "KEPNull", "RenderingShader",
                       KEPClassKind_Implementation, "")

KEPRshParameterImmWidget::KEPRshParameterImmWidget(KEPIRshParameter* parameter,
                                                   KEPVidWidget* parent, const KEPString& name)
    : KEPVidLayGrid(parent, name), parameter_(dynamic_cast<KEPBaseUnknown*>(parameter)) {}

KEPRshParameterImmWidget::~KEPRshParameterImmWidget() = default;

KEP_var<KEPIRshParameter> KEPRshParameterImmWidget::GetParameter() const {
  return KEPQueryVar<KEPIRshParameter>(parameter_.Get());
}
