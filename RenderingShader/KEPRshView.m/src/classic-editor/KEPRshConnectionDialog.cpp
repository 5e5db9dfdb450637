#include "KEPRshConnectionDialog.h"

#include "KEPDlgCombo.h"
#include "KEPDlgSelectorList.h"
#include "KEPIModelEvents.h"
#include "KEPIRshSubShaders.h"
#include "KEPMsgCatalog.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshConnectionDoneNotification.h"
#include "KEPRshShaderManager.h"
#include "KEPRshShaderTree.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshConnectionDialog, KEPDlgDialog, "RenderingShader")

namespace {
constexpr char kCatalog[] = "KEPRshConnectionDialog";
// The shader manager's request for the types that can be created and connected.
constexpr int kConnectableRequest = 2;
constexpr int kAttributeKind = 2;
constexpr int kTextWidth = 20;

/// True when a node of type `nodeType` may be connected to a parameter of type `parameterType`.
bool TypeFits(const KEPString& parameterType, const KEPString& nodeType) {
  return (parameterType == "KEPRmaVoid" && nodeType == "KEPRmaVector") || nodeType.empty() ||
         nodeType == parameterType;
}

KEPUnicodeString AliasOrId(KEPIRshShader* shader) {
  KEPString id;
  if (FAILED(shader->GetId(id))) id.clear();
  return KEPRshShaderTree::Alias(shader, KEPUnicodeString::FromUTF8(id));
}

KEPUnicodeString AliasOrName(KEPIRshParameter* parameter) {
  KEPString name;
  if (FAILED(parameter->GetName(name))) name.clear();
  return KEPRshShaderTree::Alias(parameter, KEPUnicodeString::FromUTF8(name));
}
}  // namespace

KEPRshConnectionDialog::KEPRshConnectionDialog(KEPDialog* parent, const KEPString& name, int style,
                                               KEPIRshShaderSupport* support,
                                               KEPIRshParameter* parameter, Chooser chooser)
    : KEPDlgDialog(parent, name, style | kStyleBits),
      support_(support),
      parameter_(parameter),
      done_(new KEPRshConnectionDoneNotification()),
      kind_(chooser) {
  // Even an empty dialog answers OK, Cancel and its close box, so that its opener hears of it.
  AddCallback(this, GetOKNotification(), this, &KEPRshConnectionDialog::OkCB);
  AddCallback(this, GetCancelNotification(), this, &KEPRshConnectionDialog::CloseCB);
  AddCallback(this, GetWindowCloseNotification(), this, &KEPRshConnectionDialog::CloseCB);
  if (!support_ || !parameter_) return;
  owner_ = KEPRshShaderTree::OwningShader(parameter_.Get());
  Fill();
}

KEPRshConnectionDialog::~KEPRshConnectionDialog() {
  KEPModuleTrace::Trace(2, "(KEPRshConnectionDialog::~KEPRshConnectionDialog) Destructor\n");
  done_->Release();
  KEPModuleTrace::Trace(2, "(KEPRshConnectionDialog::~KEPRshConnectionDialog) Done\n");
}

void KEPRshConnectionDialog::Fill() {
  const KEPRshShaderManager* manager = KEPRshShaderManager::GetManager();
  if (!manager) return;
  KEPString parameterType;
  if (FAILED(parameter_->GetTypeName(parameterType))) parameterType.clear();
  std::vector<KEPUnicodeString> labels;
  if (FAILED(
          manager->GetConnectableShaders(parameterType, typeNames_, labels, kConnectableRequest))) {
    typeNames_.clear();
    labels.clear();
  }
  if (labels.size() != typeNames_.size()) labels.resize(typeNames_.size());

  if (kind_ == Chooser::Combo) {
    auto* combo = new KEPDlgCombo(this, "shaderCombo");
    AddCallback(combo, combo->GetComboSelectNotification(), this,
                &KEPRshConnectionDialog::SelectCB);
    chooser_ = combo;
  } else {
    auto* selector = new KEPDlgSelectorList(this, "shaderSelector");
    AddCallback(selector, selector->GetListSelectNotification(), this,
                &KEPRshConnectionDialog::SelectCB);
    chooser_ = selector;
  }
  chooser_->SetVisibleTextWidth(kTextWidth);

  const KEPUnicodeString newLabel = KEPMsgCatalog::BuildMessage(kCatalog, "NewLabel");
  for (const KEPUnicodeString& label : labels)
    chooser_->SetLine(KEPUnicodeString::FromUTF8(label.ToUTF8() + " " + newLabel.ToUTF8()));

  std::vector<KEP_var<KEPIRshShader>> nodes;
  if (FAILED(support_->GetShaders(nodes))) nodes.clear();
  for (const KEP_var<KEPIRshShader>& node : nodes)
    if (node) AddReusable(node.Get(), parameterType);

  if (!typeNames_.empty())
    chooser_->SetSelect(0);
  else
    SetOKSensitivity(KEPDlgDisable);

  SetTitle(
      KEPUnicodeString::FromUTF8(KEPMsgCatalog::BuildMessage(kCatalog, "ConnectLabel").ToUTF8() +
                                 AliasOrName(parameter_.Get()).ToUTF8()));
  Attach4Sides(chooser_);
}

void KEPRshConnectionDialog::AddReusable(KEPIRshShader* node, const KEPString& parameterType) {
  // The parameter's own node, and any node from which the parameter is reached, would close a
  // cycle.
  if (node == owner_.Get() || KEPRshShaderTree::Reaches(node, parameter_.Get())) return;
  if (!TypeFits(parameterType, KEPRshShaderTree::ConnectionType(node))) return;

  std::vector<KEP_var<KEPIRshParameter>> pointing;
  if (FAILED(node->GetPointingComponents(pointing))) pointing.clear();
  std::string users;
  int others = 0;
  for (const KEP_var<KEPIRshParameter>& user : pointing) {
    if (!user || user.Get() == parameter_.Get()) continue;
    const KEP_var<KEPIRshShader> userNode = KEPRshShaderTree::OwningShader(user.Get());
    if (others++ > 0) users += ", ";
    if (userNode) users += AliasOrId(userNode.Get()).ToUTF8();
    users += ":" + AliasOrName(user.Get()).ToUTF8();
  }
  // A node that nothing else uses is not offered: it is this parameter's own, or no one's.
  if (others == 0) return;
  chooser_->SetLine(KEPUnicodeString::FromUTF8(AliasOrId(node).ToUTF8() + " (" + users + ")"));
  reusable_.emplace_back(node);
}

void KEPRshConnectionDialog::SelectCB(KEPDialog*, KEPNotification*, KEPDlgClientData) {
  KEPModuleTrace::Trace(5, "(KEPRshConnectionDialog::SelectCB)\n");
  SetOKSensitivity(chooser_ && chooser_->GetSelectCount() == 1 ? KEPDlgEnable : KEPDlgDisable);
}

bool KEPRshConnectionDialog::Connect() {
  const int line = chooser_ ? chooser_->GetSelect() : -1;
  if (line < 0) return false;
  const auto index = static_cast<std::size_t>(line);
  KEP_var<KEPIRshShader> chosen;
  if (index < typeNames_.size()) {
    const KEPRshShaderManager* manager = KEPRshShaderManager::GetManager();
    if (!manager ||
        FAILED(manager->CreateShader(typeNames_[index], support_.Get(), *chosen.Out())) || !chosen)
      return false;
    // The new node belongs to the material whose tree it joins, and is saved under its root.
    const KEP_var<KEPIRshShader> root =
        holder_ ? holder_ : KEPRshShaderTree::RootShader(owner_.Get());
    const auto holder = KEPQueryVar<KEPIRshSubShaders>(root);
    if (!holder || FAILED(holder->AddSubShader(chosen.Get())))
      KEPModuleTrace::Trace(2, "(KEPRshConnectionDialog::OkCB) New node not held by the root\n");
  } else if (index - typeNames_.size() < reusable_.size()) {
    chosen = reusable_[index - typeNames_.size()];
  }
  if (!chosen) return false;
  const KEPRdgRenderLock lock;
  if (SUCCEEDED(parameter_->SetConnectedShader(chosen.Get()))) return true;
  // The support offers no removal: a node made here that cannot be connected stays unused.
  if (index < typeNames_.size())
    KEPModuleTrace::Trace(2, "(KEPRshConnectionDialog::OkCB) New node made but not connected\n");
  return false;
}

void KEPRshConnectionDialog::OkCB(KEPDialog*, KEPNotification*, KEPDlgClientData) {
  KEPModuleTrace::Trace(5, "(KEPRshConnectionDialog::OkCB)\n");
  SetVisibility(KEPDlgHide);
  // An empty dialog connects nothing; its opener still hears that it is done.
  if (!support_ || !parameter_ || !KEPRshShaderManager::GetManager()) {
    Finish(false);
    return;
  }
  const KEP_var<KEPIModelEvents> events = KEPQueryVar<KEPIModelEvents>(support_);
  KEPRbaBeginShaderModifyNotification begin;
  begin.shader = owner_.Get();
  begin.changeClass = "KEPIGraphicMaterial";
  begin.attributeKind = kAttributeKind;
  if (events) events->SendBeginShaderModify(begin);
  if (!Connect()) KEPModuleTrace::Trace(5, "(KEPRshConnectionDialog::OkCB) Nothing connected\n");
  KEPRbaEndShaderModifyNotification end;
  end.shader = owner_.Get();
  end.changeClass = "KEPIRshParameter";
  end.attributeKind = kAttributeKind;
  end.flag = 1;
  if (events) events->SendEndShaderModify(end);
  Finish(true);
}

void KEPRshConnectionDialog::CloseCB(KEPDialog*, KEPNotification*, KEPDlgClientData) {
  KEPModuleTrace::Trace(5, "(KEPRshConnectionDialog::CloseCB)\n");
  SetVisibility(KEPDlgHide);
  Finish(false);
}

void KEPRshConnectionDialog::Finish(bool confirmed) {
  done_->SetConfirmed(confirmed);
  // A subscriber may let go of this dialog: it stays alive until the notification is through.
  const KEP_var<KEPRshConnectionDialog> self(this);
  Notify(done_);
}
