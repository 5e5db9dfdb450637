// `rshview params`: every parameter of a node with its metadata, read through the module's
// parameter behaviours (KEPIRshParameterImmLayout and KEPIRshParameterDialog) exactly as the
// editors read it.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>

#include "KEPIPLMDmtDocument.h"
#include "KEPIRshParameterDialog.h"
#include "KEPIRshParameterImmLayout.h"
#include "KEPParmDictionary.h"
#include "KEPRbaConfiguration.h"
#include "RshviewCommands.h"

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
    "  --node ID    the node to list; default: the document's first material\n"
    "  --node all   every node of the document, in document order\n"
    "\n"
    "JSON: one node is an object {id, type, alias, configuration, parameters: [...]};\n"
    "with --node all, {\"nodes\": [...]}.\n";

namespace {
using Json = nlohmann::ordered_json;

constexpr int kMaxEnumEntries = 1000;
constexpr int kMaxLabels = 4;

std::string Number(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

Json Range(HRESULT hr, const KEPString& min, const KEPString& max, const KEPString& step) {
  if (FAILED(hr)) return nullptr;
  return Json{{"min", min}, {"max", max}, {"step", step.empty() ? Json(nullptr) : Json(step)}};
}

// The readers that both behaviours offer are asked of the immersive one, and of the classic one
// for a type without immersive behaviour (light profiles).
struct Behaviours {
  KEP_var<KEPIRshParameterImmLayout> imm;
  KEP_var<KEPIRshParameterDialog> dlg;

  template <class F>
  HRESULT Shared(F&& read) {
    if (imm) return read(*imm);
    if (dlg) return read(*dlg);
    return E_NOINTERFACE;
  }
};

Json Value(KEPIRshParameter& parameter, const std::string& type) {
  if (type == "KEPRmaBoolean") {
    unsigned char b = 0;
    if (SUCCEEDED(parameter.GetBooleanValue(b))) return b != 0;
  } else if (type == "KEPRmaInteger") {
    int i = 0;
    if (SUCCEEDED(parameter.GetIntegerValue(i))) return i;
  } else if (type == "KEPRmaScalar") {
    float f = 0;
    if (SUCCEEDED(parameter.GetScalarValue(f))) return std::stod(Number(f));
  } else if (type == "KEPRmaColor") {
    float r = 0, g = 0, b = 0, a = 1;
    if (SUCCEEDED(parameter.GetColorValue(r, g, b, &a)))
      return Json{std::stod(Number(r)), std::stod(Number(g)), std::stod(Number(b)),
                  std::stod(Number(a))};
  } else if (type == "KEPRmaVector") {
    float v[4] = {0, 0, 0, 0};
    if (SUCCEEDED(parameter.GetVectorValue(v))) {
      Json list = Json::array();
      for (int i = 0; i < parameter.GetVectorDimension() && i < 4; ++i)
        list.push_back(std::stod(Number(v[i])));
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

Json Parameter(KEPHostParameter& feature, const std::string& configurationId) {
  KEPIRshParameter& parameter = feature;
  KEPString name, type;
  parameter.GetName(name);
  parameter.GetTypeName(type);
  Behaviours b{KEPQueryVar<KEPIRshParameterImmLayout>(&feature),
               KEPQueryVar<KEPIRshParameterDialog>(&feature)};

  Json json;
  json["name"] = name;
  json["type"] = type;
  json["value"] = Value(parameter, type);
  KEP_var<KEPIRshShader> connected;
  KEPString connectedId;
  if (SUCCEEDED(parameter.GetConnectedShader(*connected.Out())) && connected)
    connected->GetId(connectedId);
  json["connected"] = connectedId.empty() ? Json(nullptr) : Json(connectedId);

  auto widget = [](auto* behaviour) -> Json {
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
  };
  json["widget"] = widget(b.imm.Get());
  json["classicWidget"] = widget(b.dlg.Get());

  KEPString min, max, step;
  json["range"] = b.imm ? Range(b.imm->GetRange(min, max, step), min, max, step) : Json(nullptr);
  min.clear(), max.clear(), step.clear();
  json["classicRange"] =
      b.dlg ? Range(b.dlg->GetRange(min, max, step), min, max, step) : Json(nullptr);

  double low = 0, high = 0, stepValue = 0;
  int precision = 0;
  json["softRange"] = b.imm && SUCCEEDED(b.imm->GetSoftRange(low, high))
                          ? Json{{"min", low}, {"max", high}}
                          : Json(nullptr);
  json["hardRange"] = b.imm && SUCCEEDED(b.imm->GetHardRange(low, high))
                          ? Json{{"min", low}, {"max", high}}
                          : Json(nullptr);
  json["step"] = b.imm && SUCCEEDED(b.imm->GetStep(stepValue)) ? Json(stepValue) : Json(nullptr);
  json["precision"] =
      b.imm && SUCCEEDED(b.imm->GetDecimalPrecision(precision)) ? Json(precision) : Json(nullptr);

  KEPString unitName;
  if (SUCCEEDED(b.Shared([&](auto& r) { return r.GetUnitName(unitName); }))) {
    Json unit{{"name", unitName}, {"symbol", nullptr}, {"factor", nullptr}};
    KEP_var<KEPICkeUnit> object;
    if (SUCCEEDED(b.Shared([&](auto& r) { return r.GetUnit(*object.Out()); })) && object)
      unit["symbol"] = object->Symbol().ToUTF8();
    float factor = 1.0f;
    if (b.imm && SUCCEEDED(b.imm->ConvertToModelUnit(factor))) unit["factor"] = factor;
    json["unit"] = unit;
  } else {
    json["unit"] = nullptr;
  }

  KEPString magnitudeName;
  if (b.imm && SUCCEEDED(b.imm->GetMagnitudeName(magnitudeName))) {
    KEP_var<KEPICkeMagnitude> magnitude;
    const bool known = SUCCEEDED(b.imm->GetMagnitude(*magnitude.Out())) && magnitude;
    json["magnitude"] = Json{{"name", magnitudeName}, {"known", known}};
  } else {
    json["magnitude"] = nullptr;
  }

  KEPUnicodeString group;
  if (SUCCEEDED(b.Shared([&](auto& r) { return r.GetGroup(group); }))) {
    KEPString display;
    const bool named = SUCCEEDED(KEPRbaConfiguration::GetHierarchicalValue(
        configurationId, group.ToUTF8() + ".Name", display));
    json["group"] = Json{{"key", group.ToUTF8()}, {"name", named ? Json(display) : Json(nullptr)}};
  } else {
    json["group"] = nullptr;
  }

  KEPString text;
  json["sortingOrder"] = SUCCEEDED(b.Shared([&](auto& r) { return r.GetSortingOrder(text); }))
                             ? Json(text)
                             : Json(nullptr);

  Json enumeration = Json::array();
  for (int i = 0; i < kMaxEnumEntries; ++i) {
    KEPUnicodeString label;
    if (FAILED(b.Shared([&](auto& r) { return r.GetEnumLabel(i, label); }))) break;
    int value = 0;
    const bool hasValue = SUCCEEDED(b.Shared([&](auto& r) { return r.GetEnumValue(i, value); }));
    enumeration.push_back(
        Json{{"label", label.ToUTF8()}, {"value", hasValue ? Json(value) : Json(nullptr)}});
  }
  json["enumeration"] = enumeration.empty() ? Json(nullptr) : enumeration;

  Json labels = Json::array();
  for (int i = 0; i < kMaxLabels; ++i) {
    KEPUnicodeString label;
    if (FAILED(b.Shared([&](auto& r) { return r.GetLabel(i, label); }))) break;
    labels.push_back(label.ToUTF8());
  }
  json["labels"] = labels.empty() ? Json(nullptr) : labels;

  text.clear();
  const HRESULT connectable = b.Shared([&](auto& r) { return r.GetConnectableState(text); });
  json["connectable"] = SUCCEEDED(connectable) || !text.empty() ? Json(text) : Json(nullptr);

  text.clear();
  json["layerGroup"] = SUCCEEDED(b.Shared([&](auto& r) { return r.GetLayerGroupName(text); }))
                           ? Json(text)
                           : Json(nullptr);

  KEPUnicodeString description;
  json["description"] = SUCCEEDED(b.Shared([&](auto& r) { return r.GetDescription(description); }))
                            ? Json(description.ToUTF8())
                            : Json(nullptr);

  KEPUnicodeString tooltipText;
  KEPString tooltipImage;
  const bool hasImage = b.imm && SUCCEEDED(b.imm->GetTooltip(tooltipText, tooltipImage));
  if (!tooltipText.IsEmpty() || hasImage) {
    json["tooltip"] =
        Json{{"text", tooltipText.IsEmpty() ? Json(nullptr) : Json(tooltipText.ToUTF8())},
             {"image", hasImage ? Json(tooltipImage) : Json(nullptr)}};
  } else {
    json["tooltip"] = nullptr;
  }

  text.clear();
  json["default"] =
      SUCCEEDED(b.Shared([&](auto& r) { return r.GetDefault(text); })) ? Json(text) : Json(nullptr);
  return json;
}

Json Node(KEPHostShaderNode& node) {
  KEPString configurationId;
  node.GetConfigurationId(configurationId);
  KEPUnicodeString alias;
  node.GetAlias(alias);
  Json json;
  json["id"] = node.Id();
  json["type"] = node.TypeName();
  json["alias"] = alias.ToUTF8();
  json["configuration"] = configurationId;
  json["parameters"] = Json::array();
  for (const auto& parameter : node.Parameters())
    json["parameters"].push_back(Parameter(*parameter, configurationId));
  return json;
}

// --- Text form

std::string Scalar(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>() ? "true" : "false";
  if (value.is_number()) return Number(value.get<double>());
  std::string text;
  if (value.is_array()) {
    for (const Json& item : value) text += (text.empty() ? "" : " ") + Scalar(item);
    return text;
  }
  if (value.contains("image")) return Scalar(value["image"]);
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string Text(const std::string& key, const Json& value) {
  if (value.is_null()) return "-";
  if (key == "widget" || key == "classicWidget")
    return Scalar(value["kind"]) + (value["configured"].get<bool>() ? "" : " (default)") +
           (value["known"].get<bool>() ? "" : " (not a kind these widgets know)");
  if (key == "range" || key == "classicRange" || key == "softRange" || key == "hardRange") {
    std::string text = Scalar(value["min"]) + " .. " + Scalar(value["max"]);
    if (value.contains("step") && !value["step"].is_null())
      text += ", step " + Scalar(value["step"]);
    return text;
  }
  if (key == "unit") {
    std::string text = Scalar(value["name"]);
    if (!value["symbol"].is_null())
      text += ", symbol " + Scalar(value["symbol"]);
    else
      text += ", not in the unit dictionary";
    if (!value["factor"].is_null()) text += ", factor " + Scalar(value["factor"]);
    return text;
  }
  if (key == "magnitude")
    return Scalar(value["name"]) + (value["known"].get<bool>() ? "" : " (unknown magnitude)");
  if (key == "group")
    return Scalar(value["key"]) +
           (value["name"].is_null() ? "" : " \"" + Scalar(value["name"]) + "\"");
  if (key == "enumeration") {
    std::string text;
    for (const Json& entry : value)
      text += (text.empty() ? "" : ", ") + Scalar(entry["label"]) + "=" + Scalar(entry["value"]);
    return text;
  }
  if (key == "labels") {
    std::string text;
    for (const Json& label : value) text += (text.empty() ? "" : ", ") + Scalar(label);
    return text;
  }
  if (key == "tooltip") {
    std::string text = Scalar(value["text"]);
    if (!value["image"].is_null()) text += " (image " + Scalar(value["image"]) + ")";
    return text;
  }
  if (key == "precision") return Scalar(value) + (value == 1 ? " decimal" : " decimals");
  return Scalar(value);
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
    return type.rfind("KEPRma", 0) == 0 ? type.substr(6) : type;
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
      {"parameter", [](const Json& p) { return Scalar(p["name"]); }},
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
  out << "  (* default widget kind: none configured; ? configured word unknown to the type)\n";
}

void PrintText(const Json& node, std::ostream& out) {
  static const std::pair<const char*, const char*> kRows[] = {
      {"value", "value"},
      {"connected", "connected"},
      {"widget", "widget"},
      {"classicWidget", "classic widget"},
      {"range", "range"},
      {"classicRange", "classic range"},
      {"softRange", "soft range"},
      {"hardRange", "hard range"},
      {"step", "step"},
      {"precision", "precision"},
      {"unit", "unit"},
      {"magnitude", "magnitude"},
      {"group", "group"},
      {"sortingOrder", "sorting order"},
      {"enumeration", "enumeration"},
      {"labels", "labels"},
      {"connectable", "connectable"},
      {"layerGroup", "layer group"},
      {"description", "description"},
      {"tooltip", "tooltip"},
      {"default", "default"},
  };
  out << "Node " << Scalar(node["id"]) << "  type " << Scalar(node["type"]) << "  alias \""
      << Scalar(node["alias"]) << "\"  configuration " << Scalar(node["configuration"]) << "  ("
      << node["parameters"].size() << " parameters)\n\n";
  PrintSummary(node["parameters"], out);
  for (const Json& parameter : node["parameters"]) {
    out << "\n" << Scalar(parameter["name"]) << "  (" << Scalar(parameter["type"]) << ")\n";
    for (const auto& [key, label] : kRows) {
      // The widget rows always show, so that the default kind an editor falls back to is seen.
      const bool always =
          std::string_view(key) == "widget" || std::string_view(key) == "classicWidget";
      if (parameter[key].is_null() && !always) continue;
      std::string padded = label;
      padded.resize(16, ' ');
      out << "  " << padded << Text(key, parameter[key]) << "\n";
    }
  }
}
}  // namespace

int RunParamsCommand(RshviewContext& context) {
  std::vector<KEPHostShaderNode*> nodes;
  if (const int code = RshviewSelectNodes(context, "params", nodes)) return code;
  const std::string& wanted = context.options.node;

  Json all = Json::array();
  for (KEPHostShaderNode* node : nodes) all.push_back(Node(*node));
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
