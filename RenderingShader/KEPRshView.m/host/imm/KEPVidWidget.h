// KEPVidWidget: a node of the immersive toolkit's retained-mode, headless widget tree.
//
// Ownership: a widget created with a father belongs to it (the father holds the creation
// reference) and dies with it; a widget created without one belongs to its creator until
// SetFather hands that reference to the new father. Destroying a widget releases its children;
// a child that someone else still holds outlives it, detached (no father).
//
// Every widget has a name (children are addressed by it: "ParameterGroup0/ParameterWidget3/
// scalarSlider"), visibility, sensitivity, a layout-when-invisible setting, a requested minimum
// size, a background colour, a tooltip with its initial delay, and a cell in its father's grid.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <string>
#include <string_view>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPString.h"
#include "KEPVidTypes.h"

class KEPVidWidget : public KEPBaseUnknown {
  KEP_DECLARE_CLASS
 public:
  /// A widget named `name` under `father` (which takes the creation reference), or a free one.
  explicit KEPVidWidget(KEPVidWidget* father = nullptr, const KEPString& name = KEPString());

  // --- Name and tree
  const KEPString& GetName() const { return name_; }
  void SetName(const KEPString& name) { name_ = name; }
  /// The father (borrowed), or null.
  KEPVidWidget* GetFather() const { return father_; }
  /// Moves this widget under `father` (null detaches it). A free widget's creation reference goes
  /// to the new father; a widget moved from one father to another keeps its one owner reference.
  void SetFather(KEPVidWidget* father);
  std::size_t GetChildCount() const { return children_.size(); }
  /// Child `index` in creation order (borrowed).
  KEPVidWidget* GetChild(std::size_t index) const { return children_[index]; }
  /// The first descendant named `name`, breadth first (borrowed), or null.
  KEPVidWidget* FindNamedChild(std::string_view name) const;
  /// Releases every child.
  void DeleteChildren();

  // --- Look
  void SetVisibility(bool visible) { visible_ = visible; }
  bool IsVisible() const { return visible_; }
  void SetSensitivity(bool sensitive) { sensitive_ = sensitive; }
  bool IsSensitive() const { return sensitive_; }
  /// Whether the widget keeps its place in the layout while invisible (on by default).
  void SetLayoutWhenInvisible(bool keep) { layoutWhenInvisible_ = keep; }
  bool GetLayoutWhenInvisible() const { return layoutWhenInvisible_; }
  void SetMinimumSize(int width, int height) {
    minimumWidth_ = width;
    minimumHeight_ = height;
  }
  int GetMinimumWidth() const { return minimumWidth_; }
  int GetMinimumHeight() const { return minimumHeight_; }
  void SetBackgroundColor(const KEPVidColor& color) {
    background_ = color;
    hasBackground_ = true;
  }
  bool HasBackgroundColor() const { return hasBackground_; }
  const KEPVidColor& GetBackgroundColor() const { return background_; }
  void SetTooltip(const KEPUnicodeString& text) { tooltip_ = text; }
  const KEPUnicodeString& GetTooltip() const { return tooltip_; }
  /// Seconds before the tooltip shows.
  void SetTooltipInitialDelay(double seconds) { tooltipDelay_ = seconds; }
  double GetTooltipInitialDelay() const { return tooltipDelay_; }

  // --- Place in the father's grid
  void SetGridCell(const KEPVidGridCell& cell) { cell_ = cell; }
  const KEPVidGridCell& GetGridCell() const { return cell_; }

  // --- Notifications
  /// Calls `handler` whenever this widget raises `event`; returns a token for RemoveHandler.
  int AddHandler(KEPVidEvent event, KEPVidHandler handler);
  void RemoveHandler(int token);
  /// Calls the handlers of `event`, in the order they were added. A handler may destroy other
  /// widgets' handlers or add new ones; it must not destroy this widget.
  void Raise(KEPVidEvent event);

  // --- State and user events
  /// Writes the state that matters for this class (after the common state the toolkit writes:
  /// class, name, visibility, sensitivity, cell, tooltip). Derived classes call their base first.
  virtual void DescribeState(KEPVidStateWriter& writer) const;
  /// Applies what a person did, exactly as the person's action would arrive: the state changes
  /// and the notifications follow. E_INVALIDARG (with `error` set) when the action does not apply
  /// to this class, its argument cannot be read, or the widget is insensitive or invisible.
  virtual HRESULT InjectUserEvent(KEPVidAction action, std::string_view argument,
                                  std::string& error);

 protected:
  ~KEPVidWidget() override;

 private:
  void Adopt(KEPVidWidget* child);
  void Forget(KEPVidWidget* child);

  KEPString name_;
  KEPVidWidget* father_ = nullptr;
  std::vector<KEPVidWidget*> children_;  ///< each holds one reference of its own
  struct Handler {
    int token;
    KEPVidEvent event;
    KEPVidHandler function;
  };
  std::vector<Handler> handlers_;
  int nextToken_ = 1;
  KEPUnicodeString tooltip_;
  KEPVidGridCell cell_;
  KEPVidColor background_;
  double tooltipDelay_ = 0.0;
  int minimumWidth_ = 0;
  int minimumHeight_ = 0;
  bool visible_ = true;
  bool sensitive_ = true;
  bool layoutWhenInvisible_ = true;
  bool hasBackground_ = false;
};

#pragma GCC visibility pop
