#include "RshviewServeSession.h"

#include <stdlib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <random>
#include <sstream>
#include <string_view>

#include "KEPHostShaderNode.h"
#include "KEPHostValueJson.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshModelEvents.h"
#include "KEPShaderDocumentWriter.h"
#include "KEPVidTree.h"
#include "RshviewCompactTree.h"
#include "RshviewDefaultValue.h"
#include "RshviewEditorDiff.h"
#include "RshviewEditorView.h"
#include "RshviewLabelParameter.h"
#include "RshviewReadFile.h"
#include "RshviewRecovery.h"
#include "RshviewUnits.h"
#include "RshviewViewer.h"

namespace {
namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

std::string Absolute(const std::string& path) {
  std::error_code ec;
  const fs::path absolute = fs::absolute(path, ec);
  return ec ? path : absolute.lexically_normal().string();
}

std::string Lower(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

/// The node each connected parameter of `node` leads to, in parameter order.
std::vector<std::pair<std::string, KEPHostShaderNode*>> SubShaders(
    const KEPHostShaderDocument& document, const KEPHostShaderNode& node) {
  std::vector<std::pair<std::string, KEPHostShaderNode*>> list;
  for (const auto& parameter : node.Parameters()) {
    KEP_var<KEPIRshShader> connected;
    if (FAILED(parameter->GetConnectedShader(*connected.Out())) || !connected) continue;
    KEPString name, id;
    parameter->GetName(name);
    connected->GetId(id);
    if (KEPHostShaderNode* target = document.FindNode(id)) list.emplace_back(name, target);
  }
  return list;
}

std::string NewInstanceId() {
  std::random_device device;
  std::mt19937_64 random(
      (std::uint64_t{device()} << 32) ^ device() ^
      static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()));
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(random()));
  return text;
}

std::string EditorKey(const std::string& client, const std::string& node, bool classic,
                      bool restricted) {
  return client + '\n' + node + '\n' +
         (classic      ? "classic"
          : restricted ? "restricted"
                       : "immersive");
}
}  // namespace

RshviewServeSession::RshviewServeSession(RshviewContext& context, RshviewEventStream& events)
    : context_(context),
      events_(events),
      log_(*context.document, fs::path(context.options.doc).parent_path().string()),
      instance_(NewInstanceId()) {
  RshviewEnsureStartupPath(context.options.library);
  observer_ = KEPRshModelEvents::AddParameterObserver(
      [this](KEPIRshParameter* parameter, KEPRshParameterChangeKind kind) {
        NoteWrite(parameter, kind);
      });
}

RshviewServeSession::~RshviewServeSession() {
  KEPRshModelEvents::RemoveObserver(observer_);
  editors_.clear();
}

Json RshviewServeSession::Origin(const std::string& client) {
  return client.empty() ? Json(nullptr) : Json(client);
}

void RshviewServeSession::NoteWrite(KEPIRshParameter* parameter, KEPRshParameterChangeKind kind) {
  // Whichever editor or request wrote it, the trees written before may show the old value.
  ++stamp_;
  dirty_ = true;
  // A node the connection dialog made is taken in before the change that connects it, so that
  // its own writes read from its first values.
  Json created = Json::array();
  for (Json& made : log_.NewNodes()) {
    created_.push_back(made);
    created.push_back(std::move(made));
  }
  if (kind == KEPRshParameterChangeKind::Connection) {
    // Told apart from a value write: the page reads the document (its node list and tree) again.
    Json connection = log_.Connection(parameter);
    connections_.push_back(connection);
    connection["created"] = std::move(created);
    connection["revision"] = ++revision_;
    connection["origin"] = Origin(client_);
    events_.Publish("connection", connection);
    // The editor that made it refreshed its own row; a classic editor follows connections itself.
    // Every other immersive editor may nest or list the changed slot: built again before its next
    // use, it shows the rows the connection added or removed (and a new view).
    for (auto& [key, open] : editors_)
      if (!open->classic && open.get() != acting_) open->rebuild = true;
    return;
  }
  Json write = log_.Write(parameter);
  writes_.push_back(write);
  write["revision"] = ++revision_;
  write["origin"] = Origin(client_);
  events_.Publish("write", write);
}

KEPHostShaderNode* RshviewServeSession::FindNode(const std::string& id, RshviewReply& reply) const {
  KEPHostShaderNode* node = context_.document->FindNode(id);
  if (!node)
    reply = RshviewReply::Error(404, "unknown node",
                                "no node '" + id + "' in " + Absolute(context_.options.doc));
  return node;
}

void RshviewServeSession::Snapshot(OpenEditor& open) {
  if (open.snapshot && open.snapshotStamp == stamp_) return;
  open.snapshot = std::make_unique<RshviewWidgetText>(KEPVidToJsonText(open.editor.Editor()));
  open.snapshotStamp = stamp_;
  open.compact.reset();
  open.view.clear();
}

const std::string& RshviewServeSession::ViewOf(OpenEditor& open) {
  Snapshot(open);
  if (open.view.empty())
    open.view = RshviewEditorView(*open.snapshot, RshviewJsonText(RshviewUnitsJson()));
  return open.view;
}

RshviewServeSession::OpenEditor* RshviewServeSession::OpenEditorOf(KEPHostShaderNode* node,
                                                                   bool classic, bool restricted,
                                                                   const std::string& client,
                                                                   const std::string& view,
                                                                   RshviewReply& reply) {
  const std::string key = EditorKey(client, node->Id(), classic, restricted);
  auto kept = editors_.find(key);
  if (kept == editors_.end()) {
    auto made = std::make_unique<OpenEditor>();
    made->node = node->Id();
    made->classic = classic;
    made->restricted = restricted;
    std::string message;
    if (!made->editor.Build(node, restricted, message, classic)) {
      reply = RshviewReply::Error(404, "no editor", message);
      return nullptr;
    }
    if (editors_.size() >= kMaxOpenEditors)
      editors_.erase(std::min_element(editors_.begin(), editors_.end(), [](auto& a, auto& b) {
        return a.second->lastUse < b.second->lastUse;
      }));
    kept = editors_.emplace(key, std::move(made)).first;
  }
  OpenEditor& open = *kept->second;
  open.lastUse = ++uses_;
  if (open.rebuild) {
    std::string message;
    if (!open.editor.Build(node, restricted, message, classic)) {
      editors_.erase(kept);
      reply = RshviewReply::Error(404, "no editor", message);
      return nullptr;
    }
    open.rebuild = false;
    open.snapshot.reset();
  }
  if (!view.empty()) {
    if (ViewOf(open) != view) {
      // The event's path was read from a tree whose widgets stood for other things.
      reply = RshviewReply::Error(
          409, "stale editor",
          "the " +
              std::string(classic      ? "classic"
                          : restricted ? "restricted"
                                       : "immersive") +
              " editor of node '" + node->Id() + "' no longer shows what it showed in view " +
              view + " (now " + open.view +
              ": the units changed, a connection changed its rows, or it was left in another "
              "state): fetch it again and repeat the change");
      return nullptr;
    }
  }
  return &open;
}

RshviewReply RshviewServeSession::Document() {
  const KEPHostShaderDocument& document = *context_.document;
  std::map<const KEPHostShaderNode*, std::string> parents;
  std::vector<Json> nodes;
  for (const auto& node : document.Nodes()) {
    Json subShaders = Json::array();
    for (const auto& [parameter, target] : SubShaders(document, *node)) {
      subShaders.push_back({{"parameter", parameter}, {"node", target->Id()}});
      parents.try_emplace(target, node->Id());
    }
    // Each parameter with the label the editors show for it (its alias, else its name): the
    // front-end finds the parameter of a label it is asked to reset through these.
    Json parameters = Json::array();
    for (const auto& parameter : node->Parameters()) {
      KEPString name;
      KEPUnicodeString label;
      parameter->GetName(name);
      parameter->GetAlias(label);
      parameters.push_back({{"name", name}, {"label", label.ToUTF8()}});
    }
    KEPUnicodeString alias;
    node->GetAlias(alias);
    const KEPHostShaderTypeDefinition* type = document.Library()->FindType(node->TypeName());
    const bool root = std::find(document.materials.begin(), document.materials.end(), node->Id()) !=
                      document.materials.end();
    std::string kind = "other";
    if (type && type->isTexture)
      kind = "texture";
    else if (root)
      kind = Lower(node->TypeName()).find("light") != std::string::npos ? "light" : "material";
    nodes.push_back({{"id", node->Id()},
                     {"alias", alias.ToUTF8()},
                     {"type", node->TypeName()},
                     {"kind", kind},
                     {"root", root},
                     {"parent", nullptr},
                     {"subShaders", std::move(subShaders)},
                     {"parameters", std::move(parameters)}});
  }
  // A sub-shader is listed under the node that holds it (where the document keeps it), else under
  // the first node connected to it.
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (nodes[i]["root"].get<bool>()) continue;
    KEPHostShaderNode* node = document.Nodes()[i].Get();
    KEPBaseUnknown* father = nullptr;
    if (SUCCEEDED(node->GetFather(father)) && father) {
      const auto held = KEP_var<KEPBaseUnknown>::Adopt(father);
      if (const auto* holder = dynamic_cast<const KEPHostShaderNode*>(held.Get())) {
        nodes[i]["parent"] = holder->Id();
        continue;
      }
    }
    const auto parent = parents.find(node);
    if (parent != parents.end()) nodes[i]["parent"] = parent->second;
  }
  Json units = Json::object();
  const Json all = RshviewUnitsJson();
  for (const auto& [magnitude, value] : all.items()) units[magnitude] = value["unit"];
  const std::string path = Absolute(context_.options.doc);
  Json answer{{"path", path},           {"library", Absolute(context_.options.library)},
              {"saved", !dirty_},       {"instance", instance_},
              {"revision", Revision()}, {"units", units}};
  // Changes a stop could not save into the document, while it is not saved after them.
  if (const auto recovery = RshviewFindRecovery(path))
    answer["recovery"] = {
        {"path", recovery->path}, {"modified", recovery->modified}, {"count", recovery->count}};
  answer["nodes"] = std::move(nodes);
  return RshviewReply::Json(answer);
}

RshviewReply RshviewServeSession::Editor(const std::string& id, const std::string& kind,
                                         bool restricted, const std::string& client, bool compact) {
  RshviewReply reply;
  KEPHostShaderNode* node = FindNode(id, reply);
  if (!node) return reply;
  OpenEditor* open = OpenEditorOf(node, kind == "classic", restricted, client, {}, reply);
  if (!open) return reply;
  // The tree written for the last request or event serves again while nothing changed since:
  // a large editor's tree takes longer to write and read than to send.
  Snapshot(*open);
  // The tree is written as text directly, as `rshview dump --format json` writes it.
  const Json head{{"node", node->Id()},       {"type", node->TypeName()}, {"editorKind", kind},
                  {"restricted", restricted}, {"view", ViewOf(*open)},    {"revision", Revision()}};
  const std::string* tree = &open->snapshot->Text();
  std::string_view defaults;
  if (compact) {
    if (!open->compact) open->compact = RshviewCompactTree(*tree).value_or(std::string());
    // A tree the compact writer cannot read (none the host writes) goes out whole.
    if (!open->compact->empty()) {
      tree = &*open->compact;
      defaults = RshviewCompactDefaults();
    }
  }
  const std::string headText = RshviewJsonText(head);
  const std::string_view headOpen(headText.data(), headText.size() - 1);  // without its brace
  static constexpr std::string_view kDefaultsKey = ",\"defaults\":";
  static constexpr std::string_view kEditorKey = ",\"editor\":";
  // Made at its final size in one go: the tree is megabytes for a large node.
  std::string text;
  text.reserve(headOpen.size() + kDefaultsKey.size() + defaults.size() + kEditorKey.size() +
               tree->size() + 1);
  text.append(headOpen);
  if (!defaults.empty()) text.append(kDefaultsKey).append(defaults);
  text.append(kEditorKey).append(*tree).push_back('}');
  return RshviewReply{200, std::move(text), kRshviewJsonType};
}

template <class Change>
RshviewReply RshviewServeSession::Changed(OpenEditor& open, const std::string& client,
                                          Change change) {
  KEPVidWidget* editor = open.editor.Editor();
  Snapshot(open);
  writes_ = Json::array();
  connections_ = Json::array();
  created_ = Json::array();
  client_ = client;
  acting_ = &open;
  const std::optional<RshviewReply> refused = change();
  acting_ = nullptr;
  // A node made without a connection change (a dialog that created it and connected nothing).
  for (Json& made : log_.NewNodes()) created_.push_back(std::move(made));
  client_.clear();
  ++stamp_;
  auto after = std::make_unique<RshviewWidgetText>(KEPVidToJsonText(editor));
  // A refusal still answers what was done before it: the writes went out on the stream already,
  // and the tab that asked ignores its own there. Its error and detail come first.
  std::string text = "{";
  if (refused && refused->body.size() > 2 && refused->body.back() == '}')
    text.append(refused->body, 1, refused->body.size() - 2).push_back(',');
  // Written as text: the changed subtrees go out as the tree's own text.
  text += "\"writes\":" + RshviewJsonText(writes_) +
          ",\"connections\":" + RshviewJsonText(connections_) +
          ",\"created\":" + RshviewJsonText(created_) + ",\"changed\":" +
          RshviewChangedWidgetsJson(RshviewChangedWidgets(*open.snapshot, *after)) +
          ",\"revision\":" + std::to_string(Revision());
  writes_ = Json::array();
  connections_ = Json::array();
  created_ = Json::array();
  open.snapshot = std::move(after);
  open.snapshotStamp = stamp_;
  open.compact.reset();
  open.view = RshviewEditorView(*open.snapshot, RshviewJsonText(RshviewUnitsJson()));
  text += ",\"view\":\"" + open.view + "\"}";
  return RshviewReply{refused ? refused->status : 200, std::move(text), kRshviewJsonType};
}

RshviewReply RshviewServeSession::Event(const std::string& id, const RshviewEditorEvent& event,
                                        const std::string& client) {
  RshviewReply reply;
  KEPHostShaderNode* node = FindNode(id, reply);
  if (!node) return reply;
  KEPVidAction action;
  if (!KEPVidParseAction(event.action, action))
    return RshviewReply::Error(400, "bad request",
                               "unknown action '" + event.action +
                                   "' (set, type, press, toggle, select, expand, collapse, color, "
                                   "choose, open, close, drag, ok, cancel)");
  OpenEditor* open =
      OpenEditorOf(node, event.editor == "classic", event.restricted, client, event.view, reply);
  if (!open) return reply;
  return Changed(*open, client, [&]() -> std::optional<RshviewReply> {
    std::string error;
    if (FAILED(KEPVidInject(open->editor.Editor(), event.path, action, event.argument, error)))
      return RshviewReply::Error(422, "refused event", error);
    return std::nullopt;
  });
}

RshviewReply RshviewServeSession::Reset(const std::string& id, const RshviewParameterReset& reset,
                                        const std::string& client) {
  RshviewReply reply;
  KEPHostShaderNode* node = FindNode(id, reply);
  if (!node) return reply;
  KEPHostParameter* parameter = nullptr;
  // A stale view is refused before anything is resolved.
  OpenEditor* open =
      OpenEditorOf(node, reset.editor == "classic", reset.restricted, client, reset.view, reply);
  if (!open) return reply;
  if (!reset.path.empty()) {
    // The label is resolved in the editor as it stands: the shader its classic frame shows, the
    // sub-shader whose immersive editor holds the row.
    parameter = RshviewParameterOfLabel(open->editor.Editor(), *node, *context_.document,
                                        open->classic, reset.path, reply);
    if (!parameter) return reply;
  } else {
    const auto& parameters = node->Parameters();
    const auto found = std::find_if(parameters.begin(), parameters.end(), [&](const auto& p) {
      KEPString name;
      p->GetName(name);
      return name == reset.parameter;
    });
    if (found == parameters.end()) {
      std::string names;
      for (const auto& p : parameters) {
        KEPString name;
        p->GetName(name);
        names += (names.empty() ? "" : ", ") + name;
      }
      return RshviewReply::Error(404, "unknown parameter",
                                 "node '" + id + "' (type " + node->TypeName() +
                                     ") has no parameter '" + reset.parameter +
                                     "' (parameters: " + names + ")");
    }
    parameter = found->Get();
  }
  const KEPHostShaderNode* owner = parameter->Father() ? parameter->Father() : node;
  KEPString name;
  parameter->GetName(name);
  const KEPHostParameterDefinition* definition =
      RshviewFindDefinition(*context_.document->Library(), owner->TypeName(), name);
  const std::string where = "parameter '" + name + "' of node '" + owner->Id() + "'";
  if (!definition)
    return RshviewReply::Error(
        422, "no default",
        where + ": the library declares no such parameter for type " + owner->TypeName());
  if (definition->defaultValue.type == KEPRmaType::Void)
    return RshviewReply::Error(422, "no default",
                               where + " only takes a connection: it has no value to reset");
  if (definition->defaultValue.type != parameter->Value().type)
    return RshviewReply::Error(422, "no default",
                               where + " holds a " + KEPRmaTypeName(parameter->Value().type) +
                                   " but the library declares a " +
                                   KEPRmaTypeName(definition->defaultValue.type));
  RshviewReply answer = Changed(*open, client, [&]() -> std::optional<RshviewReply> {
    // A parameter that holds its default already is not written: no write, no new revision.
    if (KEPHostValueJson::Write(parameter->Value(), "") ==
        KEPHostValueJson::Write(definition->defaultValue, ""))
      return std::nullopt;
    // The setter writes under the render lock, and the observers (the editors, the event
    // stream) hear of it once the lock is released.
    if (FAILED(RshviewWriteValue(*parameter, definition->defaultValue)))
      return RshviewReply::Error(500, "internal error",
                                 where + ": the default could not be written");
    return std::nullopt;
  });
  // The answer names the parameter taken, which a label's path does not tell the client.
  if (answer.body.starts_with('{'))
    answer.body.insert(
        1, "\"reset\":" + RshviewJsonText({{"node", owner->Id()}, {"parameter", name}}) + ",");
  return answer;
}

RshviewReply RshviewServeSession::Material(const std::string& id) {
  RshviewReply reply;
  KEPHostShaderNode* node = FindNode(id, reply);
  if (!node) return reply;
  const KEPRdgRenderLock lock;  // read as a renderer reads: no write in between
  return RshviewReply::Json(RshviewMaterialAnswers(*node, false));
}

RshviewReply RshviewServeSession::Texture(const std::string& id) {
  RshviewReply reply;
  KEPHostShaderNode* node = FindNode(id, reply);
  if (!node) return reply;
  Json image;
  {
    const KEPRdgRenderLock lock;
    image = RshviewMaterialAnswers(*node, false)["texture"]["image"];
  }
  if (!image.is_object())
    return RshviewReply::Error(404, "no texture",
                               "the material of node '" + id + "' answers no texture image");
  const std::string path = image["path"].get<std::string>();
  std::string content;
  if (!RshviewReadFile(path, content))
    return RshviewReply::Error(404, "no texture", "cannot read " + path);
  // Served as image/png: a file of another kind is not served at all.
  static constexpr std::string_view kPngSignature{"\x89PNG\r\n\x1a\n", 8};
  if (!content.starts_with(kPngSignature))
    return RshviewReply::Error(415, "not a PNG image",
                               "the texture image " + path + " is not a PNG file");
  return RshviewReply{200, std::move(content), "image/png"};
}

RshviewReply RshviewServeSession::Preview(const std::string& id, int size) {
  RshviewReply reply;
  KEPHostShaderNode* node = FindNode(id, reply);
  if (!node) return reply;
  RshviewSphereMaterial material;
  {
    const KEPRdgRenderLock lock;  // only the answers are read under the lock, not the drawing
    if (!RshviewAskSphereMaterial(node, material))
      return RshviewReply::Error(500, "internal error",
                                 "the module's hardware material is not registered");
  }
  // The PNG is written in a folder of this process's own (mode 0700), then read back.
  std::error_code ec;
  std::string folder = (fs::temp_directory_path(ec) / "rshview-preview-XXXXXX").string();
  if (ec || !::mkdtemp(folder.data()))
    return RshviewReply::Error(500, "internal error",
                               "cannot make a temporary folder for the preview in " +
                                   fs::temp_directory_path(ec).string());
  const std::string file = (fs::path(folder) / "preview.png").string();
  std::string error, content;
  const bool written = RshviewWriteSpherePreview(material, size, file, error);
  const bool read = written && RshviewReadFile(file, content);
  fs::remove_all(folder, ec);
  if (!written) return RshviewReply::Error(500, "internal error", error);
  if (!read) return RshviewReply::Error(500, "internal error", "cannot read " + file);
  return RshviewReply{200, std::move(content), "image/png"};
}

RshviewReply RshviewServeSession::Units() {
  return RshviewReply::Json(RshviewUnitsJson());
}

RshviewReply RshviewServeSession::SetUnits(const nlohmann::json& body, const std::string& client) {
  const Json current = RshviewUnitsJson();
  std::string list, keys = "persist";
  for (const auto& [magnitude, value] : current.items()) keys += ", " + magnitude;
  bool persist = false;
  for (const auto& [key, value] : body.items()) {
    if (key == "persist") {
      if (!value.is_boolean())
        return RshviewReply::Error(400, "bad request", "'persist' must be true or false");
      persist = value.get<bool>();
      continue;
    }
    if (!current.contains(key)) {
      std::string message = "unknown key '";
      message.append(key).append("' (keys: ").append(keys).append(")");
      return RshviewReply::Error(400, "bad request", message);
    }
    if (!value.is_string())
      return RshviewReply::Error(400, "bad request", "'" + key + "' must be a unit's name");
    list += (list.empty() ? "" : ",") + key + "=" + value.get<std::string>();
  }
  // Checked whole before anything changes: a bad unit leaves every unit as it was.
  std::string message;
  if (!list.empty() && !RshviewApplyUnits(list, message)) {
    if (message.starts_with("--units: ")) message.erase(0, 9);
    return RshviewReply::Error(400, "bad request", message);
  }
  if (persist && !RshviewStoreUnits(message)) {
    // The units are process-wide and were changed to be stored: they go back to what the open
    // editors show, so that a failed request changes nothing.
    std::string previous, ignored;
    for (const auto& [magnitude, value] : current.items())
      previous +=
          (previous.empty() ? "" : ",") + magnitude + "=" + value["unit"].get<std::string>();
    if (!previous.empty()) RshviewApplyUnits(previous, ignored);
    return RshviewReply::Error(500, "internal error", message);
  }
  const Json now = RshviewUnitsJson();
  // Nothing changed (an empty body, or the units already shown): no rebuild and no event.
  if (now == current) return RshviewReply::Json(now);
  // The editors show values in the display units they were built with: build them afresh.
  ++stamp_;
  // One that fails is dropped: the next request builds it again or answers why it cannot.
  for (auto it = editors_.begin(); it != editors_.end();) {
    OpenEditor& open = *it->second;
    KEPHostShaderNode* node = context_.document->FindNode(open.node);
    std::string error = "node '" + open.node + "' is no longer in the document";
    if (node && open.editor.Build(node, open.restricted, error, open.classic)) {
      ++it;
      continue;
    }
    context_.err << "rshview serve: " << error << "\n";
    it = editors_.erase(it);
  }
  Json announced = Json::object();
  for (const auto& [magnitude, value] : now.items()) announced[magnitude] = value["unit"];
  announced["revision"] = ++revision_;
  announced["origin"] = Origin(client);
  events_.Publish("units", announced);
  return RshviewReply::Json(now);
}

RshviewReply RshviewServeSession::Save(const std::string& client) {
  const std::string path = Absolute(context_.options.doc);
  const KEPLoadResult saved = KEPShaderDocumentWriter::Save(*context_.document, path);
  if (!saved.Ok()) {
    std::string detail;
    for (const std::string& error : saved.Errors()) detail += (detail.empty() ? "" : "\n") + error;
    return RshviewReply::Error(500, "internal error", detail);
  }
  std::error_code ec;
  const auto bytes = fs::file_size(path, ec);
  dirty_ = false;
  const Json answer{{"path", path}, {"bytes", ec ? 0 : bytes}, {"revision", Revision()}};
  Json announced = answer;
  announced["origin"] = Origin(client);
  events_.Publish("saved", announced);
  return RshviewReply::Json(answer);
}
