#include "KEPVidStyleEngine.h"

#include "KEPTrace.h"

HRESULT KEPVidStyleEngine::Apply(KEPVidCtl& control, const std::string& sheet,
                                 const std::string& styleName, const std::string& styleClass) {
  static const KEPTrace trace("KEPVidStyle");
  trace.Error("RenderingShader/KEPRshView.m/standalone/imm/KEPVidStyleEngine", __LINE__,
              "Styles are not built yet { control = %s, sheet = %s, style = %s, class = %s }",
              control.GetName().c_str(), sheet.c_str(), styleName.c_str(), styleClass.c_str());
  return E_NOTIMPL;
}
