#include "KEPRshShaderImmLayout.h"

#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <utility>

#include "KEPBaseUnknown_WR.h"
#include "KEPIAlias.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPMsgCatalog.h"
#include "KEPRbaConfiguration.h"
#include "KEPRshLayoutParameter.h"
#include "KEPRshParameterGrouping.h"
#include "KEPRshParameterOrdering.h"
#include "KEPRshShaderImmLayoutSource.h"
#include "KEPSysPreferenceRepository.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlExpander.h"
#include "KEPVidCtlLabel.h"

KEP_IMPLEMENT_CLASS(KEPRshShaderImmLayout, KEPVidLayGrid, "RenderingShader")

namespace {

constexpr char kExpansionRepository[] = "KEPRmaUIGroupExpansion";

const char* StateName(bool collapsed) {
  return collapsed ? "collapsed" : "expanded";
}

/// Labels (weight 0), value widgets (weight 1), connection buttons (weight 0).
void SetParameterColumns(KEPVidLayGrid* grid) {
  grid->SetColumnWeight(0, 0.0);
  grid->SetColumnWeight(1, 1.0);
  grid->SetColumnWeight(2, 0.0);
}

/// What a person knows a parameter or a node by: its alias when it has one, else its name.
KEPUnicodeString DisplayName(KEPIUnknown* object, const KEPString& name) {
  if (const KEP_var<KEPIAlias> alias = KEPQueryVar<KEPIAlias>(object)) {
    KEPUnicodeString text;
    if (SUCCEEDED(alias->GetAlias(text)) && !text.IsEmpty()) return text;
  }
  return KEPUnicodeString::FromUTF8(name);
}

/// The shaders whose editors are being built, outermost first: a connection back to one of them
/// (a cycle in the document) is labelled but not built again.
std::vector<KEPIRshShader*>& ShadersInBuild() {
  static std::vector<KEPIRshShader*> shaders;
  return shaders;
}

bool AnyVisible(const std::vector<KEPRshLayoutParameter*>& parameters) {
  return std::any_of(parameters.begin(), parameters.end(),
                     [](KEPRshLayoutParameter* parameter) { return parameter->IsVisible(); });
}

}  // namespace

KEPRshShaderImmLayout::KEPRshShaderImmLayout(KEPIRshShader* shader, KEPVidWidget* parent,
                                             const KEPString& name, bool restricted)
    : KEPVidLayGrid(parent, name), shader_(shader), trace_("KEPRmaUI"), restricted_(restricted) {
  SetParameterColumns(this);
  ShadersInBuild().push_back(shader);
  try {
    Build();
  } catch (const std::exception& e) {  // no memory for a widget: the editor stays as far as built
    trace_.Error(KEPRshShaderImmLayoutSource, __LINE__,
                 "Editor left incomplete { editor = %s, reason = %s }", name.c_str(), e.what());
  }
  ShadersInBuild().pop_back();
}

KEPRshShaderImmLayout::~KEPRshShaderImmLayout() = default;

void KEPRshShaderImmLayout::Build() {
  if (!shader_) return;
  KEPRshParameterGrouping grouping(shader_.Get(), trace_);
  configurationId_ = grouping.ConfigurationId();
  groups_ = grouping.Groups();
  const bool materialLike = grouping.IsMaterialLike();

  int editorRow = 0;
  for (const KEPRshGroupRecord& group : groups_)
    BuildGroup(group, grouping.GroupParameters(group), grouping.IsSortingEnabled(), materialLike,
               editorRow);

  // The parameters of no group keep node order, sorting or not.
  const std::vector<KEPRshLayoutParameter*> loose = grouping.NoGroupParameters();
  if (!AnyVisible(loose)) return;
  KEP_ASSERT_FATAL(!loose.empty(),
                   "( group_parameters.Size( ) > 0 ) && \"No After checking that at least one "
                   "parameters is visible\"",
                   KEPRshShaderImmLayoutSource);
  auto* grid = new KEPVidLayGrid(this, "ParameterNoGroupLayout");
  SetParameterColumns(grid);
  grid->SetLayoutWhenInvisible(false);
  grid->SetGridCell({editorRow, 0, 1, 3, KEPVidAttach_Left | KEPVidAttach_Right});
  int gridRow = 0;
  for (KEPRshLayoutParameter* parameter : loose)
    gridRow = AddParameterRow(grid, gridRow, *parameter, materialLike);
}

void KEPRshShaderImmLayout::BuildGroup(const KEPRshGroupRecord& group,
                                       std::vector<KEPRshLayoutParameter*> parameters, bool sort,
                                       bool materialLike, int& editorRow) {
  if (!AnyVisible(parameters)) return;
  KEP_ASSERT_FATAL(!parameters.empty(),
                   "( group_parameters.Size( ) > 0 ) && \"No After checking that at least oen "
                   "parameters is visible\"",
                   KEPRshShaderImmLayoutSource);
  if (sort && KEPRshParameterOrdering::LevelSortsParameters())
    KEPRshParameterOrdering::Sort(parameters);

  KEPVidCtlExpander* expander = CreateGroupExpander(group, editorRow);
  if (!expander) return;
  ++editorRow;
  // Registered once the initial state is set: opening the editor writes no preference.
  const KEPBaseUnknown_WR editor(this);
  expander->AddHandler(KEPVidEvent::Expanded, [editor](KEPVidWidget* sender, KEPVidEvent) {
    if (const auto* self = dynamic_cast<const KEPRshShaderImmLayout*>(editor.Get()))
      self->OnGroupToggled(sender, false);
  });
  expander->AddHandler(KEPVidEvent::Collapsed, [editor](KEPVidWidget* sender, KEPVidEvent) {
    if (const auto* self = dynamic_cast<const KEPRshShaderImmLayout*>(editor.Get()))
      self->OnGroupToggled(sender, true);
  });

  auto* grid = new KEPVidLayGrid(expander, expander->GetName() + "Layout");
  SetParameterColumns(grid);
  int gridRow = 0;
  for (KEPRshLayoutParameter* parameter : parameters)
    gridRow = AddParameterRow(grid, gridRow, *parameter, materialLike);
}

KEPVidCtlExpander* KEPRshShaderImmLayout::CreateGroupExpander(const KEPRshGroupRecord& group,
                                                              int editorRow) {
  const KEPString name = "ParameterGroup" + std::to_string(group.number);
  auto* expander = new (std::nothrow) KEPVidCtlExpander(this, name);
  if (!expander) {
    trace_.Error(KEPRshShaderImmLayoutSource, __LINE__,
                 "Group not shown { group = %s, result = %s }", name.c_str(),
                 KEPResultName(E_OUTOFMEMORY));
    return nullptr;
  }
  expander->SetGridCell({editorRow, 0, 1, 3, KEPVidAttach_Left | KEPVidAttach_Right});
  expander->SetLabel(group.name);

  bool collapsed = true;
  KEPString byDefault;
  if (SUCCEEDED(KEPRbaConfiguration::GetHierarchicalValue(
          configurationId_, group.key + ".CollapsedByDefault", byDefault)))
    collapsed = KEPRshParameterGrouping::IsYes(byDefault);

  const KEPString displayName = group.name.ToUTF8();
  if (const KEPSysPreferenceRepository* repository =
          KEPSysPreferenceRepository::GetRepository(kExpansionRepository)) {
    const KEPString key = configurationId_ + "." + displayName + ".Collapsed";
    short stored = 0;
    if (repository->ReadSetting(key, &stored, 1) == 1) collapsed = stored != 0;
    trace_.Info("%s group collapse preferences is %s", key.c_str(), StateName(collapsed));
  }
  trace_.Info("%s group initialized to %s", displayName.c_str(), StateName(collapsed));
  if (!collapsed) expander->SetExpanded(true);
  return expander;
}

int KEPRshShaderImmLayout::AddParameterRow(KEPVidLayGrid* grid, int gridRow,
                                           KEPRshLayoutParameter& parameter, bool materialLike) {
  if (!parameter.IsVisible()) return gridRow;
  const KEPString number = std::to_string(rowCount_++);
  KEPIRshParameterImmLayout* behaviour = parameter.Behaviour();
  KEP_ASSERT_FATAL(behaviour != nullptr,
                   "( parameter_layout != NULL_var ) && \"parameter from parameter list is not a "
                   "KEPIRshParameterImmLayout\"",
                   KEPRshShaderImmLayoutSource);

  auto* label = new KEPVidCtlLabel(grid, "ParameterLabel" + number);
  label->SetText(DisplayName(parameter.Parameter(), parameter.Name()));
  label->SetGridCell({gridRow, 0, 1, 1, KEPVidAttach_Left});

  // A failed build leaves the row without a widget; the group goes on.
  KEPVidWidget* widget = nullptr;
  if (FAILED(behaviour->BuildWidget(grid, ("ParameterWidget" + number).c_str(), widget)))
    widget = nullptr;
  if (widget && !widget->GetFather()) {
    // A builder may hand back a free control (the integer one at its built-in level): the row
    // names and holds it like any other.
    widget->SetName("ParameterWidget" + number);
    widget->SetFather(grid);
  }
  if (widget) {
    widget->SetGridCell({gridRow, 1, 1, 1, KEPVidAttach_All});
    // A widget that hides itself gives its space to the others.
    widget->SetLayoutWhenInvisible(false);
    if (restricted_ && parameter.Name() == "scale_u") {
      if (KEPVidWidget* ratio = widget->FindNamedChild("WidgetRatio"))
        if (KEPVidWidget* tweaker = ratio->FindNamedChild("ValueTweaker"))
          tweaker->SetSensitivity(false);
    } else if (restricted_ && parameter.Name() == "type") {
      widget->SetSensitivity(false);
    }
  }

  if (!materialLike) return gridRow + 1;
  KEPString connectable;
  if (FAILED(behaviour->GetConnectableState(connectable)) ||
      !KEPRshParameterGrouping::IsYes(connectable))
    return gridRow + 1;
  AddConnection(grid, gridRow, number, parameter.Parameter(), widget);
  return gridRow + 2;
}

void KEPRshShaderImmLayout::AddConnection(KEPVidLayGrid* grid, int gridRow, const KEPString& number,
                                          KEPIRshParameter* parameter, KEPVidWidget* widget) {
  ConnectionRow row;
  row.parameter = parameter;
  row.widget = widget;
  row.connector = new KEPVidCtlButton(grid, "ParameterConnection" + number);
  row.connector->SetGridCell({gridRow, 2, 1, 1, KEPVidAttach_None});
  // Below the row: the sub-shader's own editor goes into the expander's layout.
  row.connectedShaderWidget = new KEPVidCtlExpander(grid, "ParameterConnectedShader" + number);
  row.connectedShaderWidget->SetGridCell(
      {gridRow + 1, 0, 1, 3, KEPVidAttach_Left | KEPVidAttach_Right});
  row.connectedShaderWidget->SetLayoutWhenInvisible(false);
  row.connectedShaderLayout =
      new KEPVidLayGrid(row.connectedShaderWidget, "ParameterConnectedShader" + number + "Layout");
  ShowConnectionState(row);
}

void KEPRshShaderImmLayout::ShowConnectionState(const ConnectionRow& row) {
  KEPIRshShader* connectedShader = nullptr;
  if (FAILED(row.parameter->GetConnectedShader(connectedShader))) connectedShader = nullptr;
  const auto connected = KEP_var<KEPIRshShader>::Adopt(connectedShader);
  row.connector->SetIcon(connected ? "I_RmaDisconnect.png" : "I_RmaConnect.png");
  row.connector->SetHelpText(KEPMsgCatalog::BuildMessage(
      "KEPRshShaderFrame", connected ? "disconnect.Help" : "connect.Help"));
  KEPString connectedId;
  if (connected && FAILED(connected->GetId(connectedId))) connectedId.clear();
  row.connectedShaderWidget->SetLabel(connected ? DisplayName(connected.Get(), connectedId)
                                                : KEPUnicodeString::FromUTF8(kNoShaderConnected));
  row.connectedShaderLayout->DeleteChildren();
  // A connected sub-shader drives the parameter: its own editor shows below the row, and the
  // row's value widget waits until it is disconnected.
  if (row.widget) row.widget->SetSensitivity(!connected);
  row.connectedShaderWidget->SetExpanded(false);
  row.connectedShaderWidget->SetVisibility(static_cast<bool>(connected));
  if (!connected) return;
  std::vector<KEPIRshShader*>& inBuild = ShadersInBuild();
  if (std::find(inBuild.begin(), inBuild.end(), connected.Get()) != inBuild.end()) return;
  new KEPRshShaderImmLayout(connected.Get(), row.connectedShaderLayout, "ConnectedShaderEditor",
                            restricted_);
}

void KEPRshShaderImmLayout::OnGroupToggled(KEPVidWidget* sender, bool collapsed) const {
  if (!shader_) return;
  KEPSysPreferenceRepository* repository =
      KEPSysPreferenceRepository::GetRepository(kExpansionRepository);
  if (!repository) return;
  KEPString configurationId;
  if (FAILED(shader_->GetConfigurationId(configurationId)) || configurationId.empty()) return;
  const auto* expander = dynamic_cast<const KEPVidCtlExpander*>(sender);
  if (!expander) return;

  // Groups of one configuration that share a display name share their state.
  const KEPString key = configurationId + "." + expander->GetLabel().ToUTF8() + ".Collapsed";
  if (collapsed)
    trace_.Info("%s collapsed", key.c_str());
  else
    trace_.Info("%s expanded", key.c_str());
  const short value = collapsed ? 1 : 0;
  if (repository->WriteSetting(key, &value, 1) == 1) repository->Commit();
}
