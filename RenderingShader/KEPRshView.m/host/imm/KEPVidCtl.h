// KEPVidCtl: the base of the toolkit's controls, and of the introspectable model controls that a
// style builds its parts for.
//
// A control is introspectable (KEPISYPIntrospectable): its typed properties are those its class
// registered with the introspection registry (KEPSYPRegistry), found by the control's class name
// and its bases'. SetCustomStyle asks the style engine to build the control's parts from a style
// sheet entry: child widgets bound two ways to the control's properties (a part shows a property
// and follows its announcements; a person's change of a part writes the property).
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include "KEPVidWidget.h"

class KEPSYPIntrospectableAdapter;

class KEPVidCtl : public KEPVidWidget {
  KEP_DECLARE_CLASS
 public:
  explicit KEPVidCtl(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());

  /// Builds the parts of style `styleName`, class `styleClass`, of the style sheet `sheet` (a file
  /// name in the resources directory, "KEPRshUI.sypstyle") as children of this control, replacing
  /// parts built before. A sheet, style or class that cannot be found is traced (channel
  /// "KEPVidStyle", with the file and line when the sheet is malformed) and builds nothing.
  HRESULT SetCustomStyle(const KEPString& sheet, const KEPString& styleName,
                         const KEPUnicodeString& styleClass);
  /// The style arguments last given (empty before any).
  const KEPString& GetStyleSheet() const { return styleSheet_; }
  const KEPString& GetStyleName() const { return styleName_; }
  const KEPUnicodeString& GetStyleClass() const { return styleClass_; }

  /// The control's introspection adapter (borrowed), created on first request: the one registered
  /// for its class, else the toolkit's own.
  KEPSYPIntrospectableAdapter* GetIntrospectionAdapter();

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEPVidCtl() override;
  void* QueryOwnInterface(const KEPIID& iid) override;

 private:
  KEPString styleSheet_;
  KEPString styleName_;
  KEPUnicodeString styleClass_;
  KEPSYPIntrospectableAdapter* adapter_ = nullptr;  ///< created on first query, owned
};

#pragma GCC visibility pop
