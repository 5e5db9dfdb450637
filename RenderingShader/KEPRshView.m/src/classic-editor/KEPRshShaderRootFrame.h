// KEPRshShaderRootFrame: the classic shader editor's top frame. It shows one shader at a time in
// a KEPRshShaderFrame "shaderFrame" inside its container "container", and keeps the path of
// shaders the user walked through by editing connected shaders: the first is the shader the
// editor was opened on, the last the one shown. The parent button "parentButton", visible from
// the second shader on, goes back one step; the frame's title is the aliases of the path joined
// by " - ".
#pragma once

#include <vector>

#include "KEPDlgFrame.h"
#include "KEPIRshShader.h"
#include "KEPNotification.h"
#include "KEP_var.h"

class KEPDlgContainer;
class KEPDlgPushButton;
class KEPRshShaderFrame;

class KEPRshShaderRootFrame : public KEPDlgFrame {
  KEP_DECLARE_CLASS
 public:
  /// The container is 290 × 360 pixels, or 200 × 400 when `parent` is named
  /// "physicalLightContainer".
  static constexpr char kPhysicalLightContainer[] = "physicalLightContainer";

  /// Builds the frame under `parent` (which owns it) and shows `shader` (which may be null: the
  /// container then stays empty).
  KEPRshShaderRootFrame(KEPDialog* parent, const KEPString& name, int style, KEPIRshShader* shader);

  /// Shows `shader` (null shows nothing) in a new shader frame and appends it to the path.
  void ShowShader(KEPIRshShader* shader);
  /// Goes back to the shader before the last one of the path; nothing with one shader or none.
  void GoBack();

  /// The shaders of the path, first to last (borrowed).
  std::vector<KEPIRshShader*> GetPath() const;
  /// The shader frame shown (borrowed), or null.
  KEPRshShaderFrame* GetShaderFrame() const { return shaderFrame_; }
  KEPDlgPushButton* GetParentButton() const { return parentButton_; }
  KEPDlgContainer* GetContainer() const { return container_; }

 protected:
  ~KEPRshShaderRootFrame() override;

 private:
  void ParentButtonCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);
  void UpdateTitle();

  KEP_var<KEPIRshShader> firstShader_;
  KEPDlgPushButton* parentButton_ = nullptr;  ///< borrowed: a child
  KEPDlgContainer* container_ = nullptr;      ///< borrowed: a child
  KEPRshShaderFrame* shaderFrame_ = nullptr;  ///< borrowed: a child of the container
  std::vector<KEP_var<KEPIRshShader>> path_;  ///< one reference each; the last is shown
};
