#include "RshviewLabelParameter.h"

#include <charconv>
#include <set>
#include <string_view>
#include <vector>

#include "KEPDialog.h"
#include "KEPVidCtlLabel.h"
#include "KEPVidTree.h"

namespace {
constexpr std::string_view kClassicLabel = "parameterLabel";
constexpr std::string_view kImmersiveLabel = "ParameterLabel";
constexpr std::string_view kConnectedRow = "ParameterConnectedShader";
constexpr std::string_view kTitleSeparator = " - ";

/// The number after `prefix` in `name` ("parameterLabel12" gives 12), or -1.
int NumberAfter(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix) || name.size() == prefix.size()) return -1;
  int number = -1;
  const char* end = name.data() + name.size();
  const auto [stop, ec] = std::from_chars(name.data() + prefix.size(), end, number);
  return ec == std::errc() && stop == end ? number : -1;
}

/// The text a label shows: a toolkit label's text, a classic label's title.
std::string TextOf(const KEPVidWidget* widget) {
  if (const auto* label = dynamic_cast<const KEPVidCtlLabel*>(widget))
    return label->GetText().ToUTF8();
  if (const auto* dialog = dynamic_cast<const KEPDialog*>(widget))
    return dialog->GetTitle().ToUTF8();
  return {};
}

/// A node's alias (its id when it has none), as the editors show it.
std::string AliasOf(KEPHostShaderNode& node) {
  KEPUnicodeString alias;
  node.GetAlias(alias);
  return alias.ToUTF8();
}

/// A parameter's label as the editors show it: its alias, else its name.
std::string LabelOf(KEPHostParameter& parameter) {
  KEPUnicodeString alias;
  parameter.GetAlias(alias);
  return alias.ToUTF8();
}

std::string NameOf(KEPHostParameter& parameter) {
  KEPString name;
  parameter.GetName(name);
  return name;
}

/// The node connected to `parameter`, or null.
KEPHostShaderNode* ConnectedTo(const KEPHostShaderDocument& document, KEPHostParameter& parameter) {
  KEP_var<KEPIRshShader> connected;
  if (FAILED(parameter.GetConnectedShader(*connected.Out())) || !connected) return nullptr;
  KEPString id;
  connected->GetId(id);
  return document.FindNode(id);
}

/// The one parameter of `node` labelled `text`, or null (none, or several alike).
KEPHostParameter* ByLabel(KEPHostShaderNode& node, const std::string& text) {
  KEPHostParameter* found = nullptr;
  for (const auto& parameter : node.Parameters()) {
    if (LabelOf(*parameter) != text) continue;
    if (found) return nullptr;
    found = parameter.Get();
  }
  return found;
}

/// The shaders whose alias path from `node` down through connections reads `title` (the classic
/// root frame's title: the aliases joined by " - "), last of the path each; `depth` bounds a
/// cycle of connections.
void ShownShaders(const KEPHostShaderDocument& document, KEPHostShaderNode& node,
                  std::string_view title, int depth, std::set<KEPHostShaderNode*>& shown) {
  const std::string alias = AliasOf(node);
  if (!title.starts_with(alias) || depth > 32) return;
  const std::string_view rest = title.substr(alias.size());
  if (rest.empty()) {
    shown.insert(&node);
    return;
  }
  if (!rest.starts_with(kTitleSeparator)) return;
  for (const auto& parameter : node.Parameters())
    if (KEPHostShaderNode* connected = ConnectedTo(document, *parameter))
      ShownShaders(document, *connected, rest.substr(kTitleSeparator.size()), depth + 1, shown);
}

/// Whether `widget` and each of its ancestors up to `root` hold `property`.
template <class Property>
bool UpTo(const KEPVidWidget* root, const KEPVidWidget* widget, Property property) {
  for (const KEPVidWidget* w = widget; w; w = w->GetFather()) {
    if (!property(*w)) return false;
    if (w == root) break;
  }
  return true;
}

KEPHostParameter* Refuse(RshviewReply& refusal, const std::string& error,
                         const std::string& detail) {
  refusal = RshviewReply::Error(422, error, detail);
  return nullptr;
}
}  // namespace

KEPHostParameter* RshviewParameterOfLabel(KEPVidWidget* editor, KEPHostShaderNode& node,
                                          const KEPHostShaderDocument& document, bool classic,
                                          const std::string& path, RshviewReply& refusal) {
  const std::string where = "label \"" + path + "\"";
  std::string error;
  KEPVidWidget* label = editor ? KEPVidFindByPath(editor, path, error) : nullptr;
  if (!label)
    return Refuse(refusal, "no such label", error.empty() ? where + ": no editor" : error);
  KEPVidWidget* row = label->GetFather();
  const std::string& name = label->GetName();
  const std::string text = TextOf(label);
  const int number = NumberAfter(name, classic ? kClassicLabel : kImmersiveLabel);
  if (number < 0 || !row)
    return Refuse(refusal, "no such label",
                  where + " is no parameter label (" +
                      (classic ? "parameterLabel<i>" : "ParameterLabel<n>") + " in the " +
                      (classic ? "classic" : "immersive") + " editor)");
  KEPHostShaderNode* owner = &node;
  KEPHostParameter* parameter = nullptr;
  KEPVidWidget* value = nullptr;
  if (classic) {
    // The frame shows the last shader of the path its title names.
    const std::string title = TextOf(editor);
    std::set<KEPHostShaderNode*> shown;
    ShownShaders(document, node, title, 0, shown);
    if (shown.size() != 1)
      return Refuse(refusal, "no such label",
                    where + ": the editor's title \"" + title + "\" names " +
                        (shown.empty() ? "no" : "more than one") + " shader below node '" +
                        node.Id() + "'");
    owner = *shown.begin();
    const auto& parameters = owner->Parameters();
    if (static_cast<std::size_t>(number) > parameters.size() || number == 0)
      return Refuse(refusal, "no such label",
                    where + ": node '" + owner->Id() + "' has " +
                        std::to_string(parameters.size()) + " parameters");
    parameter = parameters[static_cast<std::size_t>(number) - 1].Get();
    if (LabelOf(*parameter) != text)
      return Refuse(refusal, "no such label",
                    where + " reads \"" + text + "\", but parameter " + std::to_string(number) +
                        " of node '" + owner->Id() + "' is \"" + LabelOf(*parameter) + "\"");
    value = row->FindNamedChild("parameterDialog" + std::to_string(number));
  } else {
    // Each connected-shader row above the label leads from its row's parameter to the sub-shader
    // whose editor it holds, outermost first.
    std::vector<KEPVidWidget*> rows;
    for (KEPVidWidget* w = row; w && w != editor; w = w->GetFather())
      if (NumberAfter(w->GetName(), kConnectedRow) >= 0) rows.insert(rows.begin(), w);
    for (KEPVidWidget* connectedRow : rows) {
      const std::string k = std::to_string(NumberAfter(connectedRow->GetName(), kConnectedRow));
      const KEPVidWidget* rowLabel =
          connectedRow->GetFather()
              ? connectedRow->GetFather()->FindNamedChild("ParameterLabel" + k)
              : nullptr;
      KEPHostParameter* holder = rowLabel ? ByLabel(*owner, TextOf(rowLabel)) : nullptr;
      KEPHostShaderNode* connected = holder ? ConnectedTo(document, *holder) : nullptr;
      if (!connected)
        return Refuse(refusal, "no such label",
                      where + ": the row of " + connectedRow->GetName() +
                          " names no single connected parameter of node '" + owner->Id() + "'");
      owner = connected;
    }
    parameter = ByLabel(*owner, text);
    if (!parameter)
      return Refuse(
          refusal, "no such label",
          where + " (\"" + text + "\") names no single parameter of node '" + owner->Id() + "'");
    value = row->FindNamedChild("ParameterWidget" + std::to_string(number));
  }
  const std::string what =
      where + " (parameter '" + NameOf(*parameter) + "' of node '" + owner->Id() + "')";
  const auto shown = [](const KEPVidWidget& w) { return w.IsVisible(); };
  if (!UpTo(editor, label, shown) || (value && !UpTo(editor, value, shown)))
    return Refuse(refusal, "locked parameter", what + ": the row is hidden in this editor");
  if (value && !UpTo(editor, value, [](const KEPVidWidget& w) { return w.IsSensitive(); }))
    return Refuse(
        refusal, "locked parameter",
        what + ": the editor does not let it be changed (" + value->GetName() + " is insensitive)");
  return parameter;
}
