#include "KEPVidStyledPart.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "KEPTrace.h"
#include "KEPVidCtlCheckBox.h"
#include "KEPVidCtlDoubleSpinBox.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlImageCombo.h"
#include "KEPVidCtlLabel.h"
#include "KEPVidCtlSlider.h"
#include "KEPVidCtlSpinBox.h"
#include "KEPVidLayGrid.h"
#include "KEPVidStyleValues.h"

namespace {

using Target = KEPVidStyleTarget;

/// A slider's positions are its values times 10^decimals; beyond 9 decimals an int overflows
/// for any value above 2.
constexpr int kMaxSliderDecimals = 9;
/// "%.*f" beyond this shows digits a double does not have.
constexpr int kMaxEditorDecimals = 15;

KEPVidWidget* Create(KEPVidPartKind kind, KEPVidWidget* father, const KEPString& name) {
  switch (kind) {
    case KEPVidPartKind::Grid:
      return new KEPVidLayGrid(father, name);
    case KEPVidPartKind::Label:
      return new KEPVidCtlLabel(father, name);
    case KEPVidPartKind::Slider:
      return new KEPVidCtlSlider(father, name);
    case KEPVidPartKind::Editor:
      return new KEPVidCtlEditor(father, name);
    case KEPVidPartKind::SpinBox:
      return new KEPVidCtlSpinBox(father, name);
    case KEPVidPartKind::DoubleSpinBox:
      return new KEPVidCtlDoubleSpinBox(father, name);
    case KEPVidPartKind::Combo:
      return new KEPVidCtlImageCombo(father, name);
    case KEPVidPartKind::CheckBox:
      return new KEPVidCtlCheckBox(father, name);
  }
  return new KEPVidWidget(father, name);
}

int Number(const KEPVidStyleSetting& setting, std::size_t index = 0) {
  return static_cast<int>(setting.numbers[index]);
}

KEPUnicodeString Unicode(const std::string& utf8) {
  return KEPUnicodeString::FromUTF8(utf8);
}

const KEPTrace& ItemsTrace() {
  static const KEPTrace trace("KEPVidStyle");
  return trace;
}

}  // namespace

KEPVidStyledPart::KEPVidStyledPart(const KEPVidStylePart& definition, KEPVidWidget* father)
    : definition_(definition),
      minimum_(-std::numeric_limits<double>::infinity()),
      maximum_(std::numeric_limits<double>::infinity()) {
  // The father holds the creation reference; the part holds one of its own.
  widget_ = KEP_var<KEPVidWidget>(Create(definition.kind, father, definition.name));
  if (!father) widget_->Release();  // a free widget: the part's reference is the creation one
  for (const KEPVidStyleSetting& setting : definition.settings) {
    if (setting.mode == KEPVidStyleMode::Literal) continue;
    if (std::find(dependencies_.begin(), dependencies_.end(), setting.path.front()) ==
        dependencies_.end())
      dependencies_.push_back(setting.path.front());
    if (setting.mode == KEPVidStyleMode::TwoWay) twoWay_ = &setting;
  }
  ApplyLook();
}

KEPVidStyledPart::~KEPVidStyledPart() {
  RemoveHandler();
}

void KEPVidStyledPart::RemoveHandler() {
  if (handler_ != 0) widget_->RemoveHandler(handler_);
  handler_ = 0;
}

bool KEPVidStyledPart::DependsOn(std::string_view name) const {
  return std::find(dependencies_.begin(), dependencies_.end(), name) != dependencies_.end();
}

KEPVidEvent KEPVidStyledPart::ChangeEvent() const {
  switch (definition_.kind) {
    case KEPVidPartKind::Editor:
      return KEPVidEvent::EditModify;
    case KEPVidPartKind::CheckBox:
      return KEPVidEvent::Toggled;
    case KEPVidPartKind::Combo:
      return KEPVidEvent::Selected;
    default:
      return KEPVidEvent::ValueChanged;
  }
}

void KEPVidStyledPart::ApplyLook() {
  KEPVidWidget& widget = *widget_;
  KEPVidGridCell cell = widget.GetGridCell();
  for (const KEPVidStyleSetting& s : definition_.settings) {
    if (s.mode != KEPVidStyleMode::Literal) continue;
    switch (s.target) {
      case Target::Cell:
        cell.row = Number(s, 0);
        cell.column = Number(s, 1);
        cell.rowSpan = Number(s, 2);
        cell.columnSpan = Number(s, 3);
        break;
      case Target::Attach:
        cell.attach = Number(s);
        break;
      case Target::MinimumSize:
        widget.SetMinimumSize(Number(s, 0), Number(s, 1));
        break;
      case Target::Background:
        widget.SetBackgroundColor({Number(s, 0), Number(s, 1), Number(s, 2), Number(s, 3)});
        break;
      case Target::Tooltip:
        widget.SetTooltip(Unicode(s.text));
        break;
      case Target::TooltipDelay:
        widget.SetTooltipInitialDelay(s.numbers[0]);
        break;
      case Target::Visible:
        widget.SetVisibility(s.numbers[0] != 0);
        break;
      case Target::Sensitive:
        widget.SetSensitivity(s.numbers[0] != 0);
        break;
      case Target::LayoutWhenInvisible:
        widget.SetLayoutWhenInvisible(s.numbers[0] != 0);
        break;
      case Target::ColumnWeights:
      case Target::RowWeights: {
        auto& grid = static_cast<KEPVidLayGrid&>(widget);
        for (std::size_t i = 0; i < s.numbers.size(); ++i) {
          if (s.target == Target::ColumnWeights)
            grid.SetColumnWeight(static_cast<int>(i), s.numbers[i]);
          else
            grid.SetRowWeight(static_cast<int>(i), s.numbers[i]);
        }
        break;
      }
      case Target::Spacing:
        static_cast<KEPVidLayGrid&>(widget).SetCellSpacing(Number(s, 0), Number(s, 1));
        break;
      case Target::Width:
        static_cast<KEPVidCtlEditor&>(widget).SetCharacterWidth(Number(s));
        break;
      case Target::TextLength:
      case Target::Correction:
        if (definition_.kind == KEPVidPartKind::SpinBox) {
          auto& spin = static_cast<KEPVidCtlSpinBox&>(widget);
          if (s.target == Target::TextLength)
            spin.SetMaximumTextLength(Number(s));
          else
            spin.SetCorrectionMode(Number(s));
        } else {
          auto& spin = static_cast<KEPVidCtlDoubleSpinBox&>(widget);
          if (s.target == Target::TextLength)
            spin.SetMaximumTextLength(Number(s));
          else
            spin.SetCorrectionMode(Number(s));
        }
        break;
      case Target::TickInterval:
        static_cast<KEPVidCtlSlider&>(widget).SetTickInterval(Number(s));
        break;
      case Target::SingleStep:
        static_cast<KEPVidCtlSlider&>(widget).SetSingleStep(Number(s));
        break;
      case Target::PageStep:
        static_cast<KEPVidCtlSlider&>(widget).SetPageStep(Number(s));
        break;
      case Target::TickPosition:
        static_cast<KEPVidCtlSlider&>(widget).SetTickPosition(Number(s));
        break;
      case Target::BarSize:
        static_cast<KEPVidCtlSlider&>(widget).SetBarSize(s.numbers[0]);
        break;
      case Target::SquareRatio:
        static_cast<KEPVidCtlSlider&>(widget).SetBackgroundSquareHeightRatio(s.numbers[0]);
        break;
      case Target::Magnifier:
        static_cast<KEPVidCtlSlider&>(widget).SetMagnifier(s.numbers[0] != 0);
        break;
      default:
        break;  // values and ranges: Refresh
    }
  }
  widget.SetGridCell(cell);
  if (definition_.kind == KEPVidPartKind::Editor)
    static_cast<KEPVidCtlEditor&>(widget).SetDataType(
        definition_.Find(Target::Text) ? KEPVidEditor_Text : KEPVidEditor_Double);
}

KEPSYPValue KEPVidStyledPart::Get(KEPVidStyleTarget target, KEPVidStyleValues& values) const {
  const KEPVidStyleSetting* s = definition_.Find(target);
  if (!s) return std::monostate{};
  if (s->mode != KEPVidStyleMode::Literal) return values.Read(s->path);
  switch (KEPVidStyleSheet::Info(target).type) {
    case KEPVidStyleValueType::Text:
      return KEPString(s->text);
    case KEPVidStyleValueType::Bool:
      return s->numbers[0] != 0;
    default:
      return s->numbers.empty() ? KEPSYPValue() : KEPSYPValue(s->numbers[0]);
  }
}

double KEPVidStyledPart::Scale() const {
  return decimals_ > 0 ? std::pow(10.0, decimals_) : 1.0;
}

void KEPVidStyledPart::Refresh(KEPVidStyleValues& values) {
  KEPVidWidget& widget = *widget_;
  // Common targets that follow a property (their literals are set once, when built: a refresh
  // must not undo what code did to the part since, such as making it insensitive).
  for (const KEPVidStyleSetting& s : definition_.settings) {
    if (s.mode == KEPVidStyleMode::Literal) continue;
    if (s.target == Target::Tooltip) {
      widget.SetTooltip(Unicode(KEPVidStyleValues::ToText(values.Read(s.path))));
    } else if (s.target == Target::Visible || s.target == Target::Sensitive) {
      if (auto on = KEPVidStyleValues::ToBool(values.Read(s.path))) {
        if (s.target == Target::Visible)
          widget.SetVisibility(*on);
        else
          widget.SetSensitivity(*on);
      }
    }
  }
  auto number = [&](Target target) { return KEPVidStyleValues::ToDouble(Get(target, values)); };
  auto text = [&](Target target) {
    return Unicode(KEPVidStyleValues::ToText(Get(target, values)));
  };
  auto has = [&](Target target) { return definition_.Find(target) != nullptr; };
  auto integer = [](std::optional<double> n) {
    return n ? KEPVidStyleValues::ToInt(*n) : std::nullopt;
  };
  if (auto d = integer(number(Target::Decimals))) decimals_ = std::max(0, *d);

  switch (definition_.kind) {
    case KEPVidPartKind::Grid:
      break;
    case KEPVidPartKind::Label:
      if (has(Target::Text)) static_cast<KEPVidCtlLabel&>(widget).SetText(text(Target::Text));
      break;
    case KEPVidPartKind::Slider: {
      auto& slider = static_cast<KEPVidCtlSlider&>(widget);
      decimals_ = std::min(decimals_, kMaxSliderDecimals);
      const double scale = Scale();
      auto position = [&](std::optional<double> v) {
        return v && std::isfinite(*v) ? KEPVidStyleValues::ToInt(*v * scale) : std::nullopt;
      };
      const auto low = position(number(Target::Minimum));
      const auto high = position(number(Target::Maximum));
      if (low || high)
        slider.SetRange(low.value_or(slider.GetMinimum()), high.value_or(slider.GetMaximum()));
      if (const auto value = position(number(Target::Value))) slider.SetValue(*value);
      break;
    }
    case KEPVidPartKind::Editor: {
      auto& editor = static_cast<KEPVidCtlEditor&>(widget);
      const auto low = number(Target::Minimum);
      const auto high = number(Target::Maximum);
      minimum_ = low && !std::isnan(*low) ? *low : -std::numeric_limits<double>::infinity();
      maximum_ = high && !std::isnan(*high) ? *high : std::numeric_limits<double>::infinity();
      if (has(Target::Text)) {
        editor.SetText(text(Target::Text));
      } else if (const auto value = number(Target::Value)) {
        if (decimals_ < 0 || !std::isfinite(*value))
          editor.SetValue(*value);
        else
          editor.SetText(
              Unicode(KEPFormat("%.*f", std::min(decimals_, kMaxEditorDecimals), *value)));
      }
      break;
    }
    case KEPVidPartKind::SpinBox: {
      auto& spin = static_cast<KEPVidCtlSpinBox&>(widget);
      const auto low = integer(number(Target::Minimum));
      const auto high = integer(number(Target::Maximum));
      if (low || high)
        spin.SetRange(low.value_or(spin.GetMinimum()), high.value_or(spin.GetMaximum()));
      if (const auto step = integer(number(Target::Step))) spin.SetSingleStep(*step);
      if (has(Target::Suffix)) spin.SetSuffix(text(Target::Suffix));
      if (const auto value = integer(number(Target::Value))) spin.SetValue(*value);
      break;
    }
    case KEPVidPartKind::DoubleSpinBox: {
      auto& spin = static_cast<KEPVidCtlDoubleSpinBox&>(widget);
      if (decimals_ >= 0) spin.SetDecimals(std::min(decimals_, kMaxEditorDecimals));
      const auto low = number(Target::Minimum);
      const auto high = number(Target::Maximum);
      if (low || high)
        spin.SetRange(low.value_or(spin.GetMinimum()), high.value_or(spin.GetMaximum()));
      if (const auto step = number(Target::Step)) spin.SetSingleStep(*step);
      if (has(Target::Suffix)) spin.SetSuffix(text(Target::Suffix));
      if (const auto value = number(Target::Value)) spin.SetValue(*value);
      break;
    }
    case KEPVidPartKind::CheckBox: {
      auto& check = static_cast<KEPVidCtlCheckBox&>(widget);
      if (has(Target::Label)) check.SetLabel(text(Target::Label));
      if (const auto on = KEPVidStyleValues::ToBool(Get(Target::Checked, values)))
        check.SetChecked(*on);
      break;
    }
    case KEPVidPartKind::Combo: {
      auto& combo = static_cast<KEPVidCtlImageCombo&>(widget);
      if (has(Target::Items)) {
        std::string items = KEPVidStyleValues::ToText(Get(Target::Items, values));
        if (!itemsRead_ || items != items_) ShowItems(combo, std::move(items), values);
      }
      if (has(Target::Value)) {
        // The entry that carries the value; none shown for a value no entry carries.
        if (const auto value = integer(number(Target::Value))) {
          const auto at = std::find(comboValues_.begin(), comboValues_.end(), *value);
          combo.SetSelect(at == comboValues_.end() ? -1
                                                   : static_cast<int>(at - comboValues_.begin()));
        }
      } else if (const auto selection = integer(number(Target::Selection))) {
        combo.SetSelect(*selection);
      }
      break;
    }
  }
}

void KEPVidStyledPart::ShowItems(KEPVidCtlImageCombo& combo, std::string items,
                                 KEPVidStyleValues& values) {
  items_ = std::move(items);
  itemsRead_ = true;
  std::vector<KEPVidStyleValues::ComboFault> faults;
  const auto entries = KEPVidStyleValues::ParseComboItems(items_, faults);
  combo.ClearItems();
  comboValues_.clear();
  for (const auto& entry : entries) {
    combo.AddItem(Unicode(entry.label), entry.image);
    comboValues_.push_back(entry.value);
  }
  if (faults.empty()) return;
  // Named by the parameter the control publishes, when it publishes one: the configuration key
  // to mend is that parameter's.
  const std::string parameter = KEPVidStyleValues::ToText(values.Read({"Parameter", "Name"}));
  const KEPVidStyleSetting* binding = definition_.Find(Target::Items);
  for (const auto& fault : faults)
    ItemsTrace().Warning(
        "Combo entry left out { parameter = %s, part = %s, items = %s, entry = \"%s\", "
        "reason = %s }",
        parameter.c_str(), definition_.name.c_str(),
        binding && !binding->path.empty() ? binding->path.front().c_str() : "", fault.entry.c_str(),
        fault.reason.c_str());
}

std::optional<KEPSYPValue> KEPVidStyledPart::PersonValue() const {
  KEPVidWidget& widget = *widget_;
  switch (definition_.kind) {
    case KEPVidPartKind::Slider:
      return KEPSYPValue(static_cast<KEPVidCtlSlider&>(widget).GetValue() / Scale());
    case KEPVidPartKind::Editor: {
      auto& editor = static_cast<KEPVidCtlEditor&>(widget);
      if (editor.GetDataType() == KEPVidEditor_Text)
        return KEPSYPValue(KEPString(editor.GetText().ToUTF8()));
      const double value = editor.GetValue();
      if (std::isnan(value) || value < minimum_ || value > maximum_) return std::nullopt;
      return KEPSYPValue(value);
    }
    case KEPVidPartKind::SpinBox:
      return KEPSYPValue(static_cast<KEPVidCtlSpinBox&>(widget).GetValue());
    case KEPVidPartKind::DoubleSpinBox:
      return KEPSYPValue(static_cast<KEPVidCtlDoubleSpinBox&>(widget).GetValue());
    case KEPVidPartKind::CheckBox:
      return KEPSYPValue(static_cast<KEPVidCtlCheckBox&>(widget).IsChecked());
    case KEPVidPartKind::Combo: {
      const int selected = static_cast<KEPVidCtlImageCombo&>(widget).GetSelect();
      if (!definition_.Find(Target::Value)) return KEPSYPValue(selected);
      if (selected < 0 || static_cast<std::size_t>(selected) >= comboValues_.size())
        return std::nullopt;
      return KEPSYPValue(comboValues_[static_cast<std::size_t>(selected)]);
    }
    default:
      return std::nullopt;
  }
}
