// Classic dialog behaviour of a scalar parameter: data extension of "KEPRmaScalar".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterDialog.h"

class KEPRshParameterScalarDialog : public KEPRshParameterDialog {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  using KEPRshParameterDialog::GetTypedDefault;
  /// The default text parsed "%le".
  HRESULT GetTypedDefault(float& value) override;

 protected:
  KEPRshParameterScalarDialog() = default;
  /// Traces "Destructor" and "Done" at module trace level 2.
  ~KEPRshParameterScalarDialog() override;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
  /// A KEPRshParameterScalarFrame.
  KEPDialog* CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent, const KEPString& name,
                         int style) override;
};

KEP_DECLARE_TIE(KEPIRshParameterDialog, KEPRshParameterScalarDialog)
