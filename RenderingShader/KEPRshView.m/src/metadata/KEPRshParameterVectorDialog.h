// Classic dialog behaviour of a vector parameter: data extension of "KEPRmaVector".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterDialog.h"

class KEPRshParameterVectorDialog : public KEPRshParameterDialog {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  using KEPRshParameterDialog::GetTypedDefault;
  /// Two to four numbers of the default text (blanks or commas between, brackets allowed).
  HRESULT GetTypedDefault(float (&value)[4]) override;

 protected:
  KEPRshParameterVectorDialog() = default;
  /// Traces "Destructor" and "Done" at module trace level 2.
  ~KEPRshParameterVectorDialog() override;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
  /// A KEPRshParameterVectorFrame.
  KEPDialog* CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent, const KEPString& name,
                         int style) override;
};

KEP_DECLARE_TIE(KEPIRshParameterDialog, KEPRshParameterVectorDialog)
