// Classic dialog behaviour of an integer parameter: data extension of "KEPRmaInteger".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterDialog.h"

class KEPRshParameterIntegerDialog : public KEPRshParameterDialog {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  using KEPRshParameterDialog::GetTypedDefault;
  /// The default text parsed "%d".
  HRESULT GetTypedDefault(int& value) override;
  HRESULT GetEnumValue(int index, int& value) override;
  HRESULT GetEnumIndex(int value, int& index) override;

 protected:
  KEPRshParameterIntegerDialog() = default;
  /// Traces "Destructor" and "Done" at module trace level 2.
  ~KEPRshParameterIntegerDialog() override;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
  /// A KEPRshParameterIntegerFrame.
  KEPDialog* CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent, const KEPString& name,
                         int style) override;
};

KEP_DECLARE_TIE(KEPIRshParameterDialog, KEPRshParameterIntegerDialog)
