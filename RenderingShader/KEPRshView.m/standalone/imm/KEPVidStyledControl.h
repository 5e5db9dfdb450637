// The parts that a style built for one control, and the bindings that keep them in step with the
// control's introspected properties, both ways.
//
// Refreshes: a part follows the properties its bindings read whenever the control's adapter
// announces one of them, and every bound part refreshes when the shader model announces a
// parameter change (two editors of one node stay in step). Writes: a person's change of a part
// with a two-way binding writes the property through the adapter's SetProperty; the refresh that
// follows (and any change a refresh makes by code) is not written back: a flag held during every
// refresh guards against that echo.
//
// Lifetime: the adapter's listener owns the styled control, so it dies with the control's adapter,
// that is with the control; the handlers on the parts and the model observer only hold weak
// references. Replacing the style (Unbuild) takes the parts out of the control.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "KEPISYPIntrospectable.h"
#include "KEPVidCtl.h"
#include "KEPVidStyleSheet.h"
#include "KEPVidStyledPart.h"

class KEPVidStyleValues;

class KEPVidStyledControl : public std::enable_shared_from_this<KEPVidStyledControl> {
 public:
  /// Builds the parts of `styleClass` under `control`, shows the properties, and starts
  /// following them. The result lives as long as the control (or until Unbuild).
  static std::shared_ptr<KEPVidStyledControl> Build(KEPVidCtl& control,
                                                    std::shared_ptr<const KEPVidStyleSheet> sheet,
                                                    const KEPVidStyleClass& styleClass);
  /// The styled control of `control`, or null.
  static std::shared_ptr<KEPVidStyledControl> Of(const KEPVidCtl& control);

  KEPVidStyledControl(KEPVidCtl& control, std::shared_ptr<const KEPVidStyleSheet> sheet);
  KEPVidStyledControl(const KEPVidStyledControl&) = delete;
  KEPVidStyledControl& operator=(const KEPVidStyledControl&) = delete;
  ~KEPVidStyledControl();

  /// Stops following, and removes the parts from the control.
  void Unbuild();
  /// Shows the properties in every bound part (all parts when `everything`).
  void RefreshAll(bool everything = false);
  /// Shows the properties in the parts that read property `name`.
  void RefreshProperty(std::string_view name);

  std::size_t GetPartCount() const { return parts_.size(); }

 private:
  void BuildParts(const std::vector<KEPVidStylePart>& definitions, KEPVidWidget* father);
  void Check(const KEPVidStylePart& definition);
  /// A person changed `part`: write its two-way binding.
  void PersonChanged(KEPVidStyledPart& part);
  HRESULT Write(const KEPVidStyleSetting& binding, const KEPSYPValue& value);
  void Refresh(KEPVidStyledPart& part, KEPVidStyleValues& values);
  void StopFollowing();

  KEPVidCtl* control_;
  std::shared_ptr<const KEPVidStyleSheet> sheet_;  ///< the parts' definitions live in it
  std::vector<std::unique_ptr<KEPVidStyledPart>> parts_;
  std::vector<KEPVidWidget*> topParts_;  ///< the parts whose father is the control
  int refreshing_ = 0;                   ///< the echo guard
  int listener_ = 0;                     ///< token on the control's adapter
  int observer_ = 0;                     ///< token of the model observer
  unsigned long long session_ = 0;       ///< host session the observer was added in
};
