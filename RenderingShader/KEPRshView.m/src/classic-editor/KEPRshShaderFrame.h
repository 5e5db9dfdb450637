// KEPRshShaderFrame: the classic frame that lists the parameters of one shader node, one grid row
// per shown parameter: the label "parameterLabel" + i (column 0), a hidden "blankLabel" + i
// (column 1), the frame "parameterDialog" + i that the parameter's KEPIRshParameterDialog builds
// (column 2) and, for the material types whose parameters take sub-shaders, the button
// "parameterButton" + i (column 3) with its menu "connectionMenu" + i (connect, disconnect, edit)
// and the button "disconnectButton" + i (column 4). i is the parameter's position in the node,
// from 1. A physical ("MPM...") shader gets an empty frame.
#pragma once

#include <memory>
#include <vector>

#include "KEPDlgFrame.h"
#include "KEPIRshParameter.h"
#include "KEPIRshShader.h"
#include "KEPListP.h"
#include "KEPNotification.h"
#include "KEP_var.h"

class KEPDlgPushButton;
class KEPDlgPushItem;
class KEPRshConnectionDialog;
class KEPRshShaderRootFrame;

class KEPRshShaderFrame : public KEPDlgFrame {
  KEP_DECLARE_CLASS
 public:
  /// Builds the frame and its rows under `parent` (which owns it); a null shader gives an empty
  /// frame.
  KEPRshShaderFrame(KEPDialog* parent, const KEPString& name, int style, KEPIRshShader* shader);

  /// True when the parameters of shaders of `typeName` may take sub-shaders.
  static bool IsConnectableType(const KEPString& typeName);

  /// Lets go of the shader and its parameters: the controls stay, the actions do nothing.
  void DetachShader();
  /// The shader shown (borrowed), null once detached.
  KEPIRshShader* GetShader() const { return shader_.Get(); }

  // The actions of row i (a position from 1), as the row's buttons and menu items call them.
  void ConnectCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData i);
  void DisconnectCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData i);
  void EditCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData i);
  /// The connection dialog opened for row i is done with (confirmed or not): the row shows what
  /// the parameter now holds.
  void ConnectionDoneCB(KEPDialog* sender, KEPNotification* notification, KEPDlgClientData i);

  /// The connection dialog last opened (borrowed; a child of this frame), or null.
  KEPRshConnectionDialog* GetConnectionDialog() const { return connectionDialog_; }

 protected:
  ~KEPRshShaderFrame() override;

 private:
  struct Texts;
  void Build();
  /// Adds row `row` for the parameter at position `i`; false when the parameter gets no row.
  bool AddRow(int i, KEPIRshParameter* parameter, int row, const Texts* texts);
  void AddConnectionControls(int i, KEPIRshParameter* parameter, int row, const Texts& texts);
  /// The parameter at position i (borrowed), null outside the list or once detached.
  KEPIRshParameter* ParameterAt(KEPDlgClientData i) const;
  /// The enclosing root frame, climbing from `from` (borrowed), or null.
  static KEPRshShaderRootFrame* FindRootFrame(KEPDialog* from);
  /// Lets go of the connection dialog, if one was opened.
  void CloseConnectionDialog();
  void ShowConnected(std::size_t slot, bool connected);
  /// The row's button icons, sensitivities and texts for a connected or unconnected parameter.
  void ShowConnection(std::size_t slot, bool connected, const Texts& texts);
  /// A connection of a parameter of the node changed: its row shows the new state.
  void OnConnectionChanged(KEPIRshParameter* changed);

  struct ListDeleter {
    void operator()(KEPListP<KEPIRshParameter>* list) const;
  };

  KEP_var<KEPIRshShader> shader_;
  std::unique_ptr<KEPListP<KEPIRshParameter>, ListDeleter> parameters_;  ///< one ref each
  // One slot per parameter position (slot i - 1), null when the row has no such control; all
  // are children of this frame (borrowed).
  std::vector<KEPDialog*> parameterFrames_;
  std::vector<KEPDlgPushButton*> parameterButtons_;
  std::vector<KEPDlgPushButton*> disconnectButtons_;
  std::vector<KEPDlgPushItem*> disconnectItems_;
  std::vector<KEPDlgPushItem*> editItems_;
  KEPRshConnectionDialog* connectionDialog_ = nullptr;
  int observer_ = 0;  ///< token of the model observer (rows with buttons only), 0 when none
};
