#include "KEPRshParameterIntegerDialog.h"

#include "KEPRshParameterIntegerFrame.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS_EX(KEPRshParameterIntegerDialog, KEPRshParameterDialog, "KEPNull",
                       "RenderingShader", KEPClassKind_Extension, "KEPRmaInteger")

KEP_DEFINE_TIE(KEPIRshParameterDialog, KEPRshParameterIntegerDialog)

KEPBaseUnknown* KEPRshParameterIntegerDialog::CreateItself() {
  return new KEPRshParameterIntegerDialog();
}

KEPRshParameterIntegerDialog::~KEPRshParameterIntegerDialog() {
  KEPModuleTrace::Trace(
      2, "(KEPRshParameterIntegerDialog::~KEPRshParameterIntegerDialog) Destructor\n");
  KEPModuleTrace::Trace(2, "(KEPRshParameterIntegerDialog::~KEPRshParameterIntegerDialog) Done\n");
}

HRESULT KEPRshParameterIntegerDialog::GetTypedDefault(int& value) {
  return ReadIntegerDefault(value);
}

HRESULT KEPRshParameterIntegerDialog::GetEnumValue(int index, int& value) {
  return Context().EnumValue(index, value);
}

HRESULT KEPRshParameterIntegerDialog::GetEnumIndex(int value, int& index) {
  // The search runs over the classic range, which never looks at the hard keys.
  return Context().EnumIndex(false, value, index);
}

const char* KEPRshParameterIntegerDialog::DefaultWidgetKind() const {
  return "spinner";
}

std::vector<KEPString> KEPRshParameterIntegerDialog::WidgetKinds() const {
  return {"slider", "wheel", "combo", "check"};
}

KEPDialog* KEPRshParameterIntegerDialog::CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent,
                                                     const KEPString& name, int style) {
  return new KEPRshParameterIntegerFrame(parent, parameter, name, style);
}
