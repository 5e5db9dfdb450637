#include "KEPVidStyleSheet.h"

#include <array>
#include <map>
#include <utility>

#include "KEPFileText.h"
#include "KEPHostContext.h"

namespace {

constexpr unsigned Kind(KEPVidPartKind kind) {
  return 1U << static_cast<unsigned>(kind);
}

constexpr unsigned kAllKinds = 0xFFU;
constexpr unsigned kGrid = Kind(KEPVidPartKind::Grid);
constexpr unsigned kLabel = Kind(KEPVidPartKind::Label);
constexpr unsigned kSlider = Kind(KEPVidPartKind::Slider);
constexpr unsigned kEditor = Kind(KEPVidPartKind::Editor);
constexpr unsigned kSpin = Kind(KEPVidPartKind::SpinBox);
constexpr unsigned kDoubleSpin = Kind(KEPVidPartKind::DoubleSpinBox);
constexpr unsigned kCombo = Kind(KEPVidPartKind::Combo);
constexpr unsigned kCheck = Kind(KEPVidPartKind::CheckBox);
constexpr unsigned kSpins = kSpin | kDoubleSpin;
constexpr unsigned kNumeric = kSlider | kEditor | kSpins;

using T = KEPVidStyleValueType;

// In the order of KEPVidStyleTarget.
constexpr std::array<KEPVidStyleSheet::TargetInfo, 33> kTargets{{
    {"cell", T::Cell, kAllKinds, 0, false, true},
    {"attach", T::Attach, kAllKinds, 0, false, false},
    {"minimum-size", T::Size, kAllKinds, 0, false, true},
    {"background", T::Color, kAllKinds, 0, false, false},
    {"tooltip", T::Text, kAllKinds, 0, true, false},
    {"tooltip-delay", T::Double, kAllKinds, 0, false, true},
    {"visible", T::Bool, kAllKinds, 0, true, false},
    {"sensitive", T::Bool, kAllKinds, 0, true, false},
    {"layout-when-invisible", T::Bool, kAllKinds, 0, false, false},
    {"column-weights", T::Weights, kGrid, 0, false, true},
    {"row-weights", T::Weights, kGrid, 0, false, true},
    {"spacing", T::Size, kGrid, 0, false, true},
    {"value", T::Double, kNumeric | kCombo, kNumeric | kCombo, true, false},
    {"text", T::Text, kLabel | kEditor, kEditor, true, false},
    {"minimum", T::Double, kNumeric, 0, true, false},
    {"maximum", T::Double, kNumeric, 0, true, false},
    {"step", T::Double, kSpins, 0, true, true},
    {"decimals", T::Int, kSlider | kEditor | kDoubleSpin, 0, true, true},
    {"suffix", T::Text, kSpins, 0, true, false},
    {"checked", T::Bool, kCheck, kCheck, true, false},
    {"label", T::Text, kCheck, 0, true, false},
    {"selection", T::Int, kCombo, kCombo, true, false},
    {"items", T::Text, kCombo, 0, true, false},
    {"width", T::Int, kEditor, 0, false, true},
    {"text-length", T::Int, kSpins, 0, false, true},
    {"correction", T::Correction, kSpins, 0, false, false},
    {"tick-interval", T::Int, kSlider, 0, false, true},
    {"single-step", T::Int, kSlider, 0, false, true},
    {"page-step", T::Int, kSlider, 0, false, true},
    {"tick-position", T::Int, kSlider, 0, false, true},
    {"bar-size", T::Double, kSlider, 0, false, true},
    {"square-ratio", T::Double, kSlider, 0, false, true},
    {"magnifier", T::Bool, kSlider, 0, false, false},
}};
static_assert(static_cast<std::size_t>(KEPVidStyleTarget::Magnifier) + 1 == kTargets.size());

constexpr std::array<const char*, 8> kKinds{"grid",     "label",           "slider", "editor",
                                            "spin-box", "double-spin-box", "combo",  "check-box"};

/// Sheets read in this host session, by path: the sheet, or the errors that made it unusable.
struct LoadedSheets {
  struct Entry {
    std::shared_ptr<const KEPVidStyleSheet> sheet;
    KEPLoadResult result;
  };
  std::map<std::string, Entry, std::less<>> byPath;
};

}  // namespace

const KEPVidStyleSetting* KEPVidStylePart::Find(KEPVidStyleTarget target) const {
  for (const KEPVidStyleSetting& setting : settings)
    if (setting.target == target) return &setting;
  return nullptr;
}

const KEPVidStyleSheet::TargetInfo& KEPVidStyleSheet::Info(KEPVidStyleTarget target) {
  return kTargets[static_cast<std::size_t>(target)];
}

bool KEPVidStyleSheet::FindTarget(std::string_view name, KEPVidStyleTarget& target) {
  for (std::size_t i = 0; i < kTargets.size(); ++i) {
    if (name == kTargets[i].name) {
      target = static_cast<KEPVidStyleTarget>(i);
      return true;
    }
  }
  return false;
}

bool KEPVidStyleSheet::FindKind(std::string_view name, KEPVidPartKind& kind) {
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    if (name == kKinds[i]) {
      kind = static_cast<KEPVidPartKind>(i);
      return true;
    }
  }
  return false;
}

const char* KEPVidStyleSheet::KindName(KEPVidPartKind kind) {
  return kKinds[static_cast<std::size_t>(kind)];
}

std::string KEPVidStyleSheet::KindList() {
  std::string list;
  for (const char* kind : kKinds) list += (list.empty() ? "" : ", ") + std::string(kind);
  return list;
}

std::string KEPVidStyleSheet::TargetList(KEPVidPartKind kind) {
  std::string list;
  for (const TargetInfo& info : kTargets)
    if (info.kinds & Kind(kind)) list += (list.empty() ? "" : ", ") + std::string(info.name);
  return list;
}

const KEPVidStyle* KEPVidStyleSheet::FindStyle(std::string_view name) const {
  for (const KEPVidStyle& style : styles_)
    if (style.name == name) return &style;
  return nullptr;
}

const KEPVidStyleClass* KEPVidStyleSheet::FindClass(const KEPVidStyle& style,
                                                    std::string_view styleClass) {
  const KEPVidStyleClass* best = nullptr;
  for (const KEPVidStyleClass& candidate : style.classes) {
    if (!candidate.prefix) {
      if (candidate.name == styleClass) return &candidate;
    } else if (styleClass.starts_with(candidate.name) &&
               (!best || candidate.name.size() > best->name.size())) {
      best = &candidate;
    }
  }
  return best;
}

std::shared_ptr<const KEPVidStyleSheet> KEPVidStyleSheet::Load(const std::string& path,
                                                               KEPLoadResult& result,
                                                               bool* firstRead) {
  auto& loaded = KEPHostContext::State<LoadedSheets>().byPath;
  auto it = loaded.find(path);
  if (firstRead) *firstRead = it == loaded.end();
  if (it != loaded.end()) {
    result = it->second.result;
    return it->second.sheet;
  }
  LoadedSheets::Entry entry;
  std::string text;
  std::string message;
  if (KEPFileText::Read(path, text, message))
    entry.sheet = Parse(text, path, entry.result);
  else
    entry.result.AddError(path, 0, "", message);
  result = entry.result;
  auto sheet = entry.sheet;
  loaded.emplace(path, std::move(entry));
  return sheet;
}
