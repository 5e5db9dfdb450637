// KEPRshConnectionDialog "connectionDialog": the chooser of the shader to connect to a parameter.
//
// Its one chooser ("shaderSelector", a selector list, or "shaderCombo", a combo) lists first the
// shader types that can be made new for the parameter ("<display name> (new)"), then the nodes of
// the document that may be reused: a node of a fitting type that some other parameter already
// uses, labelled with its alias and, in parentheses, "<node alias>:<parameter alias>" of each
// other parameter that points at it. The node owning the parameter and every node from which the
// parameter can be reached are never offered: connecting one would make a cycle.
//
// OK connects the chosen line, framed by a begin and an end notification sent through the
// document's KEPIModelEvents; OK, Cancel and the window's close box all hide the dialog and send
// KEPRshConnectionDoneNotification, so that the opener refreshes its row.
#pragma once

#include <vector>

#include "KEPDlgDialog.h"
#include "KEPIRshParameter.h"
#include "KEPIRshShader.h"
#include "KEPIRshShaderSupport.h"
#include "KEP_var.h"

class KEPDlgLineList;
class KEPRshConnectionDoneNotification;

class KEPRshConnectionDialog : public KEPDlgDialog {
  KEP_DECLARE_CLASS
 public:
  enum class Chooser { Selector, Combo };

  /// The dialog for `parameter` among the nodes of `support`, hidden until shown. Without either
  /// reference, or without a shader manager, the dialog stays empty and OK does nothing.
  KEPRshConnectionDialog(KEPDialog* parent, const KEPString& name, int style,
                         KEPIRshShaderSupport* support, KEPIRshParameter* parameter,
                         Chooser chooser = Chooser::Selector);

  /// The notification sent when the dialog is finished with (see the file comment).
  KEPRshConnectionDoneNotification* GetDoneNotification() const { return done_; }
  /// The chooser (borrowed), null in an empty dialog.
  KEPDlgLineList* GetChooser() const { return chooser_; }
  /// The types of the "new" lines, in line order.
  const std::vector<KEPString>& GetTypeNames() const { return typeNames_; }
  /// The reusable nodes, in line order after the types.
  const std::vector<KEP_var<KEPIRshShader>>& GetReusableShaders() const { return reusable_; }

  /// The node that holds a node the dialog makes, so that the document saves it there. Without
  /// one, the root of the tree the parameter's node belongs to.
  void SetHolder(KEPIRshShader* holder) { holder_ = KEP_var<KEPIRshShader>(holder); }

  /// The style bits the dialog adds to its caller's.
  static constexpr int kStyleBits = 0x2240200;

 protected:
  ~KEPRshConnectionDialog() override;

 private:
  void Fill();
  void AddReusable(KEPIRshShader* node, const KEPString& parameterType);
  /// Connects the chosen line; false when nothing was connected.
  bool Connect();
  void SelectCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);
  void OkCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);
  void CloseCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData data);
  void Finish(bool confirmed);

  KEP_var<KEPIRshShaderSupport> support_;
  KEP_var<KEPIRshParameter> parameter_;
  KEP_var<KEPIRshShader> owner_;   ///< the node owning the parameter
  KEP_var<KEPIRshShader> holder_;  ///< see SetHolder
  std::vector<KEPString> typeNames_;
  std::vector<KEP_var<KEPIRshShader>> reusable_;
  KEPDlgLineList* chooser_ = nullptr;
  KEPRshConnectionDoneNotification* done_;
  Chooser kind_;
};
