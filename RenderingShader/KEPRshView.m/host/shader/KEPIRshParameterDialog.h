// The classic dialog behaviour of a shader parameter: the metadata a classic frame needs.
//
// Same readers and sources as KEPIRshParameterImmLayout, with these differences: the range never
// falls back to ".HardMin"/".HardMax"; there is no magnitude, tooltip or unit-factor reader; and
// the enumeration value and index readers belong to the integer type only (the others answer
// E_NOTIMPL). Outputs are left untouched on failure.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPIUnknown.h"
#include "KEPString.h"
#include "KEPTypes.h"

class KEPDialog;
class KEPICkeUnit;

class KEPIRshParameterDialog : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshParameterDialog)

  // --- Texts
  /// ".Description".
  virtual HRESULT GetDescription(KEPUnicodeString& description) = 0;
  /// ".Group".
  virtual HRESULT GetGroup(KEPUnicodeString& group) = 0;
  /// Resource "default", else ".Default".
  virtual HRESULT GetDefault(KEPString& value) = 0;

  // --- Typed default (boolean: bool; integer: int; scalar: float; vector: four floats); the
  // base and the other types answer E_FAIL.
  virtual HRESULT GetTypedDefault(bool& value) = 0;
  virtual HRESULT GetTypedDefault(int& value) = 0;
  virtual HRESULT GetTypedDefault(float& value) = 0;
  virtual HRESULT GetTypedDefault(float (&value)[4]) = 0;

  /// Resource "min"/"max"/"step", else ".Min", ".Max" and the optional ".Step", as texts.
  virtual HRESULT GetRange(KEPString& min, KEPString& max, KEPString& step) = 0;
  /// GetRange's texts parsed ("%le" / "%d"): min and max must parse, else E_FAIL with the outputs
  /// untouched; an unreadable step leaves `step` as the caller set it. No unit conversion.
  virtual HRESULT GetTypedRange(float& min, float& max, float& step) = 0;
  virtual HRESULT GetTypedRange(int& min, int& max, int& step) = 0;

  // --- Enumeration and labels
  /// Resource "enum" + index, else ".Enum" + index.
  virtual HRESULT GetEnumLabel(int index, KEPUnicodeString& label) = 0;
  /// Integer type only (others E_NOTIMPL): as KEPIRshParameterImmLayout::GetEnumValue.
  virtual HRESULT GetEnumValue(int index, int& value) = 0;
  /// Integer type only (others E_NOTIMPL): as KEPIRshParameterImmLayout::GetEnumIndex.
  virtual HRESULT GetEnumIndex(int value, int& index) = 0;
  /// Resource "label" + index, else ".Label" + index.
  virtual HRESULT GetLabel(int index, KEPUnicodeString& label) = 0;

  // --- Widget, unit and the rest
  /// Resource "widget", else ".Widget".
  virtual HRESULT GetWidget(KEPString& kind) = 0;
  /// ".Unit" looked up in the unit dictionary (as written, then in upper case), with a
  /// reference for the caller.
  virtual HRESULT GetUnit(KEPICkeUnit*& unit) = 0;
  /// ".Unit".
  virtual HRESULT GetUnitName(KEPString& unit) = 0;
  /// ".SortingOrder".
  virtual HRESULT GetSortingOrder(KEPString& order) = 0;
  /// ".ConnectableState", else "Yes"/"No" from the shader manager.
  virtual HRESULT GetConnectableState(KEPString& state) = 0;
  /// ".LayerGroupName".
  virtual HRESULT GetLayerGroupName(KEPString& name) = 0;

  // --- Widget choice
  /// GetWidget's answer, else the type's default kind. Always S_OK. No trace: the classic
  /// frames report through the module trace themselves.
  virtual HRESULT ChooseWidgetKind(KEPString& kind) = 0;
  /// The kind a classic frame builds when none is configured.
  virtual HRESULT GetDefaultWidgetKind(KEPString& kind) = 0;
  /// The kind words this type's classic frame tells apart (empty for types without a choice).
  virtual HRESULT GetWidgetKinds(std::vector<KEPString>& kinds) = 0;

  // --- Frame
  /// Builds the classic frame of the parameter, named `name`, under `parent` (which owns it) and
  /// puts it (borrowed) into `*frame`. E_FAIL (0x80004005) without a parent or an out pointer, or
  /// when the extended feature is no KEPIRshParameter; E_NOTIMPL for a type that builds no frame
  /// (a connection-only parameter: its row is the editor's connection control). `*frame` is left
  /// untouched on failure.
  virtual HRESULT BuildFrame(KEPDialog* parent, const KEPString& name, KEPDialog** frame) = 0;
};

#pragma GCC visibility pop
