// Which widgets of an editor changed with an event: the editor's widget tree written as JSON text
// before and after it (KEPVidToJsonText, the fast writer), compared widget by widget on the text
// itself, so that no JSON document is built.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// A widget tree's JSON text with the place of each widget in it.
class RshviewWidgetText {
 public:
  /// Reads `text`, a widget tree as KEPVidToJsonText writes it (objects whose `children` hold
  /// the child widgets). Text that is not such a tree leaves the object invalid.
  explicit RshviewWidgetText(std::string text);

  bool Valid() const { return valid_; }
  const std::string& Text() const { return text_; }

  struct Widget {
    std::string path;                   ///< empty for the root
    bool named = false;                 ///< its `path` is a string (not null)
    std::string_view whole;             ///< the widget's object, children included
    std::string_view before;            ///< its text before the children's array
    std::string_view after;             ///< its text after it
    std::string_view cls, name, state;  ///< the values of those keys, as JSON text (or empty)
    std::size_t childCount = 0;
    std::vector<std::size_t> children;  ///< indices into Widgets()
  };
  /// Every widget, the root first.
  const std::vector<Widget>& Widgets() const { return widgets_; }

 private:
  bool ReadWidget(std::size_t& at, std::size_t& index);
  std::string text_;
  std::vector<Widget> widgets_;
  bool valid_ = false;
};

/// One changed widget: its path and its subtree's JSON text.
struct RshviewChangedWidget {
  std::string path;
  std::string_view widget;
};

/// The widgets of `after` whose own state (every key but `children`) differs from `before`, or
/// whose number of children changed: the highest changed widget of a branch stands for its
/// descendants, an unnamed widget (path null) is reported through its nearest named ancestor.
/// Two trees of one editor; the views point into `after`'s text.
std::vector<RshviewChangedWidget> RshviewChangedWidgets(const RshviewWidgetText& before,
                                                        const RshviewWidgetText& after);

/// The changes as a JSON array text: [{"path": ..., "widget": subtree}, ...].
std::string RshviewChangedWidgetsJson(const std::vector<RshviewChangedWidget>& changed);
