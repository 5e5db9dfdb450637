#include "KEPRshShaderImmLayout.h"

#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <utility>

#include "KEPBaseUnknown_WR.h"
#include "KEPIAlias.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPIRshShaderSupport.h"
#include "KEPIRshSubShaders.h"
#include "KEPMsgCatalog.h"
#include "KEPRbaConfiguration.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshConnectionDialog.h"
#include "KEPRshConnectionDoneNotification.h"
#include "KEPRshLayoutParameter.h"
#include "KEPRshParameterGrouping.h"
#include "KEPRshParameterOrdering.h"
#include "KEPRshQuickReuse.h"
#include "KEPRshShaderImmLayoutSource.h"
#include "KEPRshShaderManager.h"
#include "KEPRshShaderTree.h"
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
  connectionRows_.push_back(std::make_unique<ConnectionRow>());
  ConnectionRow& row = *connectionRows_.back();
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
  // The row lives as long as the editor, which owns it; the handler reaches it only while the
  // editor is alive.
  const KEPBaseUnknown_WR editor(this);
  ConnectionRow* data = &row;
  row.connector->AddHandler(KEPVidEvent::Pressed, [editor, data](KEPVidWidget*, KEPVidEvent) {
    if (auto* self = dynamic_cast<KEPRshShaderImmLayout*>(editor.Get()))
      self->OnConnectionPressed(*data);
  });
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
  // The expander is folded and hidden before its old content goes, and the row's value widget
  // follows last: whoever listens to the expander sees the row as it was until then.
  row.connectedShaderWidget->SetExpanded(false);
  row.connectedShaderWidget->SetVisibility(static_cast<bool>(connected));
  row.connectedShaderLayout->DeleteChildren();
  // A connected sub-shader drives the parameter: its own editor shows below the row, and the
  // row's value widget waits until it is disconnected.
  if (row.widget) row.widget->SetSensitivity(!connected);
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

void KEPRshShaderImmLayout::OnConnectionPressed(ConnectionRow& row) {
  KEP_ASSERT_FATAL(row.parameter != nullptr,
                   "( parameter != NULL ) && \"No parameter set in callback datas for connected "
                   "shader\"",
                   KEPRshShaderImmLayoutSource);
  KEP_ASSERT_FATAL(row.connector != nullptr,
                   "( widget_connector != NULL ) && \"No connector widget set in callback datas "
                   "for connected shader\"",
                   KEPRshShaderImmLayoutSource);
  KEP_ASSERT_FATAL(row.connectedShaderWidget != nullptr,
                   "( widget_connected_shader != NULL ) && \"No parameter connector set in "
                   "callback datas for connected shader\"",
                   KEPRshShaderImmLayoutSource);
  KEP_ASSERT_FATAL(row.connectedShaderLayout != nullptr,
                   "( layout_connected_shader != NULL ) && \"No parameter connected shader set in "
                   "callback datas for connected shader\"",
                   KEPRshShaderImmLayoutSource);
  // A press is the user's latest word on the row: a dialog still open for it is released first,
  // so that its OK cannot later overwrite what this press connects or disconnects. Ignoring the
  // press instead would leave a button that seems dead while its dialog may be out of sight.
  ReleaseDialog(row);
  KEPIRshShader* connected = nullptr;
  const HRESULT hr = row.parameter->GetConnectedShader(connected);
  const auto hold = KEP_var<KEPIRshShader>::Adopt(connected);
  if (FAILED(hr) || !hold) {
    Connect(row);
    return;
  }
  WriteConnection(row, nullptr);
}

void KEPRshShaderImmLayout::Connect(ConnectionRow& row) {
  // Quick reuse looks in the edited tree only; the dialog offers the whole document.
  const std::vector<KEP_var<KEPIRshShader>> shaders =
      KEPRshQuickReuse::HeldNodes(EditedRoot().Get());
  for (const KEP_var<KEPIRshShader>& current_shader : shaders)
    KEP_ASSERT_FATAL(static_cast<bool>(current_shader),
                     "( current_shader != NULL ) && \"Fetched sub-shaders are not KEPIRshShader\"",
                     KEPRshShaderImmLayoutSource);

  const KEPRshShaderManager* shader_manager = KEPRshShaderManager::GetManager();
  KEP_ASSERT_FATAL(shader_manager != nullptr,
                   "( shader_manager ) && \"No shader manager available but we are editing a "
                   "shader....\"",
                   KEPRshShaderImmLayoutSource);
  KEPString parameterType;
  if (FAILED(row.parameter->GetTypeName(parameterType))) parameterType.clear();
  std::vector<KEPString> types;
  std::vector<KEPUnicodeString> labels;
  if (FAILED(shader_manager->GetConnectableShaders(parameterType, types, labels, 2))) types.clear();
  KEP_ASSERT_FATAL(!types.empty(),
                   "( types.Size( ) > 0 ) && \"Nothing is connectable to this parameter, "
                   "connection callback should not have been accesssible in the first place\"",
                   KEPRshShaderImmLayoutSource);

  const KEP_var<KEPIRshShaderSupport> support = KEPRshShaderTree::FindShaderSupport(shader_.Get());
  const KEP_var<KEPIRshShader> reusable =
      KEPRshQuickReuse::Find(shaders, row.parameter, parameterType, support.Get());
  const bool oneType = types.size() == 1;
  if (static_cast<bool>(reusable) == oneType) {
    OpenConnectionDialog(row, support.Get());
  } else if (oneType) {
    ConnectNew(row, types.front());
  } else if (reusable) {
    WriteConnection(row, reusable.Get());
  } else {
    KEP_ASSERT_FATAL(false, "false && \"Unreachable code\"", KEPRshShaderImmLayoutSource);
  }
}

KEP_var<KEPIRshShader> KEPRshShaderImmLayout::EditedRoot() const {
  KEP_var<KEPIRshShader> root = KEPRshShaderTree::RootShader(shader_.Get());
  if (root.Get() != shader_.Get()) return root;
  // No node holds the edited one: when it is shown below a row of another node, the tree is that
  // editor's. Widget fathers never form a cycle.
  const KEPRshShaderImmLayout* outermost = this;
  for (const KEPVidWidget* widget = GetFather(); widget; widget = widget->GetFather())
    if (const auto* editor = dynamic_cast<const KEPRshShaderImmLayout*>(widget)) outermost = editor;
  if (outermost != this) root = KEPRshShaderTree::RootShader(outermost->shader_.Get());
  return root;
}

void KEPRshShaderImmLayout::ReleaseDialog(ConnectionRow& row) {
  KEPRshConnectionDialog* old = row.dialog;
  if (!old) return;
  if (row.dialogMode)
    trace_.Info("Connection dialog given up for a new press { parameter row = %s }",
                row.connector->GetName().c_str());
  row.dialog = nullptr;
  row.dialogMode = false;
  old->SetVisibility(KEPDlgHide);
  old->SetFather(nullptr);
  old->Release();
}

void KEPRshShaderImmLayout::OpenConnectionDialog(ConnectionRow& row,
                                                 KEPIRshShaderSupport* support) {
  ReleaseDialog(row);
  auto* dialog = new KEPRshConnectionDialog(nullptr, "connectionDialog", 0, support, row.parameter);
  dialog->SetHolder(EditedRoot().Get());
  dialog->SetFather(this);
  row.dialog = dialog;
  row.dialogMode = true;
  // The editor is no classic widget: it listens in the dialog's own table, where the done
  // notification starts.
  const KEPBaseUnknown_WR editor(this);
  ConnectionRow* data = &row;
  dialog->AddCallback(dialog, dialog->GetDoneNotification(),
                      [editor, data, dialog](KEPDialog*, KEPNotification*, KEPDlgClientData) {
                        auto* self = dynamic_cast<KEPRshShaderImmLayout*>(editor.Get());
                        // A dialog the row gave up has no say over it any more.
                        if (!self || data->dialog != dialog) return;
                        data->dialogMode = false;
                        const KEPRdgRenderLock lock;
                        self->ShowConnectionState(*data);
                      });
  dialog->SetVisibility(KEPDlgShow);
}

void KEPRshShaderImmLayout::ConnectNew(ConnectionRow& row, const KEPString& type) {
  const KEP_var<KEPIRshShader> root = EditedRoot();
  const auto* root_shader_feature = dynamic_cast<const KEPBaseUnknown*>(root.Get());
  KEP_ASSERT_FATAL(root_shader_feature != nullptr,
                   "( root_shader_feature != NULL_var ) && \"Root shader is not a feature\"",
                   KEPRshShaderImmLayoutSource);
  const KEP_var<KEPIRshShaderSupport> root_shader_container =
      KEPRshShaderTree::FindShaderSupport(root.Get());
  KEP_ASSERT_FATAL(static_cast<bool>(root_shader_container),
                   "( root_shader_container != NULL_var ) && \"Root shader has no container\"",
                   KEPRshShaderImmLayoutSource);
  KEP_var<KEPIRshShader> created;
  if (FAILED(KEPRshShaderManager::GetManager()->CreateShader(type, root_shader_container.Get(),
                                                             *created.Out())) ||
      !created) {
    trace_.Warning("Shader not created { type = %s }", type.c_str());
    return;
  }
  KEPString createdId;
  if (FAILED(created->GetId(createdId))) createdId.clear();
  // The root holds the node, so that the document saves it with the material it was made for.
  const auto holder = KEPQueryVar<KEPIRshSubShaders>(root);
  const HRESULT held = holder ? holder->AddSubShader(created.Get()) : E_NOINTERFACE;
  if (FAILED(held))
    trace_.Warning("Shader not held by the root { shader = %s, result = %s }", createdId.c_str(),
                   KEPResultName(held));
  // The support offers no removal: a node it made that cannot be connected stays unused in the
  // document, and the trace names it.
  if (FAILED(WriteConnection(row, created.Get())))
    trace_.Warning("Shader made but not connected, left unused { shader = %s, type = %s }",
                   createdId.c_str(), type.c_str());
}

HRESULT KEPRshShaderImmLayout::WriteConnection(ConnectionRow& row, KEPIRshShader* shader) {
  // One change from the write until the row shows it: a render thread waits until the row and
  // the sub-editor it builds match the parameter. The lock is re-entrant.
  const KEPRdgRenderLock lock;
  const HRESULT written = row.parameter->SetConnectedShader(shader);
  if (FAILED(written))
    trace_.Warning(shader ? "Connection refused { parameter row = %s, result = %s }"
                          : "Disconnection refused { parameter row = %s, result = %s }",
                   row.connector->GetName().c_str(), KEPResultName(written));
  ShowConnectionState(row);
  return written;
}
