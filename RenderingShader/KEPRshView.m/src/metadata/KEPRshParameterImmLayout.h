// Base of the immersive layout behaviours: the parameter context, the metadata readers and the
// widget choice. Per-type behaviours override the typed readers, the range-control readers and
// the default widget kind.
#pragma once

#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPRshParameterContext.h"
#include "KEPTrace.h"

class KEPRshParameterImmLayout : public KEPBaseUnknown, public KEPIRshParameterImmLayout {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterImmLayout();
  ~KEPRshParameterImmLayout() override;

  /// Moving from a state below 2 to 2 (deleted) releases the shader resources first.
  HRESULT ChangeComponentState(int from, int to, const void* context) override;

  // --- KEPIRshParameterImmLayout
  HRESULT GetDescription(KEPUnicodeString& description) override;
  HRESULT GetGroup(KEPUnicodeString& group) override;
  HRESULT GetDefault(KEPString& value) override;
  HRESULT GetTypedDefault(bool& value) override;
  HRESULT GetTypedDefault(int& value) override;
  HRESULT GetTypedDefault(float& value) override;
  HRESULT GetTypedDefault(float (&value)[4]) override;
  HRESULT GetRange(KEPString& min, KEPString& max, KEPString& step) override;
  HRESULT GetTypedRange(float& min, float& max, float& step) override;
  HRESULT GetTypedRange(int& min, int& max, int& step) override;
  HRESULT GetStep(double& step) override;
  HRESULT GetDecimalPrecision(int& precision) override;
  HRESULT GetSoftRange(double& min, double& max) override;
  HRESULT GetSecondaryParameterName(KEPString& name) override;
  HRESULT GetHardRange(double& min, double& max) override;
  HRESULT GetEnumLabel(int index, KEPUnicodeString& label) override;
  HRESULT GetEnumValue(int index, int& value) override;
  HRESULT GetEnumIndex(int value, int& index) override;
  HRESULT GetLabel(int index, KEPUnicodeString& label) override;
  HRESULT GetWidget(KEPString& kind) override;
  HRESULT GetUnit(KEPICkeUnit*& unit) override;
  HRESULT GetUnitName(KEPString& unit) override;
  HRESULT GetMagnitude(KEPICkeMagnitude*& magnitude) override;
  HRESULT GetMagnitudeName(KEPString& magnitude) override;
  HRESULT GetTooltip(KEPUnicodeString& text, KEPString& image) override;
  HRESULT GetSortingOrder(KEPString& order) override;
  HRESULT GetConnectableState(KEPString& state) override;
  HRESULT GetLayerGroupName(KEPString& name) override;
  HRESULT ConvertToModelUnit(float& value) override;
  HRESULT ChooseWidgetKind(KEPString& kind) override;
  HRESULT GetDefaultWidgetKind(KEPString& kind) override;
  HRESULT GetWidgetKinds(std::vector<KEPString>& kinds) override;

  // --- Context (resolved on first use)
  const KEPString& GetConfigurationId();
  const KEPString& GetParameterName();
  /// The trace channel "KEPRshParameterConfiguration".
  const KEPTrace* GetTrace() const { return &trace_; }

 protected:
  /// The resolved context of the extended parameter.
  const KEPRshParameterContext& Context();

  // Shared by the scalar and colour behaviours.
  /// Bounds from ".HardMin"/".Min" and ".HardMax"/".Max", step from the optional ".Step", each
  /// parsed "%le" and converted to model units. Without ".Step" `step` is left as it is.
  HRESULT ReadModelUnitRange(float& min, float& max, float& step);
  /// ".Step" parsed "%le" (resource "step" first when `useResources`).
  HRESULT ReadStep(bool useResources, double& step);
  /// Decimals for a step: 1, plus one per decimal digit.
  HRESULT ReadDecimalPrecision(int& precision);
  HRESULT ReadSoftRange(double& min, double& max);
  HRESULT ReadHardRange(double& min, double& max);
  HRESULT ReadSecondaryParameterName(KEPString& name);

  // Shared by the colour and vector behaviours.
  /// Up to four numbers separated by blanks or commas (brackets allowed around them) from the
  /// default text; at least two must be read. Components not given are left as they are.
  HRESULT ReadFourFloatDefault(float (&value)[4]);

  /// The default kind of the type; the base has none ("").
  virtual const char* DefaultWidgetKind() const { return ""; }
  /// The kind words of the type's immersive widgets.
  virtual std::vector<KEPString> WidgetKinds() const { return {}; }

 private:
  KEPTrace trace_;
  KEPRshParameterContext context_;
  double unitFactor_ = 0.0;
};
