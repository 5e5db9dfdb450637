// Immersive layout behaviour of a scalar parameter: data extension of "KEPRmaScalar".
#pragma once

#include "KEPExtensionRegistry.h"
#include "KEPRshParameterImmLayout.h"

class KEPRshParameterScalarImmLayout : public KEPRshParameterImmLayout {
  KEP_DECLARE_CLASS
 public:
  /// A new, detached instance with one reference (the extension registry's creator).
  static KEPBaseUnknown* CreateItself();

  using KEPRshParameterImmLayout::GetTypedDefault;
  using KEPRshParameterImmLayout::GetTypedRange;
  /// The default text parsed "%le", in the parameter's unit.
  HRESULT GetTypedDefault(float& value) override;
  /// ".HardMin"/".Min", ".HardMax"/".Max" and the optional ".Step", parsed "%le", in model units.
  HRESULT GetTypedRange(float& min, float& max, float& step) override;
  HRESULT GetStep(double& step) override;
  HRESULT GetDecimalPrecision(int& precision) override;
  HRESULT GetSoftRange(double& min, double& max) override;
  HRESULT GetSecondaryParameterName(KEPString& name) override;
  HRESULT GetHardRange(double& min, double& max) override;
  /// Builds the control of the configured kind: "ratio" the ratio control over this parameter and
  /// the sibling named by ".SecondaryParameter", "dynamic-slider" the soft and hard range control
  /// (both styled from "KEPRshUI.sypstyle"), any other kind the scalar widget. Traces the kind and
  /// the outcome on the layout's trace channel.
  HRESULT BuildWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget) override;

 protected:
  KEPRshParameterScalarImmLayout() = default;
  ~KEPRshParameterScalarImmLayout() override = default;
  const char* DefaultWidgetKind() const override;
  std::vector<KEPString> WidgetKinds() const override;
};

KEP_DECLARE_TIE(KEPIRshParameterImmLayout, KEPRshParameterScalarImmLayout)
