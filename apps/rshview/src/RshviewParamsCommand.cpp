// `rshview params`: every parameter of a node with its metadata, read through the module's
// parameter behaviours (KEPIRshParameterImmLayout and KEPIRshParameterDialog) exactly as the
// editors read it.
#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <ostream>
#include <set>
#include <string_view>

#include "KEPHostConfiguration.h"
#include "KEPIPLMDmtDocument.h"
#include "KEPIRshParameterDialog.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPParmDictionary.h"
#include "KEPRbaConfiguration.h"
#include "RshviewCommands.h"
#include "RshviewNumber.h"

const char* const kRshviewParamsHelp =
    "Usage: rshview params [--library DIR] [--doc FILE] [--node ID|all] [--format text|json]\n"
    "                      [--trace]\n"
    "\n"
    "Lists each parameter of a node in node order, with its metadata as the editors resolve\n"
    "it: type, current value and connected node, widget kind (immersive and classic; the\n"
    "type's default kind when none is configured), immersive and classic range, soft and hard\n"
    "range, step and decimals, unit with its symbol and model-unit factor, magnitude, group\n"
    "key and display name, sorting order, enumeration labels and values, component labels,\n"
    "connectable state, texture layer group, description, tooltip and default. A value that\n"
    "is not configured is left out of the text (null in JSON). The text starts with a one-line\n"
    "summary per parameter.\n"
    "\n"
    "A parameter whose keys have warnings in the library's files (see rshview lint) is marked\n"
    "'!' in the summary and its block lists them; warnings of the node's own keys (GroupCount,\n"
    "Group<i>.Order, ...) follow the node's line.\n"
    "\n"
    "  --node ID    the node to list; default: the document's first material\n"
    "  --node all   every node of the document, in document order\n"
    "\n"
    "JSON: one node is an object {id, type, alias, configuration, warnings, parameters: [...]};\n"
    "with --node all, {\"nodes\": [...]}. \"warnings\" (of a node and of each parameter) lists\n"
    "the warning texts, null when there are none.\n";

namespace {
using Json = nlohmann::ordered_json;

constexpr int kMaxEnumEntries = 1000;
constexpr int kMaxLabels = 4;

// --- Text form of one value

std::string Scalar(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>() ? "true" : "false";
  if (value.is_number()) return RshviewNumber(value.get<double>());
  std::string text;
  if (value.is_array()) {
    for (const Json& item : value) text += (text.empty() ? "" : " ") + Scalar(item);
    return text;
  }
  if (value.contains("image")) return Scalar(value["image"]);
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string WidgetText(const Json& widget) {
  return Scalar(widget["kind"]) + (widget["configured"].get<bool>() ? "" : " (default)") +
         (widget["known"].get<bool>() ? "" : " (not a kind these widgets know)");
}

std::string RangeText(const Json& range) {
  std::string text = Scalar(range["min"]) + " .. " + Scalar(range["max"]);
  if (range.contains("step") && !range["step"].is_null()) text += ", step " + Scalar(range["step"]);
  return text;
}

std::string PrecisionText(const Json& precision) {
  return Scalar(precision) + (precision == 1 ? " decimal" : " decimals");
}

std::string UnitText(const Json& unit) {
  std::string text = Scalar(unit["name"]);
  if (!unit["symbol"].is_null())
    text += ", symbol " + Scalar(unit["symbol"]);
  else
    text += ", not in the unit dictionary";
  if (!unit["factor"].is_null()) text += ", factor " + Scalar(unit["factor"]);
  return text;
}

std::string MagnitudeText(const Json& magnitude) {
  return Scalar(magnitude["name"]) + (magnitude["known"].get<bool>() ? "" : " (unknown magnitude)");
}

std::string GroupText(const Json& group) {
  return Scalar(group["key"]) +
         (group["name"].is_null() ? "" : " \"" + Scalar(group["name"]) + "\"");
}

std::string EnumerationText(const Json& enumeration) {
  std::string text;
  for (const Json& entry : enumeration)
    text += (text.empty() ? "" : ", ") + Scalar(entry["label"]) + "=" + Scalar(entry["value"]);
  return text;
}

std::string ListText(const Json& items) {
  std::string text;
  for (const Json& item : items) text += (text.empty() ? "" : ", ") + Scalar(item);
  return text;
}

std::string TooltipText(const Json& tooltip) {
  std::string text = Scalar(tooltip["text"]);
  if (!tooltip["image"].is_null()) text += " (image " + Scalar(tooltip["image"]) + ")";
  return text;
}

// --- Reading

/// What one parameter's fields are read from.
struct Source {
  KEPIRshParameter& parameter;
  const KEPString& type;
  const std::string& configurationId;
  KEP_var<KEPIRshParameterImmLayout> imm;
  KEP_var<KEPIRshParameterDialog> dlg;

  /// The readers that both behaviours offer are asked of the immersive one, and of the classic
  /// one for a type without immersive behaviour (light profiles).
  template <class F>
  HRESULT Shared(F&& read) {
    if (imm) return read(*imm);
    if (dlg) return read(*dlg);
    return E_NOINTERFACE;
  }
};

Json OrNull(HRESULT hr, const KEPString& text) {
  return SUCCEEDED(hr) ? Json(text) : Json(nullptr);
}
Json OrNull(HRESULT hr, const KEPUnicodeString& text) {
  return SUCCEEDED(hr) ? Json(text.ToUTF8()) : Json(nullptr);
}

Json Value(KEPIRshParameter& parameter, const std::string& type) {
  if (type == "KEPRmaBoolean") {
    unsigned char b = 0;
    if (SUCCEEDED(parameter.GetBooleanValue(b))) return b != 0;
  } else if (type == "KEPRmaInteger") {
    int i = 0;
    if (SUCCEEDED(parameter.GetIntegerValue(i))) return i;
  } else if (type == "KEPRmaScalar") {
    float f = 0;
    if (SUCCEEDED(parameter.GetScalarValue(f))) return RshviewRounded(f);
  } else if (type == "KEPRmaColor") {
    float r = 0, g = 0, b = 0, a = 1;
    if (SUCCEEDED(parameter.GetColorValue(r, g, b, &a)))
      return Json{RshviewRounded(r), RshviewRounded(g), RshviewRounded(b), RshviewRounded(a)};
  } else if (type == "KEPRmaVector") {
    float v[4] = {0, 0, 0, 0};
    if (SUCCEEDED(parameter.GetVectorValue(v))) {
      Json list = Json::array();
      for (int i = 0; i < parameter.GetVectorDimension() && i < 4; ++i)
        list.push_back(RshviewRounded(v[i]));
      return list;
    }
  } else if (type == "KEPRmaTexture") {
    KEP_var<KEPIPLMDmtDocument> document;
    if (SUCCEEDED(parameter.GetTextureValue(*document.Out())) && document) {
      KEPUnicodeString path;
      document->GetImagePath(path);
      return Json{{"image", path.ToUTF8()}};
    }
  }
  return nullptr;
}

Json Connected(Source& s) {
  KEP_var<KEPIRshShader> connected;
  KEPString id;
  if (SUCCEEDED(s.parameter.GetConnectedShader(*connected.Out())) && connected)
    connected->GetId(id);
  return id.empty() ? Json(nullptr) : Json(id);
}

template <class Behaviour>
Json Widget(Behaviour* behaviour) {
  if (!behaviour) return nullptr;
  KEPString configured, kind;
  const bool isConfigured = SUCCEEDED(behaviour->GetWidget(configured));
  if (FAILED(behaviour->ChooseWidgetKind(kind))) return nullptr;
  // A configured word that the type's widgets do not tell apart is most likely a typing
  // mistake in the configuration; say so rather than let it pass silently.
  std::vector<KEPString> kinds;
  behaviour->GetWidgetKinds(kinds);
  KEPString fallback;
  if (SUCCEEDED(behaviour->GetDefaultWidgetKind(fallback))) kinds.push_back(fallback);
  const bool known = !isConfigured || kinds.empty() || KEPToLower(kind) == "none" ||
                     std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
  return Json{{"kind", kind}, {"configured", isConfigured}, {"known", known}};
}

template <class Behaviour>
Json Range(Behaviour* behaviour) {
  KEPString min, max, step;
  if (!behaviour || FAILED(behaviour->GetRange(min, max, step))) return nullptr;
  return Json{{"min", min}, {"max", max}, {"step", step.empty() ? Json(nullptr) : Json(step)}};
}

Json Bounds(Source& s, HRESULT (KEPIRshParameterImmLayout::*read)(double&, double&)) {
  double min = 0, max = 0;
  if (!s.imm || FAILED((s.imm.Get()->*read)(min, max))) return nullptr;
  return Json{{"min", min}, {"max", max}};
}

Json Unit(Source& s) {
  KEPString name;
  if (FAILED(s.Shared([&](auto& r) { return r.GetUnitName(name); }))) return nullptr;
  Json unit{{"name", name}, {"symbol", nullptr}, {"factor", nullptr}};
  KEP_var<KEPICkeUnit> object;
  if (SUCCEEDED(s.Shared([&](auto& r) { return r.GetUnit(*object.Out()); })) && object)
    unit["symbol"] = object->Symbol().ToUTF8();
  float factor = 1.0f;
  if (s.imm && SUCCEEDED(s.imm->ConvertToModelUnit(factor))) unit["factor"] = factor;
  return unit;
}

Json Magnitude(Source& s) {
  KEPString name;
  if (!s.imm || FAILED(s.imm->GetMagnitudeName(name))) return nullptr;
  KEP_var<KEPICkeMagnitude> magnitude;
  const bool known = SUCCEEDED(s.imm->GetMagnitude(*magnitude.Out())) && magnitude;
  return Json{{"name", name}, {"known", known}};
}

Json Group(Source& s) {
  KEPUnicodeString group;
  if (FAILED(s.Shared([&](auto& r) { return r.GetGroup(group); }))) return nullptr;
  KEPString display;
  const bool named = SUCCEEDED(KEPRbaConfiguration::GetHierarchicalValue(
      s.configurationId, group.ToUTF8() + ".Name", display));
  return Json{{"key", group.ToUTF8()}, {"name", named ? Json(display) : Json(nullptr)}};
}

Json Enumeration(Source& s) {
  Json enumeration = Json::array();
  for (int i = 0; i < kMaxEnumEntries; ++i) {
    KEPUnicodeString label;
    if (FAILED(s.Shared([&](auto& r) { return r.GetEnumLabel(i, label); }))) break;
    int value = 0;
    const bool hasValue = SUCCEEDED(s.Shared([&](auto& r) { return r.GetEnumValue(i, value); }));
    enumeration.push_back(
        Json{{"label", label.ToUTF8()}, {"value", hasValue ? Json(value) : Json(nullptr)}});
  }
  return enumeration.empty() ? Json(nullptr) : enumeration;
}

Json Labels(Source& s) {
  Json labels = Json::array();
  for (int i = 0; i < kMaxLabels; ++i) {
    KEPUnicodeString label;
    if (FAILED(s.Shared([&](auto& r) { return r.GetLabel(i, label); }))) break;
    labels.push_back(label.ToUTF8());
  }
  return labels.empty() ? Json(nullptr) : labels;
}

Json Connectable(Source& s) {
  KEPString state;
  const HRESULT hr = s.Shared([&](auto& r) { return r.GetConnectableState(state); });
  // Without the key the state comes from the shader manager, which always writes it.
  return SUCCEEDED(hr) || !state.empty() ? Json(state) : Json(nullptr);
}

Json Tooltip(Source& s) {
  KEPUnicodeString text;
  KEPString image;
  const bool hasImage = s.imm && SUCCEEDED(s.imm->GetTooltip(text, image));
  if (text.IsEmpty() && !hasImage) return nullptr;
  return Json{{"text", text.IsEmpty() ? Json(nullptr) : Json(text.ToUTF8())},
              {"image", hasImage ? Json(image) : Json(nullptr)}};
}

/// One field of a parameter: its JSON key and text label, how to read it (null when it is not
/// configured) and how to print it in text when it is not null. The fields are read, listed in
/// JSON and printed in text in this order.
struct Field {
  const char* key;
  const char* label;
  Json (*read)(Source&);
  std::string (*text)(const Json&) = Scalar;
  /// Printed as "-" when null rather than left out, so that the default kind an editor falls
  /// back to is seen.
  bool alwaysShown = false;
};

const Field kFields[] = {
    {"value", "value", [](Source& s) { return Value(s.parameter, s.type); }},
    {"connected", "connected", Connected},
    {"widget", "widget", [](Source& s) { return Widget(s.imm.Get()); }, WidgetText, true},
    {"classicWidget", "classic widget", [](Source& s) { return Widget(s.dlg.Get()); }, WidgetText,
     true},
    {"range", "range", [](Source& s) { return Range(s.imm.Get()); }, RangeText},
    {"classicRange", "classic range", [](Source& s) { return Range(s.dlg.Get()); }, RangeText},
    {"softRange", "soft range",
     [](Source& s) { return Bounds(s, &KEPIRshParameterImmLayout::GetSoftRange); }, RangeText},
    {"hardRange", "hard range",
     [](Source& s) { return Bounds(s, &KEPIRshParameterImmLayout::GetHardRange); }, RangeText},
    {"step", "step",
     [](Source& s) {
       double step = 0;
       return s.imm && SUCCEEDED(s.imm->GetStep(step)) ? Json(step) : Json(nullptr);
     }},
    {"precision", "precision",
     [](Source& s) {
       int precision = 0;
       return s.imm && SUCCEEDED(s.imm->GetDecimalPrecision(precision)) ? Json(precision)
                                                                        : Json(nullptr);
     },
     PrecisionText},
    {"unit", "unit", Unit, UnitText},
    {"magnitude", "magnitude", Magnitude, MagnitudeText},
    {"group", "group", Group, GroupText},
    {"sortingOrder", "sorting order",
     [](Source& s) {
       KEPString order;
       return OrNull(s.Shared([&](auto& r) { return r.GetSortingOrder(order); }), order);
     }},
    {"enumeration", "enumeration", Enumeration, EnumerationText},
    {"labels", "labels", Labels, ListText},
    {"connectable", "connectable", Connectable},
    {"layerGroup", "layer group",
     [](Source& s) {
       KEPString name;
       return OrNull(s.Shared([&](auto& r) { return r.GetLayerGroupName(name); }), name);
     }},
    {"description", "description",
     [](Source& s) {
       KEPUnicodeString description;
       return OrNull(s.Shared([&](auto& r) { return r.GetDescription(description); }), description);
     }},
    {"tooltip", "tooltip", Tooltip, TooltipText},
    {"default", "default",
     [](Source& s) {
       KEPString value;
       return OrNull(s.Shared([&](auto& r) { return r.GetDefault(value); }), value);
     }},
};

// --- Warnings of the library's files

/// True when configuration `id` reads `key` from configuration `holder`: its own, or a parent's
/// that no configuration nearer to `id` overrides.
bool ReadsFrom(const std::string& id, const std::string& key, const std::string& holder) {
  std::set<std::string> seen;  // a parent cycle never loads, but the walk must end regardless
  for (std::string current = id; !current.empty() && seen.insert(current).second;
       current = KEPHostConfiguration::Parent(current)) {
    const std::vector<KEPString> keys = KEPHostConfiguration::Keys(current);
    if (std::find(keys.begin(), keys.end(), key) != keys.end()) return current == holder;
  }
  return false;
}

/// The warnings that concern parameter `parameter` of a node (empty: the node itself) of type
/// `type` with configuration `configurationId`, as texts; null when there are none.
Json WarningsOf(const std::vector<KEPLoadIssue>& warnings, const std::string& type,
                const std::string& configurationId, const std::string& parameter) {
  Json texts = Json::array();
  for (const KEPLoadIssue& warning : warnings) {
    if (warning.parameter != parameter) continue;
    const bool concerns = warning.shaderType.empty()
                              ? ReadsFrom(configurationId, warning.key, warning.configuration)
                              : !parameter.empty() && warning.shaderType == type;
    if (concerns) texts.push_back(warning.Text());
  }
  return texts.empty() ? Json(nullptr) : texts;
}

Json Parameter(KEPHostParameter& feature, const std::string& configurationId, Json warnings) {
  KEPIRshParameter& parameter = feature;
  KEPString name, type;
  parameter.GetName(name);
  parameter.GetTypeName(type);
  Source source{parameter, type, configurationId, KEPQueryVar<KEPIRshParameterImmLayout>(&feature),
                KEPQueryVar<KEPIRshParameterDialog>(&feature)};
  Json json;
  json["name"] = name;
  json["type"] = type;
  for (const Field& field : kFields) json[field.key] = field.read(source);
  json["warnings"] = std::move(warnings);
  return json;
}

Json Node(KEPHostShaderNode& node, const std::vector<KEPLoadIssue>& warnings) {
  KEPString configurationId;
  node.GetConfigurationId(configurationId);
  KEPUnicodeString alias;
  node.GetAlias(alias);
  Json json;
  json["id"] = node.Id();
  json["type"] = node.TypeName();
  json["alias"] = alias.ToUTF8();
  json["configuration"] = configurationId;
  json["warnings"] = WarningsOf(warnings, node.TypeName(), configurationId, "");
  json["parameters"] = Json::array();
  for (const auto& parameter : node.Parameters()) {
    KEPString name;
    parameter->GetName(name);
    json["parameters"].push_back(Parameter(
        *parameter, configurationId, WarningsOf(warnings, node.TypeName(), configurationId, name)));
  }
  return json;
}

// One line per parameter first, so that the whole node reads at a glance; then a block per
// parameter with only what is configured (JSON keeps every field, with nulls).
void PrintSummary(const Json& parameters, std::ostream& out) {
  struct Column {
    const char* title;
    std::function<std::string(const Json&)> cell;
  };
  const auto shortType = [](const Json& p) {
    std::string type = Scalar(p["type"]);
    constexpr std::string_view prefix = "KEPRma";
    return std::string_view(type).starts_with(prefix) ? type.substr(prefix.size()) : type;
  };
  const auto widget = [](const Json& p) {
    const Json& w = p["widget"].is_null() ? p["classicWidget"] : p["widget"];
    if (w.is_null()) return std::string("-");
    return Scalar(w["kind"]) + (w["configured"].get<bool>() ? "" : "*") +
           (w["known"].get<bool>() ? "" : "?");
  };
  const auto range = [](const Json& p) {
    const Json& r = p["range"].is_null() ? p["classicRange"] : p["range"];
    return r.is_null() ? std::string("-") : Scalar(r["min"]) + " .. " + Scalar(r["max"]);
  };
  const auto unit = [](const Json& p) {
    return p["unit"].is_null() ? std::string("-") : Scalar(p["unit"]["name"]);
  };
  const auto group = [](const Json& p) {
    if (p["group"].is_null()) return std::string("-");
    const Json& name = p["group"]["name"];
    return name.is_null() ? Scalar(p["group"]["key"]) : Scalar(name);
  };
  const std::vector<Column> columns = {
      {"parameter",
       [](const Json& p) { return Scalar(p["name"]) + (p["warnings"].is_null() ? "" : " !"); }},
      {"type", shortType},
      {"value",
       [](const Json& p) {
         return p["connected"].is_null() ? Scalar(p["value"]) : "-> " + Scalar(p["connected"]);
       }},
      {"widget", widget},
      {"range", range},
      {"unit", unit},
      {"group", group},
      {"order", [](const Json& p) { return Scalar(p["sortingOrder"]); }},
  };
  std::vector<std::vector<std::string>> rows;
  std::vector<std::size_t> widths;
  for (const Column& column : columns) widths.push_back(std::string(column.title).size());
  for (const Json& parameter : parameters) {
    std::vector<std::string> row;
    for (std::size_t c = 0; c < columns.size(); ++c) {
      std::string cell = columns[c].cell(parameter);
      if (c > 0 && cell.size() > 32) cell = cell.substr(0, 31) + "~";  // names stay whole
      widths[c] = std::max(widths[c], cell.size());
      row.push_back(std::move(cell));
    }
    rows.push_back(std::move(row));
  }
  const auto printRow = [&](const std::vector<std::string>& cells) {
    std::string line = " ";
    for (std::size_t c = 0; c < cells.size(); ++c) {
      line += " " + cells[c];
      if (c + 1 < cells.size()) line += std::string(widths[c] - cells[c].size() + 1, ' ');
    }
    out << line << "\n";
  };
  std::vector<std::string> titles;
  for (const Column& column : columns) titles.push_back(column.title);
  printRow(titles);
  for (const auto& row : rows) printRow(row);
  out << "  (* default widget kind: none configured; ? configured word unknown to the type;\n"
         "   ! the library's files have warnings for the parameter, listed in its block)\n";
}

void PrintWarnings(const Json& warnings, const char* indent, std::ostream& out) {
  if (warnings.is_null()) return;
  for (const Json& warning : warnings) out << indent << "warning: " << Scalar(warning) << "\n";
}

void PrintText(const Json& node, std::ostream& out) {
  out << "Node " << Scalar(node["id"]) << "  type " << Scalar(node["type"]) << "  alias \""
      << Scalar(node["alias"]) << "\"  configuration " << Scalar(node["configuration"]) << "  ("
      << node["parameters"].size() << " parameters)\n";
  PrintWarnings(node["warnings"], "  ", out);
  out << "\n";
  PrintSummary(node["parameters"], out);
  for (const Json& parameter : node["parameters"]) {
    out << "\n" << Scalar(parameter["name"]) << "  (" << Scalar(parameter["type"]) << ")\n";
    for (const Field& field : kFields) {
      const Json& value = parameter[field.key];
      if (value.is_null() && !field.alwaysShown) continue;
      std::string label = field.label;
      label.resize(16, ' ');
      out << "  " << label << (value.is_null() ? "-" : field.text(value)) << "\n";
    }
    PrintWarnings(parameter["warnings"], "  ", out);
  }
}
}  // namespace

int RunParamsCommand(RshviewContext& context) {
  std::vector<KEPHostShaderNode*> nodes;
  if (const int code = RshviewSelectNodes(context, "params", nodes)) return code;
  const std::string& wanted = context.options.node;

  Json all = Json::array();
  for (KEPHostShaderNode* node : nodes) all.push_back(Node(*node, context.warnings));
  if (context.options.format == "json") {
    const Json output = wanted == "all" ? Json{{"nodes", all}} : all.front();
    context.out << output.dump(2, ' ', false, Json::error_handler_t::replace) << "\n";
    return 0;
  }
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (i) context.out << "\n\n";
    PrintText(all[i], context.out);
  }
  return 0;
}
