#include "KEPRshShaderRootFrame.h"

#include "KEPDlgContainer.h"
#include "KEPDlgNotifications.h"
#include "KEPDlgPushButton.h"
#include "KEPIAlias.h"
#include "KEPRshShaderFrame.h"
#include "KEPTrace.h"

KEP_IMPLEMENT_CLASS(KEPRshShaderRootFrame, KEPDlgFrame, "RenderingShader")

namespace {
// The frame bit added to the caller's style, for the root frame as for the shader frame.
constexpr int kFrameStyleBit = 0x1;
constexpr int kButtonStyle = 0x80000;
constexpr int kShaderFrameStyle = 0xC0000;

KEPUnicodeString AliasOf(KEPIRshShader* shader) {
  KEPUnicodeString text;
  if (const KEP_var<KEPIAlias> alias = KEPQueryVar<KEPIAlias>(shader)) alias->GetAlias(text);
  return text;
}
}  // namespace

KEPRshShaderRootFrame::KEPRshShaderRootFrame(KEPDialog* parent, const KEPString& name, int style,
                                             KEPIRshShader* shader)
    : KEPDlgFrame(parent, name, style | kFrameStyleBit) {
  if (shader) {
    shader->AddRef();
    firstShader_ = KEP_var<KEPIRshShader>::Adopt(shader);
  }
  parentButton_ = new KEPDlgPushButton(this, "parentButton", kButtonStyle);
  parentButton_->SetIconName("I_RmaParent", "I_RmaParentPressed");
  parentButton_->SetGridConstraints(0, 0, 1, 1, KEPDlgGridLeft | KEPDlgGridTop);
  AddCallback(parentButton_, parentButton_->GetActivateNotification(), this,
              &KEPRshShaderRootFrame::ParentButtonCB);

  container_ = new KEPDlgContainer(this, "container");
  const bool physicalLight = parent && parent->GetName() == kPhysicalLightContainer;
  container_->SetRectDimensions(1, 1, physicalLight ? 200 : 290, physicalLight ? 400 : 360);
  container_->SetGridConstraints(1, 0, 1, 1, KEPDlgGridAll);

  ShowShader(shader);
  SetGridColumnResizable(0);
  SetGridRowResizable(1);
}

KEPRshShaderRootFrame::~KEPRshShaderRootFrame() {
  KEPModuleTrace::Trace(2, "(KEPRshShaderRootFrame::~KEPRshShaderRootFrame) Destructor\n");
  path_.clear();
  firstShader_.Reset();
  KEPModuleTrace::Trace(2, "(KEPRshShaderRootFrame::~KEPRshShaderRootFrame) Done\n");
}

void KEPRshShaderRootFrame::ShowShader(KEPIRshShader* shader) {
  if (shaderFrame_) {
    // The frame shown so far lets go of its shader and leaves the tree. When an edit action of
    // that frame got us here, the notification's dispatch still holds it until the action
    // returns.
    KEPRshShaderFrame* old = shaderFrame_;
    shaderFrame_ = nullptr;
    old->DetachShader();
    old->SetFather(nullptr);
    old->Release();
  }
  if (shader) {
    shaderFrame_ = new KEPRshShaderFrame(container_, "shaderFrame", kShaderFrameStyle, shader);
    shaderFrame_->SetGridConstraints(0, 0, 1, 1, KEPDlgGridAll);
    shader->AddRef();
    path_.push_back(KEP_var<KEPIRshShader>::Adopt(shader));
  }
  parentButton_->SetVisibility(path_.size() >= 2 ? KEPDlgShow : KEPDlgHide);
  UpdateTitle();
}

void KEPRshShaderRootFrame::GoBack() {
  if (path_.size() <= 1) return;
  path_.pop_back();
  // The extra reference keeps the shader alive between leaving the path and coming back to it.
  const KEP_var<KEPIRshShader> previous = std::move(path_.back());
  path_.pop_back();
  ShowShader(previous.Get());
}

std::vector<KEPIRshShader*> KEPRshShaderRootFrame::GetPath() const {
  std::vector<KEPIRshShader*> shaders;
  shaders.reserve(path_.size());
  for (const auto& shader : path_) shaders.push_back(shader.Get());
  return shaders;
}

void KEPRshShaderRootFrame::ParentButtonCB(KEPDialog*, KEPNotification*, KEPDlgClientData) {
  KEPModuleTrace::Trace(5, "(KEPRshShaderRootFrame::ParentButtonCB)\n");
  GoBack();
}

void KEPRshShaderRootFrame::UpdateTitle() {
  KEPUnicodeString title;
  for (const auto& shader : path_) {
    const KEPUnicodeString alias = AliasOf(shader.Get());
    if (alias.IsEmpty()) continue;
    if (!title.IsEmpty()) title += u" - ";
    title += alias;
  }
  SetTitle(title);
}
