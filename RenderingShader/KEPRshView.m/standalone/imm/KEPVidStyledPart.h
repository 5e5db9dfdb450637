// One part of a styled control: the toolkit widget built for a part of a style sheet class, its
// look, and what its bindings make it show.
//
// The part holds a reference of its own to its widget, so the widget stays valid for as long as
// the part exists, even if someone removes it from the tree.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "KEPSYPValue.h"
#include "KEPVidStyleSheet.h"
#include "KEPVidWidget.h"
#include "KEP_var.h"

class KEPVidCtlImageCombo;
class KEPVidStyleValues;

class KEPVidStyledPart {
 public:
  /// Builds the widget of `definition` under `father`, with its literal look.
  KEPVidStyledPart(const KEPVidStylePart& definition, KEPVidWidget* father);
  KEPVidStyledPart(const KEPVidStyledPart&) = delete;
  KEPVidStyledPart& operator=(const KEPVidStyledPart&) = delete;
  ~KEPVidStyledPart();

  const KEPVidStylePart& Definition() const { return definition_; }
  KEPVidWidget* Widget() const { return widget_.Get(); }
  /// True when a binding of the part reads property `name`.
  bool DependsOn(std::string_view name) const;
  bool HasBindings() const { return !dependencies_.empty(); }
  /// The two-way binding of the part, or null.
  const KEPVidStyleSetting* TwoWay() const { return twoWay_; }
  /// The notification a person's change of the part raises (with a two-way binding).
  KEPVidEvent ChangeEvent() const;

  /// Shows what the bindings read now (a refresh raises the widget's notifications as any
  /// change by code does: the caller guards against their echo).
  void Refresh(KEPVidStyleValues& values);
  /// The value a person gave the part, as the two-way binding writes it; empty when the part
  /// refuses it (an editor's number outside its range).
  std::optional<KEPSYPValue> PersonValue() const;

  /// Remembers the handler token, so that the part can remove it.
  void SetHandler(int token) { handler_ = token; }
  void RemoveHandler();

 private:
  void ApplyLook();
  /// The value of `target` now: its binding's reading, else its literal, else empty.
  KEPSYPValue Get(KEPVidStyleTarget target, KEPVidStyleValues& values) const;
  double Scale() const;
  /// Fills a combo with the entries of `items` (traced when some are left out).
  void ShowItems(KEPVidCtlImageCombo& combo, std::string items, KEPVidStyleValues& values);

  const KEPVidStylePart& definition_;
  KEP_var<KEPVidWidget> widget_;
  std::vector<std::string> dependencies_;  ///< the properties the bindings start from
  const KEPVidStyleSetting* twoWay_ = nullptr;
  int handler_ = 0;
  // State that the widgets do not keep themselves.
  int decimals_ = -1;  ///< slider scale, editor decimals; -1 for none
  double minimum_;     ///< editor: the numbers it takes
  double maximum_;
  std::string items_;  ///< combo: the entries shown
  bool itemsRead_ = false;
  std::vector<int> comboValues_;  ///< combo: the value each entry shown carries
};
