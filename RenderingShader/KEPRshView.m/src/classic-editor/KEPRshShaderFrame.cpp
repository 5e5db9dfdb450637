#include "KEPRshShaderFrame.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <string_view>

#include "KEPDlgContextualMenu.h"
#include "KEPDlgLabel.h"
#include "KEPDlgNotifications.h"
#include "KEPDlgPushButton.h"
#include "KEPDlgPushItem.h"
#include "KEPIAlias.h"
#include "KEPIModelEvents.h"
#include "KEPIRshParameterDialog.h"
#include "KEPIRshShaderSupport.h"
#include "KEPMsgCatalog.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshConnectionDialog.h"
#include "KEPRshConnectionDoneNotification.h"
#include "KEPRshModelEvents.h"
#include "KEPRshShaderManager.h"
#include "KEPRshShaderRootFrame.h"
#include "KEPRshShaderTree.h"
#include "KEPRshViewModule.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshShaderFrame, KEPDlgFrame, "RenderingShader")

namespace {
constexpr int kFrameStyleBit = 0x1;
constexpr int kButtonStyle = 0x80000;
// The shader manager's request for the types that can be created and connected.
constexpr int kConnectableRequest = 2;
constexpr char kFrameCatalog[] = "KEPRshShaderFrame";
constexpr char kIconCatalog[] = "KEPRshParameterFrame";

// The types whose parameters take sub-shaders, in the order they are compared.
constexpr std::array<std::string_view, 16> kConnectableTypes = {"mia_phen_material",
                                                                "mia_phen_diffuse",
                                                                "mia_phen_clear_glass",
                                                                "mia_phen_colored_glass",
                                                                "mia_phen_frosted_glass",
                                                                "mia_phen_polished_metal",
                                                                "mia_phen_polished_plastic",
                                                                "mia_phen_satinated_metal",
                                                                "mia_phen_soft_plastic",
                                                                "mia_phen_anisotropic_metal",
                                                                "mia_phen_simple_translucent",
                                                                "mia_phen_backside_translucent",
                                                                "mia_phen_reflective_translucent",
                                                                "mia_phen_emissive",
                                                                "mip_car_paint",
                                                                "mip_metallic_paint"};

/// Title and help texts of a control, from one catalogue and one key prefix.
struct HelpTexts {
  KEPUnicodeString title, help, shortHelp, longHelp;
  HelpTexts(const char* catalog, const std::string& prefix)
      : title(KEPMsgCatalog::BuildMessage(catalog, prefix + ".Title")),
        help(KEPMsgCatalog::BuildMessage(catalog, prefix + ".Help")),
        shortHelp(KEPMsgCatalog::BuildMessage(catalog, prefix + ".ShortHelp")),
        longHelp(KEPMsgCatalog::BuildMessage(catalog, prefix + ".LongHelp")) {}
  void ApplyHelp(KEPDialog* control) const {
    control->SetHelp(help);
    control->SetShortHelp(shortHelp);
    control->SetLongHelp(longHelp);
  }
  void Apply(KEPDialog* control) const {
    control->SetTitle(title);
    ApplyHelp(control);
  }
};

KEPString PositionName(const char* prefix, int i) {
  return prefix + std::to_string(i);
}

/// The group text as a number: "1" reads as 1; a text that is not a whole number reads nothing
/// (a group named "Group0" is not a group number and hides nothing).
bool ReadGroupNumber(const KEPUnicodeString& group, int& number) {
  const std::string text(KEPTrimBlanks(group.ToUTF8()));
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && last == end && !text.empty();
}

bool IsConnected(KEPIRshParameter* parameter) {
  KEPIRshShader* connected = nullptr;
  const HRESULT hr = parameter->GetConnectedShader(connected);
  const auto hold = KEP_var<KEPIRshShader>::Adopt(connected);
  return SUCCEEDED(hr) && hold;
}
}  // namespace

/// The catalogue texts of the connection controls, read once per frame.
struct KEPRshShaderFrame::Texts {
  HelpTexts connect{kFrameCatalog, "connect"};
  HelpTexts disconnect{kFrameCatalog, "disconnect"};
  HelpTexts edit{kFrameCatalog, "edit"};
  HelpTexts child{kIconCatalog, "child"};
  HelpTexts newChild{kIconCatalog, "newChild"};
};

void KEPRshShaderFrame::ListDeleter::operator()(KEPListP<KEPIRshParameter>* list) const {
  for (int i = 1; i <= list->Size(); ++i)
    if (KEPIRshParameter* parameter = (*list)[i]) parameter->Release();
  delete list;
}

KEPRshShaderFrame::KEPRshShaderFrame(KEPDialog* parent, const KEPString& name, int style,
                                     KEPIRshShader* shader)
    : KEPDlgFrame(parent, name, style | kFrameStyleBit) {
  if (!shader) return;
  shader->AddRef();
  shader_ = KEP_var<KEPIRshShader>::Adopt(shader);
  Build();
  if (std::any_of(parameterButtons_.begin(), parameterButtons_.end(),
                  [](const KEPDlgPushButton* button) { return button != nullptr; })) {
    // Connections made or undone elsewhere (another editor, the model) show on the row buttons.
    // The destructor removes the observer, so it never reaches a frame that is gone.
    observer_ = KEPRshModelEvents::AddParameterObserver(
        [this](KEPIRshParameter* changed, KEPRshParameterChangeKind kind) {
          if (kind == KEPRshParameterChangeKind::Connection) OnConnectionChanged(changed);
        });
  }
}

KEPRshShaderFrame::~KEPRshShaderFrame() {
  KEPModuleTrace::Trace(2, "(KEPRshShaderFrame::~KEPRshShaderFrame) Destructor\n");
  if (observer_) KEPRshModelEvents::RemoveObserver(observer_);
  CloseConnectionDialog();
  DetachShader();
  KEPModuleTrace::Trace(2, "(KEPRshShaderFrame::~KEPRshShaderFrame) Done\n");
}

bool KEPRshShaderFrame::IsConnectableType(const KEPString& typeName) {
  for (const std::string_view type : kConnectableTypes)
    if (typeName == type) return true;
  return false;
}

void KEPRshShaderFrame::Build() {
  KEPString typeName;
  shader_->GetTypeName(typeName);
  if (KEPRshIsPhysicalShaderType(typeName)) return;
  KEPListP<KEPIRshParameter>* list = nullptr;
  if (FAILED(shader_->GetParameters(list)) || !list) return;
  parameters_.reset(list);
  const auto count = static_cast<std::size_t>(list->Size());
  parameterFrames_.assign(count, nullptr);
  parameterButtons_.assign(count, nullptr);
  disconnectButtons_.assign(count, nullptr);
  disconnectItems_.assign(count, nullptr);
  editItems_.assign(count, nullptr);

  std::unique_ptr<Texts> texts;
  if (IsConnectableType(typeName)) texts = std::make_unique<Texts>();
  int row = 0;
  for (int i = 1; i <= list->Size(); ++i)
    if (KEPIRshParameter* parameter = (*list)[i])
      if (AddRow(i, parameter, row, texts.get())) ++row;
}

bool KEPRshShaderFrame::AddRow(int i, KEPIRshParameter* parameter, int row, const Texts* texts) {
  const KEP_var<KEPIRshParameterDialog> behaviour = KEPQueryVar<KEPIRshParameterDialog>(parameter);
  if (!behaviour) return false;
  KEPUnicodeString group;
  int groupNumber = 0;
  if (SUCCEEDED(behaviour->GetGroup(group)) && ReadGroupNumber(group, groupNumber) &&
      groupNumber != 1)
    return false;
  KEPString kind;
  if (SUCCEEDED(behaviour->GetWidget(kind)) && KEPToLower(kind) == "none") return false;

  KEPUnicodeString label;
  if (const KEP_var<KEPIAlias> alias = KEPQueryVar<KEPIAlias>(parameter)) alias->GetAlias(label);
  if (label.IsEmpty()) {
    KEPString name;
    parameter->GetName(name);
    label = KEPUnicodeString::FromUTF8(name);
  }

  // The frame comes first: a parameter that builds none gets no row at all.
  KEPDialog* frame = nullptr;
  if (FAILED(behaviour->BuildFrame(this, PositionName("parameterDialog", i), &frame)) || !frame)
    return false;
  const auto slot = static_cast<std::size_t>(i - 1);
  parameterFrames_[slot] = frame;

  auto* title = new KEPDlgLabel(this, PositionName("parameterLabel", i));
  auto* blank = new KEPDlgLabel(this, PositionName("blankLabel", i));
  title->SetTitle(label);
  title->SetGridConstraints(row, 0, 1, 1, KEPDlgGridLeft);
  blank->SetTitle(u"-");
  blank->SetVisibility(KEPDlgHide);
  blank->SetGridConstraints(row, 1, 1, 1, KEPDlgGridLeft);
  frame->SetGridConstraints(row, 2, 1, 1, KEPDlgGridAll);
  KEPUnicodeString description;
  if (SUCCEEDED(behaviour->GetDescription(description))) {
    title->SetShortHelp(description);
    frame->SetShortHelp(description);
  }
  if (texts) AddConnectionControls(i, parameter, row, *texts);
  return true;
}

void KEPRshShaderFrame::AddConnectionControls(int i, KEPIRshParameter* parameter, int row,
                                              const Texts& texts) {
  const KEPRshShaderManager* manager = KEPRshShaderManager::GetManager();
  if (!manager) return;
  KEPString type;
  parameter->GetTypeName(type);
  std::vector<KEPString> names;
  std::vector<KEPUnicodeString> labels;
  if (FAILED(manager->GetConnectableShaders(type, names, labels, kConnectableRequest)) ||
      names.empty())
    return;

  const auto slot = static_cast<std::size_t>(i - 1);
  auto* button = new KEPDlgPushButton(this, PositionName("parameterButton", i), kButtonStyle);
  button->SetGridConstraints(row, 3, 1, 1, KEPDlgGridLeft);
  auto* disconnect = new KEPDlgPushButton(this, PositionName("disconnectButton", i), kButtonStyle);
  disconnect->SetIconName("I_RmaDisconnect", "I_RmaDisconnectPressed", "I_RmaDisconnectPressed");
  disconnect->SetGridConstraints(row, 4, 1, 1, KEPDlgGridLeft);
  texts.disconnect.Apply(disconnect);

  auto* menu = new KEPDlgContextualMenu(button, PositionName("connectionMenu", i));
  auto* connectItem = new KEPDlgPushItem(menu, "connectItem");
  texts.connect.Apply(connectItem);
  auto* disconnectItem = new KEPDlgPushItem(menu, "disconnectItem");
  texts.disconnect.Apply(disconnectItem);
  auto* editItem = new KEPDlgPushItem(menu, "editItem");
  texts.edit.Apply(editItem);

  const KEPDlgClientData data = i;
  AddCallback(button, button->GetActivateNotification(), this, &KEPRshShaderFrame::ConnectCB, data);
  AddCallback(connectItem, connectItem->GetActivateNotification(), this,
              &KEPRshShaderFrame::ConnectCB, data);
  AddCallback(disconnect, disconnect->GetActivateNotification(), this,
              &KEPRshShaderFrame::DisconnectCB, data);
  AddCallback(disconnectItem, disconnectItem->GetActivateNotification(), this,
              &KEPRshShaderFrame::DisconnectCB, data);
  AddCallback(editItem, editItem->GetActivateNotification(), this, &KEPRshShaderFrame::EditCB,
              data);

  parameterButtons_[slot] = button;
  disconnectButtons_[slot] = disconnect;
  disconnectItems_[slot] = disconnectItem;
  editItems_[slot] = editItem;
  ShowConnection(slot, IsConnected(parameter), texts);
}

void KEPRshShaderFrame::ShowConnection(std::size_t slot, bool connected, const Texts& texts) {
  ShowConnected(slot, connected);
  KEPDlgPushButton* button = parameterButtons_[slot];
  if (connected) {
    texts.child.Apply(button);
  } else {
    texts.newChild.Apply(button);
    texts.connect.ApplyHelp(button);
  }
}

void KEPRshShaderFrame::OnConnectionChanged(KEPIRshParameter* changed) {
  if (!parameters_ || !changed) return;
  for (int i = 1; i <= parameters_->Size(); ++i) {
    const auto slot = static_cast<std::size_t>(i - 1);
    if ((*parameters_)[i] != changed || !parameterButtons_[slot]) continue;
    const Texts texts;
    ShowConnection(slot, IsConnected(changed), texts);
  }
}

void KEPRshShaderFrame::ShowConnected(std::size_t slot, bool connected) {
  if (connected)
    parameterButtons_[slot]->SetIconName("I_RmaChild", "I_RmaChildPressed");
  else
    parameterButtons_[slot]->SetIconName("I_RmaNewChild", "I_RmaNewChildPressed");
  const int sensitivity = connected ? KEPDlgEnable : KEPDlgDisable;
  disconnectButtons_[slot]->SetSensitivity(sensitivity);
  disconnectButtons_[slot]->SetVisibility(connected ? KEPDlgShow : KEPDlgHide);
  disconnectItems_[slot]->SetSensitivity(sensitivity);
  editItems_[slot]->SetSensitivity(sensitivity);
}

void KEPRshShaderFrame::DetachShader() {
  parameters_.reset();
  shader_.Reset();
}

KEPIRshParameter* KEPRshShaderFrame::ParameterAt(KEPDlgClientData i) const {
  if (!parameters_ || i < 1 || i > parameters_->Size()) return nullptr;
  return (*parameters_)[static_cast<int>(i)];
}

KEPRshShaderRootFrame* KEPRshShaderFrame::FindRootFrame(KEPDialog* from) {
  // From a menu item the chain goes through its menu and the button that carries the menu.
  for (KEPDialog* dialog = from; dialog; dialog = dialog->GetFather())
    if (dialog->IsAKindOf("KEPRshShaderRootFrame"))
      return dynamic_cast<KEPRshShaderRootFrame*>(dialog);
  return nullptr;
}

void KEPRshShaderFrame::CloseConnectionDialog() {
  KEPRshConnectionDialog* dialog = connectionDialog_;
  if (!dialog) return;
  connectionDialog_ = nullptr;
  RemoveCallbacksOf(dialog);
  // Detached, the dialog's owner reference comes back to this frame, which lets it go.
  dialog->SetFather(nullptr);
  dialog->Release();
}

void KEPRshShaderFrame::ConnectCB(KEPDialog* sender, KEPNotification*, KEPDlgClientData i) {
  KEPModuleTrace::Trace(5, "(KEPRshShaderFrame::ConnectCB)\n");
  KEPIRshParameter* parameter = ParameterAt(i);
  if (!parameter || !FindRootFrame(sender)) return;
  const KEP_var<KEPIRshShaderSupport> support = KEPRshShaderTree::FindShaderSupport(parameter);
  if (!support) return;
  // One chooser at a time: a new press replaces the dialog of an earlier one.
  CloseConnectionDialog();
  auto* dialog = new KEPRshConnectionDialog(this, "connectionDialog", 0, support.Get(), parameter);
  connectionDialog_ = dialog;
  // OK, Cancel and the close box all end in the dialog's done notification, which climbs to
  // this frame.
  AddCallback(dialog, dialog->GetDoneNotification(), this, &KEPRshShaderFrame::ConnectionDoneCB, i);
  dialog->SetVisibility(KEPDlgShow);
}

void KEPRshShaderFrame::ConnectionDoneCB(KEPDialog*, KEPNotification*, KEPDlgClientData i) {
  KEPModuleTrace::Trace(5, "(KEPRshShaderFrame::ConnectionDoneCB)\n");
  KEPIRshParameter* parameter = ParameterAt(i);
  if (!parameter) return;
  const auto slot = static_cast<std::size_t>(i - 1);
  if (!parameterButtons_[slot]) return;
  const Texts texts;
  ShowConnection(slot, IsConnected(parameter), texts);
}

void KEPRshShaderFrame::DisconnectCB(KEPDialog*, KEPNotification*, KEPDlgClientData i) {
  KEPModuleTrace::Trace(5, "(KEPRshShaderFrame::DisconnectCB)\n");
  KEPIRshParameter* parameter = ParameterAt(i);
  if (!parameter) return;
  const KEP_var<KEPIRshShaderSupport> support = KEPRshShaderTree::FindShaderSupport(parameter);
  if (!support) return;
  // The views of the material hear of the change as one modification of this shader.
  const KEP_var<KEPIModelEvents> events = KEPQueryVar<KEPIModelEvents>(support);
  KEPRbaBeginShaderModifyNotification begin;
  begin.shader = shader_.Get();
  begin.changeClass = "KEPIGraphicMaterial";
  begin.attributeKind = 2;
  if (events) events->SendBeginShaderModify(begin);
  HRESULT written = E_FAIL;
  {
    const KEPRdgRenderLock lock;
    written = parameter->SetConnectedShader(nullptr);
  }
  KEPRbaEndShaderModifyNotification end;
  end.shader = shader_.Get();
  end.changeClass = "KEPIGraphicMaterial";
  end.attributeKind = 2;
  end.flag = 1;
  if (events) events->SendEndShaderModify(end);

  // A refused write leaves the row as it was: it still shows the shader that stays connected.
  if (FAILED(written)) {
    KEPModuleTrace::Trace(5,
                          "(KEPRshShaderFrame::DisconnectCB) Parameter %d refused the "
                          "disconnection (0x%08x)\n",
                          static_cast<int>(i), static_cast<unsigned>(written));
    return;
  }
  const auto slot = static_cast<std::size_t>(i - 1);
  if (!parameterButtons_[slot]) return;
  // The row shows what the model now holds (a host may keep or replace the connection), with
  // the button's title and help going with its icon.
  const Texts texts;
  ShowConnection(slot, IsConnected(parameter), texts);
}

void KEPRshShaderFrame::EditCB(KEPDialog* sender, KEPNotification*, KEPDlgClientData i) {
  KEPModuleTrace::Trace(5, "(KEPRshShaderFrame::EditCB)\n");
  KEPIRshParameter* parameter = ParameterAt(i);
  if (!parameter) return;
  KEPIRshShader* connected = nullptr;
  const HRESULT hr = parameter->GetConnectedShader(connected);
  const auto hold = KEP_var<KEPIRshShader>::Adopt(connected);
  if (FAILED(hr) || !hold) return;
  // Showing the connected shader replaces this frame; nothing of it is used afterwards.
  if (KEPRshShaderRootFrame* root = FindRootFrame(sender)) root->ShowShader(hold.Get());
}
