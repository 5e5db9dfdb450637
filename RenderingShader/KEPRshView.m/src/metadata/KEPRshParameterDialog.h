// Base of the classic dialog behaviours: the parameter context and the metadata readers of the
// classic frames. Per-type behaviours add the typed default, the enumeration readers (integer)
// and the default widget kind; frame building belongs to the classic frames.
#pragma once

#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPIRshParameterDialog.h"
#include "KEPRshParameterContext.h"

class KEPRshParameterDialog : public KEPBaseUnknown, public KEPIRshParameterDialog {
  KEP_DECLARE_CLASS
 public:
  KEPRshParameterDialog() = default;
  ~KEPRshParameterDialog() override;

  /// Moving from a state below 2 to 2 (deleted) releases the shader resources first.
  HRESULT ChangeComponentState(int from, int to, const void* context) override;

  // --- KEPIRshParameterDialog
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
  HRESULT GetEnumLabel(int index, KEPUnicodeString& label) override;
  HRESULT GetEnumValue(int index, int& value) override;
  HRESULT GetEnumIndex(int value, int& index) override;
  HRESULT GetLabel(int index, KEPUnicodeString& label) override;
  HRESULT GetWidget(KEPString& kind) override;
  HRESULT GetUnit(KEPICkeUnit*& unit) override;
  HRESULT GetUnitName(KEPString& unit) override;
  HRESULT GetSortingOrder(KEPString& order) override;
  HRESULT GetConnectableState(KEPString& state) override;
  HRESULT GetLayerGroupName(KEPString& name) override;
  HRESULT ChooseWidgetKind(KEPString& kind) override;
  HRESULT GetDefaultWidgetKind(KEPString& kind) override;
  HRESULT GetWidgetKinds(std::vector<KEPString>& kinds) override;

  // --- Context (resolved on first use)
  const KEPString& GetConfigurationId();
  const KEPString& GetParameterName();

 protected:
  const KEPRshParameterContext& Context();
  /// The default kind of the type; the base has none ("").
  virtual const char* DefaultWidgetKind() const { return ""; }
  /// The kind words of the type's classic frame.
  virtual std::vector<KEPString> WidgetKinds() const { return {}; }

 private:
  KEPRshParameterContext context_;
};
