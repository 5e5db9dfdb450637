// A 2D viewer: draws representations over a background colour, inside a visible box of its own
// coordinates. It holds one reference to each representation it shows. Draw() redraws (counted,
// for those who check that a change was drawn).
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPDialog.h"

class KEP2DRep;

class KEP2DViewer : public KEPDialog {
  KEP_DECLARE_CLASS
 public:
  /// A viewer whose graphic area is `width` × `height` pixels; `manipulation` not 0 lets a person
  /// pan and zoom (SetManipulation).
  KEP2DViewer(KEPDialog* father, const KEPString& name, int style, int width, int height,
              int manipulation = 1);

  /// The background colour, channels in 0..1 (clamped); `redraw` not 0 draws at once.
  void SetBackgroundColor(float red, float green, float blue, int redraw);
  /// Whether a person may pan and zoom.
  void SetManipulation(int on) { manipulation_ = on != 0; }
  bool GetManipulation() const { return manipulation_; }

  void GetGraphicSize(int& width, int& height) const;
  /// Resizes the graphic area (as a layout would).
  void SetGraphicSize(int width, int height);
  /// The part of the viewer's coordinates shown.
  void SetVisibleBox(double xMin, double yMin, double xMax, double yMax);
  void GetVisibleBox(double& xMin, double& yMin, double& xMax, double& yMax) const;

  /// Adds a representation (once; null and one already shown are ignored).
  void AddRep(KEP2DRep* rep);
  /// Removes it (nothing when it is not shown).
  void RemoveRep(KEP2DRep* rep);
  std::size_t GetRepCount() const { return reps_.size(); }
  KEP2DRep* GetRep(std::size_t index) const { return reps_[index]; }
  void Draw() { ++draws_; }
  int GetDrawCount() const { return draws_; }

  void DescribeState(KEPVidStateWriter& writer) const override;

 protected:
  ~KEP2DViewer() override;

 private:
  std::vector<KEP2DRep*> reps_;  ///< one reference each
  double box_[4] = {0.0, 0.0, 0.0, 0.0};
  int width_;
  int height_;
  int draws_ = 0;
  bool manipulation_;
};

#pragma GCC visibility pop
