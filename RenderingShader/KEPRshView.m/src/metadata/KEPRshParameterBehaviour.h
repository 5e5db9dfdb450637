// What the classic and the immersive parameter behaviours have in common: the lazily resolved
// parameter context, its release when the behaviour goes, the metadata readers that both
// behaviour interfaces declare alike, and one parser per typed default.
//
// `Interface` is KEPIRshParameterDialog or KEPIRshParameterImmLayout; both instantiations are
// compiled once, in KEPRshParameterBehaviour.cpp. The readers whose sources differ between the
// two (range, typed range, enumeration value and index, widget choice) stay with each base.
#pragma once

#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPIRshParameterDialog.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPRshParameterContext.h"

template <class Interface>
class KEPRshParameterBehaviour : public KEPBaseUnknown, public Interface {
 public:
  ~KEPRshParameterBehaviour() override;

  /// Moving from a state below 2 to 2 (deleted) releases the shader resources first.
  HRESULT ChangeComponentState(int from, int to, const void* context) override;

  // --- Readers alike in both interfaces
  HRESULT GetDescription(KEPUnicodeString& description) override;
  HRESULT GetGroup(KEPUnicodeString& group) override;
  HRESULT GetDefault(KEPString& value) override;
  /// The base form of every typed default is a failure; each type overrides its own form with
  /// the matching Read*Default below.
  HRESULT GetTypedDefault(bool& value) override;
  HRESULT GetTypedDefault(int& value) override;
  HRESULT GetTypedDefault(float& value) override;
  HRESULT GetTypedDefault(float (&value)[4]) override;
  HRESULT GetEnumLabel(int index, KEPUnicodeString& label) override;
  HRESULT GetLabel(int index, KEPUnicodeString& label) override;
  HRESULT GetWidget(KEPString& kind) override;
  HRESULT GetUnit(KEPICkeUnit*& unit) override;
  HRESULT GetUnitName(KEPString& unit) override;
  HRESULT GetSortingOrder(KEPString& order) override;
  HRESULT GetConnectableState(KEPString& state) override;
  HRESULT GetLayerGroupName(KEPString& name) override;
  HRESULT GetDefaultWidgetKind(KEPString& kind) override;
  HRESULT GetWidgetKinds(std::vector<KEPString>& kinds) override;

  // --- Context (resolved on first use)
  const KEPString& GetConfigurationId();
  const KEPString& GetParameterName();

 protected:
  KEPRshParameterBehaviour() = default;

  /// The resolved context of the extended parameter.
  const KEPRshParameterContext& Context();

  // --- Typed defaults, one parser per stored form. All fail with `value` untouched when the
  // text does not convert.
  /// "on"/"true" true, "off"/"false" false (any case), else a "%d" number (0 false); no default
  /// configured at all reads true.
  HRESULT ReadBooleanDefault(bool& value);
  /// The default text parsed "%d".
  HRESULT ReadIntegerDefault(int& value);
  /// The default text parsed "%le", in the parameter's own unit.
  HRESULT ReadScalarDefault(float& value);
  /// Two to four numbers separated by blanks or commas (brackets allowed around them);
  /// components not given are left as they are.
  HRESULT ReadFourFloatDefault(float (&value)[4]);

  /// GetRange's texts parsed "%d": min and max must parse; an unreadable step keeps `step`.
  HRESULT ReadIntegerRange(int& min, int& max, int& step);

  /// The default kind of the type; the base has none ("").
  virtual const char* DefaultWidgetKind() const { return ""; }
  /// The kind words that the type's widgets tell apart.
  virtual std::vector<KEPString> WidgetKinds() const { return {}; }

 private:
  KEPRshParameterContext context_;
};

extern template class KEPRshParameterBehaviour<KEPIRshParameterDialog>;
extern template class KEPRshParameterBehaviour<KEPIRshParameterImmLayout>;
