// Classic dialog behaviour of a colour parameter: data extension of "KEPRmaColor".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterDialog.h"

class KEPRshParameterColorDialog : public KEPRshParameterDialog {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  using KEPRshParameterDialog::GetTypedDefault;
  /// Two to four numbers of the default text (blanks or commas between, brackets allowed).
  HRESULT GetTypedDefault(float (&value)[4]) override;

 protected:
  KEPRshParameterColorDialog() = default;
  /// Traces "Destructor" and "Done" at module trace level 2.
  ~KEPRshParameterColorDialog() override;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
  /// A KEPRshParameterColorFrame.
  KEPDialog* CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent, const KEPString& name,
                         int style) override;
};

KEP_DECLARE_TIE(KEPIRshParameterDialog, KEPRshParameterColorDialog)
