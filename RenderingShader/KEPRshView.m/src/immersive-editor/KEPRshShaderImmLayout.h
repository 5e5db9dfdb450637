// KEPRshShaderImmLayout: the immersive editor of one shader node, a grid built whole when it is
// constructed.
//
// Row r of the editor's grid holds the r-th shown configured group: an expander
// "ParameterGroup" + group number over its grid "ParameterGroup" + number + "Layout"; below the
// groups, the parameters of no group have a grid of their own, "ParameterNoGroupLayout". Every
// grid has three columns: the labels "ParameterLabel" + n (weight 0), the widgets
// "ParameterWidget" + n that the parameters' behaviours build (weight 1), and, where the node is
// material-like and the parameter connectable, the button "ParameterConnection" + n (weight 0)
// with the row "ParameterConnectedShader" + n below it for the connected sub-shader. n counts the
// shown parameter rows of the editor from 0.
//
// A group opens collapsed unless its ".CollapsedByDefault" says otherwise; the user's choice, kept
// in the preference repository "KEPRmaUIGroupExpansion" under
// <configuration identifier>.<group display name>.Collapsed (1 collapsed, 0 expanded), wins over
// the configuration, and every expand or collapse by the user is written and committed at once.
#pragma once

#include <memory>
#include <vector>

#include "KEPIRshShader.h"
#include "KEPRshGroupRecord.h"
#include "KEPString.h"
#include "KEPTrace.h"
#include "KEPVidLayGrid.h"
#include "KEP_var.h"

class KEPRshConnectionDialog;
class KEPRshLayoutParameter;
class KEPRshParameterGrouping;
class KEPVidCtlButton;
class KEPVidCtlExpander;
class KEPIRshShaderSupport;

class KEPRshShaderImmLayout : public KEPVidLayGrid {
  KEP_DECLARE_CLASS
 public:
  /// The editor of `shader` named `name` under `parent` (which owns it), built at once. With
  /// `restricted` the ratio tweaker of "scale_u" and the whole widget of "type" are disabled.
  KEPRshShaderImmLayout(KEPIRshShader* shader, KEPVidWidget* parent, const KEPString& name,
                        bool restricted);

  /// The edited shader (borrowed); null when built without one.
  KEPIRshShader* GetShader() const { return shader_.Get(); }
  bool IsRestricted() const { return restricted_; }
  /// The configured groups in the order of the grouping (shown or not).
  const std::vector<KEPRshGroupRecord>& GetGroups() const { return groups_; }

  /// The text of a row's connected-shader expander while nothing is connected.
  static constexpr char kNoShaderConnected[] = "No Shader Connected";

 protected:
  ~KEPRshShaderImmLayout() override;

 private:
  /// The widgets of a row that accepts a connection.
  struct ConnectionRow {
    KEPIRshParameter* parameter = nullptr;               ///< borrowed
    KEPVidCtlButton* connector = nullptr;                ///< "ParameterConnection" + n
    KEPVidCtlExpander* connectedShaderWidget = nullptr;  ///< "ParameterConnectedShader" + n
    KEPVidLayGrid* connectedShaderLayout = nullptr;      ///< inside it, for the sub-shader's editor
    KEPVidWidget* widget = nullptr;                      ///< the row's value widget, or null
    bool dialogMode = false;                   ///< true while a connection dialog serves this row
    KEPRshConnectionDialog* dialog = nullptr;  ///< the row's last dialog (a child of the editor)
  };

  void Build();
  /// The group's expander and grid and its rows; nothing when none of `parameters` is shown.
  void BuildGroup(const KEPRshGroupRecord& group, std::vector<KEPRshLayoutParameter*> parameters,
                  bool sort, bool materialLike, int& editorRow);
  /// The expander of `group`, its label and initial state; null when it cannot be made.
  KEPVidCtlExpander* CreateGroupExpander(const KEPRshGroupRecord& group, int editorRow);
  /// Adds the row of `parameter` at `gridRow` (and the row below for a connection); returns the
  /// next free row of the grid. A hidden parameter gets no row.
  int AddParameterRow(KEPVidLayGrid* grid, int gridRow, KEPRshLayoutParameter& parameter,
                      bool materialLike);
  void AddConnection(KEPVidLayGrid* grid, int gridRow, const KEPString& number,
                     KEPIRshParameter* parameter, KEPVidWidget* widget);
  /// Sets the button, the value widget and the connected-shader row as the parameter's
  /// connection requires: a connected sub-shader's own editor shows in the row below.
  void ShowConnectionState(const ConnectionRow& row);
  /// The press of a row's connection button: disconnects what is connected, else connects a
  /// node made new, a node reused, or opens the connection dialog when there is a choice.
  void OnConnectionPressed(ConnectionRow& row);
  void Connect(ConnectionRow& row);
  /// The root of the tree this editor edits: the top of the edited node's holders; for a node that
  /// the document holds itself, shown below another node's row, the root of the outermost
  /// editor's node.
  KEP_var<KEPIRshShader> EditedRoot() const;
  /// Opens the connection dialog for the row; the row refreshes when the dialog is done.
  void OpenConnectionDialog(ConnectionRow& row, KEPIRshShaderSupport* support);
  /// Detaches and releases the row's dialog, open or done; nothing without one.
  void ReleaseDialog(ConnectionRow& row);
  /// Makes a node of `type` in the root's container, held by the edited tree's root, and connects
  /// it; a failed creation leaves the row as it was.
  void ConnectNew(ConnectionRow& row, const KEPString& type);
  /// Connects `shader` to the row's parameter (null disconnects) and shows the connection the
  /// parameter then holds, both under one render lock; traces a refusal. Returns the write's
  /// result.
  HRESULT WriteConnection(ConnectionRow& row, KEPIRshShader* shader);
  /// Writes 1 (collapsed) or 0 (expanded) under the preference key of the sender's group and
  /// commits the repository.
  void OnGroupToggled(KEPVidWidget* sender, bool collapsed) const;

  KEP_var<KEPIRshShader> shader_;
  std::vector<std::unique_ptr<ConnectionRow>> connectionRows_;
  KEPString configurationId_;
  std::vector<KEPRshGroupRecord> groups_;
  KEPTrace trace_;
  bool restricted_ = false;
  int rowCount_ = 0;  ///< n of the next parameter row
};
