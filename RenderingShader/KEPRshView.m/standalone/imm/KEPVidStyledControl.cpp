#include "KEPVidStyledControl.h"

#include <unordered_map>
#include <utility>

#include "KEPHostContext.h"
#include "KEPRshModelEvents.h"
#include "KEPTrace.h"
#include "KEPVidStyleValues.h"
#include "KEP_var.h"

namespace {

const KEPTrace& Trace() {
  static const KEPTrace trace("KEPVidStyle");
  return trace;
}

/// Marks a host session: a model observer added in an earlier session is gone with the model
/// events of that session, and its token may name another observer now.
struct StyleSession {
  static unsigned long long Next() {
    static unsigned long long last = 0;
    return ++last;
  }
  unsigned long long id = Next();
};

/// The styled controls alive, by control (for replacing a control's style).
std::unordered_map<const KEPVidCtl*, KEPVidStyledControl*>& Styled() {
  static auto& styled = *new std::unordered_map<const KEPVidCtl*, KEPVidStyledControl*>;
  return styled;
}

/// `value` as a property of `type` takes it; empty when it cannot.
KEPSYPValue Convert(const KEPSYPValue& value, const std::string& type) {
  if (type == "double") {
    if (auto d = KEPVidStyleValues::ToDouble(value)) return *d;
  } else if (type == "int") {
    if (auto d = KEPVidStyleValues::ToDouble(value))
      if (auto i = KEPVidStyleValues::ToInt(*d)) return *i;
  } else if (type == "bool") {
    if (auto b = KEPVidStyleValues::ToBool(value)) return *b;
  } else if (type == "string" || type == "KEPString") {
    return KEPString(KEPVidStyleValues::ToText(value));
  }
  return std::monostate{};
}

std::string Path(const KEPVidStyleSetting& binding) {
  std::string path;
  for (const std::string& step : binding.path) path += (path.empty() ? "" : ".") + step;
  return path;
}

/// A binding to "<property>.Value", which writes the value of the parameter the property holds,
/// not the property itself.
bool WritesParameterValue(const KEPVidStyleSetting& binding) {
  return binding.path.size() == 2 && binding.path[1] == "Value";
}

/// Raises the echo guard for its lifetime.
class Refreshing {
 public:
  explicit Refreshing(int& depth) : depth_(depth) { ++depth_; }
  ~Refreshing() { --depth_; }
  Refreshing(const Refreshing&) = delete;
  Refreshing& operator=(const Refreshing&) = delete;

 private:
  int& depth_;
};

}  // namespace

std::shared_ptr<KEPVidStyledControl> KEPVidStyledControl::Of(const KEPVidCtl& control) {
  auto it = Styled().find(&control);
  return it == Styled().end() ? nullptr : it->second->weak_from_this().lock();
}

KEPVidStyledControl::KEPVidStyledControl(KEPVidCtl& control,
                                         std::shared_ptr<const KEPVidStyleSheet> sheet)
    : control_(&control), sheet_(std::move(sheet)) {
  Styled()[control_] = this;
}

KEPVidStyledControl::~KEPVidStyledControl() {
  // The adapter may be in the middle of its destruction (its listener owned this): it is not
  // touched here. The parts are still alive: this holds a reference of its own to each.
  StopFollowing();
  parts_.clear();
  if (control_) {
    auto it = Styled().find(control_);
    if (it != Styled().end() && it->second == this) Styled().erase(it);
  }
}

std::shared_ptr<KEPVidStyledControl> KEPVidStyledControl::Build(
    KEPVidCtl& control, std::shared_ptr<const KEPVidStyleSheet> sheet,
    const KEPVidStyleClass& styleClass) {
  auto styled = std::make_shared<KEPVidStyledControl>(control, std::move(sheet));
  styled->BuildParts(styleClass.parts, &control);
  KEPSYPIntrospectableAdapter* adapter = control.GetIntrospectionAdapter();
  // The listener owns the styled control: it goes when the adapter goes, with the control.
  styled->listener_ =
      adapter->AddListener([styled](std::string_view name) { styled->RefreshProperty(name); });
  std::weak_ptr<KEPVidStyledControl> weak = styled;
  styled->observer_ =
      KEPRshModelEvents::AddParameterObserver([weak](KEPIRshParameter*, KEPRshParameterChangeKind) {
        if (auto alive = weak.lock()) alive->RefreshAll();
      });
  styled->session_ = KEPHostContext::State<StyleSession>().id;
  for (const auto& part : styled->parts_) {
    if (!part->TwoWay()) continue;
    KEPVidStyledPart* raw = part.get();
    part->SetHandler(
        part->Widget()->AddHandler(part->ChangeEvent(), [weak, raw](KEPVidWidget*, KEPVidEvent) {
          if (auto alive = weak.lock()) alive->PersonChanged(*raw);
        }));
  }
  styled->RefreshAll(true);
  return styled;
}

void KEPVidStyledControl::BuildParts(const std::vector<KEPVidStylePart>& definitions,
                                     KEPVidWidget* father) {
  for (const KEPVidStylePart& definition : definitions) {
    parts_.push_back(std::make_unique<KEPVidStyledPart>(definition, father));
    KEPVidWidget* widget = parts_.back()->Widget();
    if (father == control_) topParts_.push_back(widget);
    Check(definition);
    BuildParts(definition.parts, widget);
  }
}

void KEPVidStyledControl::Check(const KEPVidStylePart& definition) {
  // A binding to a property the control does not have is a mistake of the sheet (or of the class
  // given): the part is built, and shows nothing for it.
  const KEPSYPMetaClass* meta = control_->GetIntrospectionAdapter()->GetSYPMetaClass();
  for (const KEPVidStyleSetting& setting : definition.settings) {
    if (setting.mode == KEPVidStyleMode::Literal) continue;
    const KEPSYPProperty* property = meta ? meta->FindProperty(setting.path.front()) : nullptr;
    const char* problem = nullptr;
    if (!property)
      problem = "the control has no such property";
    else if (setting.mode == KEPVidStyleMode::TwoWay && !property->set &&
             !WritesParameterValue(setting))
      problem = "the property is read-only: a person's change is not written";
    if (problem)
      Trace().Warning("%s:%d: key '%s': %s { control = %s, class = %s, part = %s, property = %s }",
                      sheet_->GetFile().c_str(), setting.line,
                      KEPVidStyleSheet::Info(setting.target).name, problem,
                      control_->GetName().c_str(), control_->GetMetaObject()->Name(),
                      definition.name.c_str(), Path(setting).c_str());
  }
}

void KEPVidStyledControl::StopFollowing() {
  if (observer_ != 0) {
    // Only in the session it was added in: a reset dropped it with the model events.
    if (KEPHostContext::State<StyleSession>().id == session_)
      KEPRshModelEvents::RemoveObserver(observer_);
    observer_ = 0;
  }
  for (const auto& part : parts_) part->RemoveHandler();
}

void KEPVidStyledControl::Unbuild() {
  if (!control_) return;
  StopFollowing();
  // Drops the listener's ownership; the caller holds this.
  if (listener_ != 0) control_->GetIntrospectionAdapter()->RemoveListener(listener_);
  listener_ = 0;
  // Detaching hands the control's reference of a part to the detacher: released here, the part
  // goes when this releases its own (unless someone else still holds it).
  for (KEPVidWidget* top : topParts_) {
    if (top->GetFather() != control_) continue;
    top->SetFather(nullptr);
    top->Release();
  }
  topParts_.clear();
  parts_.clear();
  auto it = Styled().find(control_);
  if (it != Styled().end() && it->second == this) Styled().erase(it);
  control_ = nullptr;
}

void KEPVidStyledControl::Refresh(KEPVidStyledPart& part, KEPVidStyleValues& values) {
  const Refreshing guard(refreshing_);
  part.Refresh(values);
}

void KEPVidStyledControl::RefreshAll(bool everything) {
  if (!control_) return;
  KEPVidStyleValues values(control_->GetIntrospectionAdapter());
  for (const auto& part : parts_)
    if (everything || part->HasBindings()) Refresh(*part, values);
}

void KEPVidStyledControl::RefreshProperty(std::string_view name) {
  if (!control_) return;
  KEPVidStyleValues values(control_->GetIntrospectionAdapter());
  for (const auto& part : parts_)
    if (part->DependsOn(name)) Refresh(*part, values);
}

void KEPVidStyledControl::PersonChanged(KEPVidStyledPart& part) {
  // A change made by a refresh is the echo of the property, not a person's.
  if (refreshing_ > 0 || !control_ || !part.TwoWay()) return;
  // The write may release the control's last other reference (a view rebuilt on the change).
  const KEP_var<KEPVidCtl> keep(control_);
  const KEPVidStyleSetting& binding = *part.TwoWay();  // in the sheet, which this keeps
  const std::string where =
      KEPFormat("control = %s, part = %s, property = %s", control_->GetName().c_str(),
                part.Definition().name.c_str(), Path(binding).c_str());
  const auto value = part.PersonValue();
  if (!value) {
    Trace().Info("Value refused { %s }", where.c_str());
  } else if (const HRESULT result = Write(binding, *value); FAILED(result)) {
    Trace().Warning("Write failed { %s, result = %s }", where.c_str(), KEPResultName(result));
  }
  // The write may have replaced the style (and `part` with it).
  if (!control_) return;
  // The part shows what the property holds now: a refused or unchanged value reverts.
  KEPVidStyleValues values(control_->GetIntrospectionAdapter());
  Refresh(part, values);
}

HRESULT KEPVidStyledControl::Write(const KEPVidStyleSetting& binding, const KEPSYPValue& value) {
  KEPSYPIntrospectableAdapter* adapter = control_->GetIntrospectionAdapter();
  const KEPSYPMetaClass* meta = adapter->GetSYPMetaClass();
  const std::string& name = binding.path.front();
  const KEPSYPProperty* property = meta ? meta->FindProperty(name) : nullptr;
  if (!property) return E_FAIL;
  if (binding.path.size() == 1) {
    const KEPSYPValue written = Convert(value, property->type);
    if (std::holds_alternative<std::monostate>(written)) return E_INVALIDARG;
    return adapter->SetProperty(name, written);
  }
  const std::string& step = binding.path[1];
  if (WritesParameterValue(binding) && property->type != "KEPMathPoint2D") {
    // Into the parameter the property holds, through its setter: the parameter takes the render
    // lock and announces the write, on which every part bound to it refreshes.
    KEPSYPValue holder;
    if (FAILED(adapter->GetProperty(name, holder))) return E_FAIL;
    return KEPVidStyleValues::WriteParameterValue(holder, value);
  }
  // One coordinate of a point: the other keeps what the property holds.
  const auto coordinate = KEPVidStyleValues::ToDouble(value);
  if (binding.path.size() != 2 || property->type != "KEPMathPoint2D" || !coordinate ||
      (step != "x" && step != "y"))
    return E_NOTIMPL;
  KEPSYPValue current;
  if (FAILED(adapter->GetProperty(name, current))) return E_FAIL;
  const auto* point = std::get_if<KEPMathPoint2D>(&current);
  if (!point) return E_FAIL;
  KEPMathPoint2D next = *point;
  (step == "x" ? next.x : next.y) = *coordinate;
  return adapter->SetProperty(name, next);
}
