// Shared set-up of the immersive editor's tests: a registered module whose scalar parameters get
// a stand-in widget (so that rows do not depend on the scalar widgets), nodes made in a few
// lines, editors built under a free root grid, and readers of the widget tree.
#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KEPExtensionRegistry.h"
#include "KEPHostConfiguration.h"
#include "KEPRshParameterScalarImmLayout.h"
#include "KEPRshShaderImmLayout.h"
#include "KEPRshViewModule.h"
#include "KEPTestSupport.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlExpander.h"
#include "KEPVidCtlLabel.h"
#include "KEPVidLayGrid.h"
#include "KEP_var.h"

namespace keptest {

using Keys = std::vector<std::pair<std::string, std::string>>;

/// The scalar behaviour with a stand-in widget: a grid named as asked, holding
/// "WidgetRatio/ValueTweaker" as a ratio widget does. A parameter whose name begins with
/// "broken" fails to build.
class StandInScalarImmLayout : public KEPRshParameterScalarImmLayout {
 public:
  static KEPBaseUnknown* Create() { return new StandInScalarImmLayout(); }
  static KEPIUnknown* Tie(KEPBaseUnknown* implementation) {
    auto* object = dynamic_cast<StandInScalarImmLayout*>(implementation);
    if (!object) return nullptr;
    KEPIRshParameterImmLayout* adapter = object;
    adapter->AddRef();
    return adapter;
  }
  static void Register() {
    KEPExtensionRegistry::Register(
        {"KEPRmaScalar", "KEPIRshParameterImmLayout", "StandInScalarImmLayout", &Create, &Tie});
  }

  HRESULT BuildWidget(KEPVidWidget* parent, const char* name, KEPVidWidget*& widget) override {
    if (!parent) return E_FAIL;
    if (GetParameterName().starts_with("broken")) return E_FAIL;
    auto* built = new KEPVidLayGrid(parent, name);
    auto* ratio = new KEPVidLayGrid(built, "WidgetRatio");
    new KEPVidCtlLabel(ratio, "ValueTweaker");
    widget = built;
    return S_OK;
  }
};

/// A light-profile value: a parameter type without an immersive behaviour.
inline KEPHostValue LightProfile() {
  KEPHostValue value;
  value.type = KEPRmaType::LightProfile;
  return value;
}

/// The direct child of `widget` named `name` (borrowed), or null.
inline KEPVidWidget* Child(const KEPVidWidget* widget, const std::string& name) {
  if (widget)
    for (std::size_t i = 0; i < widget->GetChildCount(); ++i)
      if (widget->GetChild(i)->GetName() == name) return widget->GetChild(i);
  return nullptr;
}

/// The widget at `path` ("ParameterGroup0/ParameterGroup0Layout/ParameterLabel0") below
/// `widget`, one direct child per step; null when a step is missing.
inline KEPVidWidget* At(const KEPVidWidget* widget, const std::string& path) {
  const KEPVidWidget* current = widget;
  std::size_t start = 0;
  while (current && start <= path.size()) {
    const std::size_t end = std::min(path.find('/', start), path.size());
    current = Child(current, path.substr(start, end - start));
    start = end + 1;
  }
  return const_cast<KEPVidWidget*>(current);
}

/// Names of the children of `widget`, ordered by grid row then column.
inline std::vector<std::string> Layout(const KEPVidWidget* widget) {
  std::vector<const KEPVidWidget*> children;
  for (std::size_t i = 0; widget && i < widget->GetChildCount(); ++i)
    children.push_back(widget->GetChild(i));
  std::stable_sort(children.begin(), children.end(), [](const auto* a, const auto* b) {
    const KEPVidGridCell &ca = a->GetGridCell(), &cb = b->GetGridCell();
    return ca.row != cb.row ? ca.row < cb.row : ca.column < cb.column;
  });
  std::vector<std::string> names;
  for (const KEPVidWidget* child : children) names.push_back(child->GetName());
  return names;
}

/// The label texts of a parameter grid, top to bottom: the parameters shown, in order.
inline std::vector<std::string> Labels(const KEPVidWidget* grid) {
  std::vector<std::pair<int, std::string>> rows;
  for (std::size_t i = 0; grid && i < grid->GetChildCount(); ++i)
    if (const auto* label = dynamic_cast<const KEPVidCtlLabel*>(grid->GetChild(i)))
      rows.emplace_back(label->GetGridCell().row, label->GetText().ToUTF8());
  std::stable_sort(rows.begin(), rows.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> texts;
  for (auto& row : rows) texts.push_back(std::move(row.second));
  return texts;
}

/// `text` as a regular expression that matches exactly it.
inline std::string Literally(const std::string& text) {
  std::string pattern;
  for (const char c : text) {
    if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos) pattern += '\\';
    pattern += c;
  }
  return pattern;
}

/// What a fatal assertion of the editor prints: the condition and the editor's source path.
inline std::string Fatal(const std::string& condition) {
  return Literally("AssertionFailed:" + condition +
                   " (RenderingShader/KEPRshView.m/src/KEPRshShaderImmLayout:");
}

class EditorTest : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    KEPRshViewRegister();
    StandInScalarImmLayout::Register();
    world_.emplace();
    root_ = KEP_var<KEPVidLayGrid>::Adopt(new KEPVidLayGrid(nullptr, "Root"));
  }
  void TearDown() override {
    root_.Reset();
    world_.reset();
    Fixture::TearDown();
  }

  /// A node of a new type `type` (its configuration identifier too) with scalar parameters named
  /// `parameters`, in that order, and the configuration `config`.
  KEPHostShaderNode* Node(const std::string& type, const std::vector<std::string>& parameters,
                          const Keys& config = {}) {
    Type definition(type);
    for (const std::string& name : parameters) definition.Param(name, Scalar(1));
    return Node(definition, config);
  }
  KEPHostShaderNode* Node(const Type& definition, const Keys& config = {}) {
    world_->Add(definition);
    for (const auto& [key, value] : config)
      KEPHostConfiguration::SetValue(definition.Definition().name, key, value);
    return world_->Node(definition.Definition().name);
  }

  /// The editor of `node` under the root, named "Editor" (borrowed: the root owns it).
  KEPRshShaderImmLayout* Edit(KEPIRshShader* node, bool restricted = false) {
    return new KEPRshShaderImmLayout(node, root_.Get(), "Editor", restricted);
  }

  World& TheWorld() { return *world_; }
  KEPVidLayGrid* Root() { return root_.Get(); }

 private:
  std::optional<World> world_;
  KEP_var<KEPVidLayGrid> root_;
};

}  // namespace keptest
