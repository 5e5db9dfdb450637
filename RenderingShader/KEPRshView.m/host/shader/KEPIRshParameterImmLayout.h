// The immersive layout behaviour of a shader parameter: the metadata an immersive editor needs to
// lay the parameter out, and the choice of its widget kind.
//
// The host asks a parameter feature (late type "KEPRmaScalar", ...) for this interface; the
// behaviour registered for the feature type answers. Every operation returns a result code and
// leaves its outputs untouched on failure (the connectable-state fallback excepted). Readers with
// a resource form ask the owning shader's KEPIRshShaderResources when the shader offers it, and
// the configuration store otherwise.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPIUnknown.h"
#include "KEPString.h"
#include "KEPTypes.h"

class KEPICkeUnit;
class KEPICkeMagnitude;
class KEPVidWidget;

class KEPIRshParameterImmLayout : public virtual KEPIUnknown {
  KEP_DECLARE_INTERFACE(KEPIRshParameterImmLayout)

  // --- Texts
  /// ".Description".
  virtual HRESULT GetDescription(KEPUnicodeString& description) = 0;
  /// ".Group": the group key ("Group0", "Group1", ...).
  virtual HRESULT GetGroup(KEPUnicodeString& group) = 0;
  /// Resource "default", else ".Default", as text.
  virtual HRESULT GetDefault(KEPString& value) = 0;

  // --- Typed default: the default text converted to the type's stored form. The base and the
  // types without such a form answer E_FAIL. Boolean answers bool, integer int, scalar float,
  // colour and vector four floats (red, green, blue, alpha / x, y, z, w; components that the text
  // does not give are left as the caller set them).
  virtual HRESULT GetTypedDefault(bool& value) = 0;
  virtual HRESULT GetTypedDefault(int& value) = 0;
  virtual HRESULT GetTypedDefault(float& value) = 0;
  virtual HRESULT GetTypedDefault(float (&value)[4]) = 0;

  /// Resource "min"/"max"/"step", else ".Min" (or ".HardMin"), ".Max" (or ".HardMax") and the
  /// optional ".Step", as texts. Fails when min or max is missing.
  virtual HRESULT GetRange(KEPString& min, KEPString& max, KEPString& step) = 0;

  // --- Typed range: min, max and (when configured) step in the type's stored form; a missing
  // step leaves `step` as the caller preset it. The base answers E_FAIL. Scalar and colour answer
  // the float form from ".HardMin"/".Min", ".HardMax"/".Max" and ".Step" ("%le"), multiplied by
  // ConvertToModelUnit; integer answers the int form from GetRange's texts ("%d").
  virtual HRESULT GetTypedRange(float& min, float& max, float& step) = 0;
  virtual HRESULT GetTypedRange(int& min, int& max, int& step) = 0;

  // --- Range controls: only scalar and colour implement these; the others answer E_NOTIMPL.
  /// ".Step" parsed "%le". Colour: resource "step" instead when the shader offers resources (a
  /// missing resource fails; ".Step" is then not consulted).
  virtual HRESULT GetStep(double& step) = 0;
  /// Decimals to show, from ".Step": 1, plus one per decimal digit of the step (1 -> 1,
  /// 0.5 -> 2, 0.25 -> 3, 1e-10 -> 11). Fails when ".Step" is missing or unreadable.
  virtual HRESULT GetDecimalPrecision(int& precision) = 0;
  /// ".SoftMin" (else ".Min") and ".SoftMax" (else ".Max"), parsed as doubles.
  virtual HRESULT GetSoftRange(double& min, double& max) = 0;
  /// ".SecondaryParameter": the name of the sibling parameter a ratio control edits too.
  virtual HRESULT GetSecondaryParameterName(KEPString& name) = 0;
  /// ".HardMin" (else ".Min") and ".HardMax" (else ".Max"), parsed as doubles.
  virtual HRESULT GetHardRange(double& min, double& max) = 0;

  // --- Enumeration and labels
  /// Resource "enum" + index, else ".Enum" + index.
  virtual HRESULT GetEnumLabel(int index, KEPUnicodeString& label) = 0;
  /// Resource "enumvalue" + index, else ".EnumVal" + index, else ".Enum" + index read as "%d".
  virtual HRESULT GetEnumValue(int index, int& value) = 0;
  /// Resource "enumindex" + value, else the first index in [min, max] whose value is `value`.
  virtual HRESULT GetEnumIndex(int value, int& index) = 0;
  /// Resource "label" + index, else ".Label" + index.
  virtual HRESULT GetLabel(int index, KEPUnicodeString& label) = 0;

  // --- Widget, units and the rest
  /// Resource "widget", else ".Widget": the configured widget kind, as written.
  virtual HRESULT GetWidget(KEPString& kind) = 0;
  /// ".Unit" looked up in the unit dictionary (as written, then in upper case); the unit with a
  /// reference for the caller.
  virtual HRESULT GetUnit(KEPICkeUnit*& unit) = 0;
  /// ".Unit".
  virtual HRESULT GetUnitName(KEPString& unit) = 0;
  /// ".Magnitude" looked up in the magnitude dictionary (as written, then in upper case).
  virtual HRESULT GetMagnitude(KEPICkeMagnitude*& magnitude) = 0;
  /// ".Magnitude".
  virtual HRESULT GetMagnitudeName(KEPString& magnitude) = 0;
  /// ".TooltipText" (empty when missing) and ".TooltipImage"; the result is that of the image
  /// read.
  virtual HRESULT GetTooltip(KEPUnicodeString& text, KEPString& image) = 0;
  /// ".SortingOrder" as text (an unsigned number).
  virtual HRESULT GetSortingOrder(KEPString& order) = 0;
  /// ".ConnectableState", else "Yes"/"No" from the shader manager's connectable shaders (the
  /// text is always written by the fallback; its result is the manager's, E_FAIL without one).
  virtual HRESULT GetConnectableState(KEPString& state) = 0;
  /// ".LayerGroupName".
  virtual HRESULT GetLayerGroupName(KEPString& name) = 0;
  /// Multiplies `value` by the factor of ".Unit" (mm 1, cm 10, m 1000, km 1000000, deg pi/180,
  /// anything else 1). Always S_OK.
  virtual HRESULT ConvertToModelUnit(float& value) = 0;

  // --- Widget choice
  /// The widget kind to build: GetWidget's answer (info trace "Parameter %s's widget is %s
  /// { type = %s }"), else the type's default kind (warning trace "Parameter %s's widget
  /// defaulted to %s { type = %s }"), on the "KEPRshParameterConfiguration" channel. S_OK.
  virtual HRESULT ChooseWidgetKind(KEPString& kind) = 0;
  /// The kind used when none is configured ("no-value" for scalars, "color" for colours, ...).
  virtual HRESULT GetDefaultWidgetKind(KEPString& kind) = 0;
  /// The kind words this type's immersive widgets tell apart (empty for types without a choice).
  virtual HRESULT GetWidgetKinds(std::vector<KEPString>& kinds) = 0;

  // --- Building
  /// Builds the control that edits the parameter, named `name`, under `parent` (which owns it);
  /// `widget` receives it (borrowed), or null when nothing was built. E_FAIL without a parent or
  /// when no control could be made, E_NOINTERFACE when the behaviour lacks its parameter, E_NOTIMPL
  /// for a type without an immersive widget.
  virtual HRESULT BuildWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget) = 0;
};

#pragma GCC visibility pop
