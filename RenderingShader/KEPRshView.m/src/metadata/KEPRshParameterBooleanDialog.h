// Classic dialog behaviour of a boolean parameter: data extension of "KEPRmaBoolean".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterDialog.h"

class KEPRshParameterBooleanDialog : public KEPRshParameterDialog {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  using KEPRshParameterDialog::GetTypedDefault;
  /// "on"/"true" true, "off"/"false" false (any case), else a "%d" number (0 false); an unreadable
  /// text fails; no default at all reads true.
  HRESULT GetTypedDefault(bool& value) override;

 protected:
  KEPRshParameterBooleanDialog() = default;
  /// Traces "Destructor" and "Done" at module trace level 2.
  ~KEPRshParameterBooleanDialog() override;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
  /// A KEPRshParameterBooleanFrame.
  KEPDialog* CreateFrame(KEPIRshParameter* parameter, KEPDialog* parent, const KEPString& name,
                         int style) override;
};

KEP_DECLARE_TIE(KEPIRshParameterDialog, KEPRshParameterBooleanDialog)
