// rshview serve: the HTTP API as a browser uses it, against a server started in-process on a free
// port (its own thread is the host's UI thread), and the refusals that protect it.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <future>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <thread>
#include <utility>

#include "RshviewRun.h"
#include "RshviewScratch.h"
#include "RshviewServe.h"
#include "RshviewServeSession.h"

namespace {
namespace fs = std::filesystem;
using Json = nlohmann::json;

const char* const kGlossSlider = "ParameterGroup0/ParameterWidget3/scalarSlider";

/// A scratch folder holding the working copy and the preference file of one test.
struct Scratch : RshviewScratch {
  Scratch()
      : RshviewScratch("rshview-serve",
                       {{"KEPRSH_PREFERENCES", "preferences.json"}, {"RSHVIEW_DATA", "data"}}) {}
};

/// `rshview serve --port 0 ARGS...` on a thread of its own, with a client for it; stopped (as
/// Ctrl-C stops it) when it goes away.
class Server {
 public:
  explicit Server(std::vector<std::string> args = {}, int uiTimeoutMs = 10000) {
    control_.uiTimeoutMs = uiTimeoutMs;
    std::promise<int> port;
    auto ready = port.get_future();
    control_.ready = [&port](int p) { port.set_value(p); };
    RshviewSetServeControl(&control_);
    args.insert(args.begin(), {"serve", "--port", "0"});
    thread_ = std::thread([this, args] { outcome_ = Rshview(args); });
    if (ready.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
      control_.stop = true;
      thread_.join();
      ADD_FAILURE() << "the server did not start: " << outcome_.err;
      return;
    }
    port_ = ready.get();
    client_ = std::make_unique<httplib::Client>("127.0.0.1", port_);
    client_->set_read_timeout(20, 0);
  }
  ~Server() { Stop(); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Stops the server and returns how the command ended.
  const Outcome& Stop() {
    if (thread_.joinable()) {
      control_.stop = true;
      thread_.join();
      RshviewSetServeControl(nullptr);
    }
    return outcome_;
  }
  int Port() const { return port_; }
  httplib::Client& Client() { return *client_; }
  std::string Address() const { return "127.0.0.1:" + std::to_string(port_); }

  httplib::Result Post(const std::string& path, const std::string& body,
                       const httplib::Headers& headers = {}) {
    return client_->Post(path.c_str(), headers, body, "application/json");
  }
  Json GetJson(const std::string& path) {
    auto result = client_->Get(path.c_str());
    EXPECT_TRUE(result) << path;
    if (!result) return nullptr;
    EXPECT_EQ(result->status, 200) << path << ": " << result->body;
    return Json::parse(result->body);
  }

 private:
  RshviewServeControl control_;
  std::thread thread_;
  Outcome outcome_{-1, {}, {}};
  int port_ = 0;
  std::unique_ptr<httplib::Client> client_;
};

/// Sends `request` as is on a new connection and returns the status line's code (0 on failure).
int RawStatus(int port, const std::string& request) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  int status = 0;
  if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      send(fd, request.data(), request.size(), 0) == static_cast<ssize_t>(request.size())) {
    char buffer[64] = {};
    if (recv(fd, buffer, sizeof buffer - 1, 0) > 12) status = std::atoi(buffer + 9);
  }
  close(fd);
  return status;
}

/// Sends `request` as is on a new connection and returns all that comes back until the server
/// closes the connection (give "Connection: close") or 10 s pass.
std::string RawExchange(int port, const std::string& request) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  timeval wait{10, 0};
  setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  std::string reply;
  if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
      send(fd, request.data(), request.size(), MSG_NOSIGNAL) ==
          static_cast<ssize_t>(request.size())) {
    char buffer[4096];
    for (ssize_t got; (got = recv(fd, buffer, sizeof buffer, 0)) > 0;)
      reply.append(buffer, static_cast<std::size_t>(got));
  }
  close(fd);
  return reply;
}

/// The status code and the JSON body of a raw HTTP reply.
std::pair<int, Json> StatusAndBody(const std::string& reply) {
  const std::size_t body = reply.find("\r\n\r\n");
  if (reply.size() < 12 || body == std::string::npos) return {0, nullptr};
  return {std::atoi(reply.c_str() + 9), Json::parse(reply.substr(body + 4), nullptr, false)};
}

/// The first widget of `tree` for which `match` holds, or null.
const Json* FindWidget(const Json& tree, const std::function<bool(const Json&)>& match) {
  if (match(tree)) return &tree;
  for (const Json& child : tree["children"])
    if (const Json* found = FindWidget(child, match)) return found;
  return nullptr;
}

std::string EventBody(const std::string& path, const std::string& argument,
                      const std::string& action = "set") {
  return Json{{"action", action}, {"path", path}, {"argument", argument}}.dump();
}

TEST(RshviewServe, ListsTheWorkingCopyOfTheShowroomWithEveryNode) {
  Scratch scratch;
  Server server;
  const Json document = server.GetJson("/api/document");
  // Without --doc the server edits a working copy, never the bundled sample.
  EXPECT_EQ(document["path"], scratch.Path("data/showroom.rshdoc.json"));
  EXPECT_TRUE(fs::exists(scratch.Path("data/showroom.rshdoc.json")));
  EXPECT_TRUE(fs::is_directory(document["library"].get<std::string>()));
  EXPECT_EQ(document["saved"], true);
  EXPECT_EQ(document["units"]["length"], "mm");
  const Json& nodes = document["nodes"];
  ASSERT_GE(nodes.size(), 4u);
  EXPECT_EQ(nodes[0]["id"], "red_paint");
  EXPECT_EQ(nodes[0]["kind"], "material");
  EXPECT_EQ(nodes[0]["alias"], "Red metallic paint");
  // The paint's flakes share the floor's tiles.
  EXPECT_EQ(nodes[0]["subShaders"], Json::parse(R"([{"parameter": "default_slot_diffuse_texture",
                             "node": "red_paint.decal"},
                            {"parameter": "flake_color", "node": "floor.tiles"}])"));
  // Parameters in the node's order, each with the label its editors show.
  EXPECT_EQ(nodes[0]["parameters"][3],
            Json::parse(R"({"name": "default_generic_brdf_diffuse_glossiness",
                             "label": "default_generic_brdf_diffuse_glossiness"})"));
  EXPECT_EQ(nodes[1]["id"], "red_paint.decal");
  EXPECT_EQ(nodes[1]["kind"], "texture");
  EXPECT_EQ(nodes[1]["parent"], "red_paint");
  EXPECT_EQ(nodes[1]["root"], false);
  std::map<std::string, std::string> kinds;
  std::map<std::string, Json> parents;
  for (const Json& node : nodes) {
    kinds[node["id"]] = node["kind"];
    parents[node["id"]] = node["parent"];
  }
  // A shared sub-shader is listed under the node that holds it, not the first one that uses it.
  EXPECT_EQ(parents["floor.tiles"], "floor");
  EXPECT_EQ(kinds["key_light"], "light");
  EXPECT_EQ(kinds["plaster_wall.bump"], "other");
  EXPECT_EQ(kinds["window"], "material");
  // The copy reads the same library and images as the sample: its material has the checker.
  const Json material = server.GetJson("/api/nodes/red_paint.decal/material");
  EXPECT_EQ(material["id"], "red_paint.decal");
  auto texture = server.Client().Get("/api/nodes/red_paint/texture");
  ASSERT_TRUE(texture);
  EXPECT_EQ(texture->status, 200);
  EXPECT_EQ(texture->get_header_value("Content-Type"), "image/png");
  EXPECT_EQ(texture->body.substr(1, 3), "PNG");
  const Outcome& ended = server.Stop();
  EXPECT_EQ(ended.code, 0) << ended.err;
  EXPECT_NE(ended.out.find("rshview: serving " + scratch.Path("data/showroom.rshdoc.json") +
                           " on http://127.0.0.1:"),
            std::string::npos)
      << ended.out;
  EXPECT_NE(ended.out.find("rshview: stopped"), std::string::npos);
}

/// Fills in a compact widget tree in place, as docs/api.md says a reader does.
void ExpandCompact(Json& widget, const Json& defaults) {
  for (const auto& [key, value] : defaults["widget"].items()) {
    if (!widget.contains(key)) {
      widget[key] = value;
    } else if (value.is_object()) {
      for (const auto& [sub, subValue] : value.items())
        if (!widget[key].contains(sub)) widget[key][sub] = subValue;
    }
  }
  const std::string className = widget.value("class", "");
  if (defaults["state"].contains(className)) {
    Json& state = widget["state"];
    if (!state.is_object()) state = Json::object();
    for (const auto& [key, value] : defaults["state"][className].items())
      if (!state.contains(key)) state[key] = value;
  }
  std::map<std::string, int> names;
  for (Json& child : widget["children"]) {
    const std::string name = child.value("name", "");
    const int earlier = name.empty() ? 0 : names[name]++;
    if (!name.empty() && !child.contains("path") && widget["path"].is_string()) {
      const std::string father = widget["path"];
      child["path"] = (father.empty() ? "" : father + "/") + name +
                      (earlier > 0 ? "[" + std::to_string(earlier) + "]" : "");
    }
    ExpandCompact(child, defaults);
  }
}

TEST(RshviewServe, CompactEditorFilledInIsTheWholeTree) {
  Scratch scratch;
  Server server;
  for (const std::string node : {"red_paint", "red_paint.decal", "floor", "key_light"}) {
    for (const std::string kind : {"immersive", "classic"}) {
      const std::string route = "/api/nodes/" + node + "/editor?editor=" + kind;
      const Json whole = server.GetJson(route);
      const Json compact = server.GetJson(route + "&compact=1");
      EXPECT_FALSE(whole.contains("defaults"));
      ASSERT_TRUE(compact.contains("defaults")) << route;
      EXPECT_LT(compact["editor"].dump().size() * 3, whole["editor"].dump().size() * 2) << route;
      Json filled = compact["editor"];
      ExpandCompact(filled, compact["defaults"]);
      EXPECT_EQ(filled, whole["editor"]) << route;
    }
  }
  // After an event, the compact tree shows the new state too (it is made again).
  const std::string route = "/api/nodes/red_paint/editor?compact=1";
  const Json before = server.GetJson(route);
  ASSERT_EQ(
      server
          .Post("/api/nodes/red_paint/events", R"({"action": "expand", "path": "ParameterGroup2"})")
          ->status,
      200);
  const Json after = server.GetJson(route);
  EXPECT_NE(after["editor"], before["editor"]);
  Json filled = after["editor"];
  ExpandCompact(filled, after["defaults"]);
  EXPECT_EQ(filled, server.GetJson("/api/nodes/red_paint/editor")["editor"]);
}

TEST(RshviewServe, EditorIsTheDumpTreeAndEventsReportWritesAndChangedWidgets) {
  Scratch scratch;
  { Server first; }  // makes the working copy, which the dump reads
  const Outcome dump = Rshview({"dump", "--doc", scratch.Path("data/showroom.rshdoc.json"),
                                "--node", "red_paint", "--format", "json"});
  ASSERT_EQ(dump.code, 0) << dump.err;
  Server server;
  const Json editor = server.GetJson("/api/nodes/red_paint/editor?editor=immersive");
  EXPECT_EQ(editor["editorKind"], "immersive");
  EXPECT_EQ(editor["revision"], 0);
  EXPECT_EQ(editor["editor"], Json::parse(dump.out)["editor"]);
  // A browser accepts compressed answers; the server sends them as they are (compressing a large
  // tree at the library's quality took seconds), and the page's script likewise.
  for (const char* path : {"/api/nodes/red_paint/editor", "/api/document"}) {
    auto plain = server.Client().Get(path, {{"Accept-Encoding", "gzip, deflate, br"}});
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->status, 200);
    EXPECT_FALSE(plain->has_header("Content-Encoding")) << path;
    EXPECT_EQ(plain->get_header_value("Content-Type"), "application/json; charset=utf-8");
  }

  auto moved = server.Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "60"),
                           {{"X-Rshview-Client", "tab-1"}});
  ASSERT_TRUE(moved);
  ASSERT_EQ(moved->status, 200) << moved->body;
  const Json answer = Json::parse(moved->body);
  ASSERT_EQ(answer["writes"].size(), 1u) << answer["writes"];
  EXPECT_EQ(answer["writes"][0]["parameter"], "default_generic_brdf_diffuse_glossiness");
  EXPECT_DOUBLE_EQ(answer["writes"][0]["old"].get<double>(), 0.2);
  EXPECT_DOUBLE_EQ(answer["writes"][0]["new"].get<double>(), 0.6);
  EXPECT_EQ(answer["revision"], 1);
  // The slider moved, and the editor that follows it shows the new value.
  std::vector<std::string> paths;
  for (const Json& changed : answer["changed"]) paths.push_back(changed["path"]);
  const auto has = [&](const std::string& ending) {
    return std::any_of(paths.begin(), paths.end(),
                       [&](const std::string& p) { return p.ends_with(ending); });
  };
  EXPECT_TRUE(has("ParameterWidget3/ScalarLayout/scalarSlider")) << answer["changed"];
  EXPECT_TRUE(has("ParameterWidget3/ScalarLayout/scalarEditor")) << answer["changed"];
  EXPECT_EQ(answer["changed"][0]["widget"]["path"], answer["changed"][0]["path"]);

  // The editor stays open between requests: the next fetch shows the moved slider.
  const Json again = server.GetJson("/api/nodes/red_paint/editor");
  EXPECT_EQ(again["revision"], 1);
  const Json* slider = FindWidget(again["editor"], [](const Json& w) {
    return w["path"].is_string() &&
           w["path"].get<std::string>().ends_with("ParameterWidget3/ScalarLayout/scalarSlider");
  });
  ASSERT_NE(slider, nullptr);
  EXPECT_EQ((*slider)["state"]["value"], 60);
  EXPECT_EQ(server.GetJson("/api/document")["saved"], false);
}

TEST(RshviewServe, ARefusedEventAnswers422AndChangesNothing) {
  Scratch scratch;
  Server server;
  struct Case {
    std::string body;
    std::string detail;
  };
  const Case cases[] = {
      {EventBody("ParameterGroup0/nope", "1"), "segment 2 \"nope\""},
      {EventBody(kGlossSlider, "abc"), "abc"},
      {EventBody(kGlossSlider, "", "press"), "press"},
  };
  for (const Case& c : cases) {
    auto refused = server.Post("/api/nodes/red_paint/events", c.body);
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 422) << c.body << ": " << refused->body;
    const Json error = Json::parse(refused->body);
    EXPECT_EQ(error["error"], "refused event");
    EXPECT_NE(error["detail"].get<std::string>().find(c.detail), std::string::npos)
        << error["detail"];
    // The refusal also says what the event did before it: here, nothing.
    EXPECT_EQ(error["writes"], Json::array()) << error;
    EXPECT_EQ(error["changed"], Json::array()) << error;
  }
  const Json document = server.GetJson("/api/document");
  EXPECT_EQ(document["revision"], 0);
  EXPECT_EQ(document["saved"], true);
}

// A label's reset takes the parameter the editor shows beside it: the sub-shader's after the
// classic frame walked into it or inside a nested immersive editor, never the root's parameter of
// the same position; rows the editor locks are refused.
TEST(RshviewServe, AResetByLabelTakesTheParameterTheEditorShowsThere) {
  Scratch scratch;
  Server server;
  const auto post = [&](const std::string& route, const Json& body) {
    auto result = server.Post(route, body.dump());
    return std::pair{result ? result->status : 0,
                     result ? Json::parse(result->body, nullptr, false) : Json()};
  };
  const Json tilesGamma{{"node", "floor.tiles"}, {"parameter", "gamma"}};
  // Immersive: the floor's editor nests the tiles' editor under its diffuse_texture row.
  ASSERT_EQ(
      post("/api/nodes/floor/events", {{"action", "expand"}, {"path", "ParameterConnectedShader3"}})
          .first,
      200);
  const auto [nested, nestedAnswer] =
      post("/api/nodes/floor/reset",
           {{"path", "ParameterConnectedShader3/ConnectedShaderEditor/ParameterLabel2"}});
  ASSERT_EQ(nested, 200) << nestedAnswer;
  EXPECT_EQ(nestedAnswer["reset"], tilesGamma);
  ASSERT_EQ(nestedAnswer["writes"].size(), 1u) << nestedAnswer;
  EXPECT_EQ(nestedAnswer["writes"][0]["node"], "floor.tiles");
  EXPECT_DOUBLE_EQ(nestedAnswer["writes"][0]["old"].get<double>(), 1.8);
  EXPECT_DOUBLE_EQ(nestedAnswer["writes"][0]["new"].get<double>(), 2.2);

  // Classic: "edit" shows the tiles in the frame, under the label names of the floor's rows.
  ASSERT_EQ(
      post("/api/nodes/floor/events",
           {{"editor", "classic"}, {"action", "press"}, {"path", "connectionMenu14/editItem"}})
          .first,
      200);
  const auto [walked, walkedAnswer] =
      post("/api/nodes/floor/reset", {{"editor", "classic"}, {"path", "parameterLabel3"}});
  ASSERT_EQ(walked, 200) << walkedAnswer;
  EXPECT_EQ(walkedAnswer["reset"], tilesGamma);
  EXPECT_EQ(walkedAnswer["writes"], Json::array()) << "at its default since the reset above";

  struct Case {
    std::string node;
    Json body;
    int status;
    std::string error;
    std::string detail;
  };
  const Case cases[] = {
      // The restricted editor makes the type's widget insensitive.
      {"red_paint",
       {{"restricted", true}, {"path", "ParameterGroup3/ParameterGroup3Layout/ParameterLabel11"}},
       422,
       "locked parameter",
       "'type'"},
      {"red_paint", {{"path", kGlossSlider}}, 422, "no such label", "no parameter label"},
      {"red_paint", {{"path", "ParameterGroup0/nope"}}, 422, "no such label", "segment 2"},
      {"red_paint",
       {{"path", "ParameterLabel3"}, {"parameter", "type"}},
       400,
       "bad request",
       "not both"},
      {"red_paint", {{"path", ""}}, 400, "bad request", "'path'"},
  };
  const Json revision = server.GetJson("/api/document")["revision"];
  for (const Case& c : cases) {
    const auto [status, answer] = post("/api/nodes/" + c.node + "/reset", c.body);
    EXPECT_EQ(status, c.status) << c.body << ": " << answer;
    EXPECT_EQ(answer["error"], c.error) << c.body;
    EXPECT_NE(answer["detail"].dump().find(c.detail), std::string::npos) << answer["detail"];
  }
  EXPECT_EQ(server.GetJson("/api/document")["revision"], revision);
}

namespace {
/// The data of the first event `name` in the text of an event stream, or null.
Json StreamEvent(const std::string& stream, const std::string& name) {
  const std::size_t at = stream.find("event: " + name + "\n");
  if (at == std::string::npos) return nullptr;
  const std::size_t data = stream.find("data: ", at);
  const std::size_t end = stream.find('\n', data);
  if (data == std::string::npos || end == std::string::npos) return nullptr;
  return Json::parse(stream.substr(data + 6, end - data - 6), nullptr, false);
}
}  // namespace

// A connection made through an editor is a connection, not a value write: the answer and the
// stream name the old and new node and the node made for it, and the document lists it.
TEST(RshviewServe, AConnectionIsAnsweredAndStreamedWithTheNodeItMade) {
  Scratch scratch;
  Server server;
  std::promise<void> greeted, connected;
  std::string received;
  std::thread listener([&] {
    httplib::Client client("127.0.0.1", server.Port());
    client.set_read_timeout(30, 0);
    bool sawHello = false, sawConnection = false;
    client.Get("/api/events", [&](const char* data, std::size_t length) {
      received.append(data, length);
      if (!sawHello && StreamEvent(received, "hello").is_object()) {
        sawHello = true;
        greeted.set_value();
      }
      if (!sawConnection && StreamEvent(received, "connection").is_object()) {
        sawConnection = true;
        connected.set_value();
      }
      return true;
    });
  });
  ASSERT_EQ(greeted.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
  auto pressed = server.Post("/api/nodes/floor/events",
                             Json{{"action", "press"}, {"path", "ParameterConnection6"}}.dump(),
                             {{"X-Rshview-Client", "tab-a"}});
  ASSERT_TRUE(pressed);
  ASSERT_EQ(pressed->status, 200) << pressed->body;
  const Json answer = Json::parse(pressed->body);
  const Json made = Json::parse(
      R"([{"id": "kep_phen_texture.1", "type": "kep_phen_texture", "alias": "kep_phen_texture.1"}])");
  EXPECT_EQ(answer["writes"], Json::array()) << answer;
  EXPECT_EQ(answer["connections"], Json::parse(R"([{"node": "floor", "parameter": "refl_color",
      "old": null, "new": "kep_phen_texture.1"}])"));
  EXPECT_EQ(answer["created"], made);
  EXPECT_EQ(answer["revision"], 1);

  ASSERT_EQ(connected.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
  const Json event = StreamEvent(received, "connection");
  EXPECT_EQ(event["node"], "floor");
  EXPECT_EQ(event["parameter"], "refl_color");
  EXPECT_EQ(event["old"], nullptr);
  EXPECT_EQ(event["new"], "kep_phen_texture.1");
  EXPECT_EQ(event["created"], made);
  EXPECT_EQ(event["origin"], "tab-a");
  EXPECT_EQ(event["revision"], 1);
  EXPECT_TRUE(StreamEvent(received, "write").is_null()) << received;

  const Json document = server.GetJson("/api/document");
  EXPECT_EQ(document["saved"], false);
  bool listed = false;
  for (const Json& node : document["nodes"]) {
    if (node["id"] == "kep_phen_texture.1") listed = node["parent"] == "floor";
    if (node["id"] == "floor") {
      EXPECT_NE(node["subShaders"].dump().find("kep_phen_texture.1"), std::string::npos);
    }
  }
  EXPECT_TRUE(listed) << document["nodes"];
  server.Stop();
  listener.join();
}

// Units that cannot be stored for later runs are not changed for this run either: the open
// editors, built in the old unit, and the units answered stay in step.
TEST(RshviewServe, AUnitsChangeThatCannotBeStoredChangesNothing) {
  Scratch scratch;
  // The preference file's folder is a file: nothing can be written there.
  scratch.Write("blocker", "not a folder");
  setenv("KEPRSH_PREFERENCES", scratch.Path("blocker/preferences.json").c_str(), 1);
  Server server;
  const auto before = server.Client().Get("/api/nodes/red_paint/editor");
  ASSERT_TRUE(before);
  auto refused =
      server.Client().Put("/api/units", R"({"length": "cm", "persist": true})", "application/json");
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->status, 500) << refused->body;
  EXPECT_NE(refused->body.find("blocker"), std::string::npos) << refused->body;
  EXPECT_EQ(server.GetJson("/api/units")["length"]["unit"], "mm");
  EXPECT_EQ(server.GetJson("/api/document")["units"]["length"], "mm");
  const auto after = server.Client().Get("/api/nodes/red_paint/editor");
  ASSERT_TRUE(after);
  EXPECT_EQ(after->body, before->body);
}

// A chunked body that never ends is cut off: the server answers 413 and closes the connection
// while the client is still sending, instead of reading for as long as it sends.
TEST(RshviewServe, AChunkedBodyWithoutEndIsCutOff) {
  Scratch scratch;
  Server server;
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  timeval wait{10, 0};
  setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
  setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &wait, sizeof wait);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(server.Port()));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  std::atomic<bool> answered = false;
  std::string reply;
  std::thread reader([&] {
    char buffer[4096];
    for (ssize_t got; (got = recv(fd, buffer, sizeof buffer, 0)) > 0;) {
      reply.append(buffer, static_cast<std::size_t>(got));
      answered = true;
    }
  });
  const std::string head =
      "PUT /api/units HTTP/1.1\r\nHost: " + server.Address() +
      "\r\nContent-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n";
  send(fd, head.data(), head.size(), MSG_NOSIGNAL);
  const std::string chunk = "10000\r\n" + std::string(0x10000, ' ') + "\r\n";
  constexpr std::size_t kCap = std::size_t{64} << 20;
  std::size_t sent = 0;
  while (sent < kCap && !answered &&
         send(fd, chunk.data(), chunk.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(chunk.size()))
    sent += chunk.size();
  shutdown(fd, SHUT_WR);
  reader.join();
  close(fd);
  EXPECT_LT(sent, kCap) << "the server read all that was sent";
  EXPECT_EQ(StatusAndBody(reply).first, 413) << reply.substr(0, 200);
  // The server still answers.
  EXPECT_EQ(server.GetJson("/api/units")["length"]["unit"], "mm");
}

TEST(RshviewServe, AResetWritesTheLibraryDefaultAndRefusesWhatHasNone) {
  Scratch scratch;
  Server server;
  const std::string reset = "/api/nodes/red_paint/reset";
  ASSERT_EQ(server.Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "60"))->status, 200);

  // Refusals first: each names what was wrong and writes nothing.
  struct Case {
    std::string body;
    int status;
    std::string error;
    std::string detail;
  };
  const Case cases[] = {
      {R"({"parameter": "no_such_thing"})", 404, "unknown parameter", "'no_such_thing'"},
      {R"({"parameter": "default_slot_diffuse_texture"})", 422, "no default",
       "only takes a connection"},
      {R"({"parameter": 3})", 400, "bad request", "'parameter'"},
      {R"({"editor": "classic", "restricted": true, "parameter": "x"})", 400, "bad request",
       "restricted"},
      {"{}", 400, "bad request", "'parameter'"},
  };
  for (const Case& c : cases) {
    auto refused = server.Post(reset, c.body);
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, c.status) << c.body << ": " << refused->body;
    const Json error = Json::parse(refused->body);
    EXPECT_EQ(error["error"], c.error) << c.body;
    EXPECT_NE(error["detail"].dump().find(c.detail), std::string::npos) << error["detail"];
  }
  auto unknownNode = server.Post("/api/nodes/nope/reset", R"({"parameter": "x"})");
  EXPECT_EQ(unknownNode->status, 404) << unknownNode->body;
  EXPECT_EQ(server.GetJson("/api/document")["revision"], 1);

  // The moved glossiness goes back to the library's 0.2: written, announced, shown.
  const std::string gloss = R"({"parameter": "default_generic_brdf_diffuse_glossiness"})";
  auto done = server.Post(reset, gloss, {{"X-Rshview-Client", "tab-1"}});
  ASSERT_TRUE(done);
  ASSERT_EQ(done->status, 200) << done->body;
  const Json answer = Json::parse(done->body);
  ASSERT_EQ(answer["writes"].size(), 1u) << answer;
  EXPECT_EQ(answer["writes"][0]["parameter"], "default_generic_brdf_diffuse_glossiness");
  EXPECT_DOUBLE_EQ(answer["writes"][0]["old"].get<double>(), 0.6);
  EXPECT_DOUBLE_EQ(answer["writes"][0]["new"].get<double>(), 0.2);
  EXPECT_EQ(answer["revision"], 2);
  const auto changed = [&](const Json& reply, const std::string& ending) {
    return std::any_of(reply["changed"].begin(), reply["changed"].end(), [&](const Json& c) {
      return c["path"].get<std::string>().ends_with(ending);
    });
  };
  EXPECT_TRUE(changed(answer, "ParameterWidget3/ScalarLayout/scalarSlider")) << answer["changed"];
  const Json editor = server.GetJson("/api/nodes/red_paint/editor");
  const Json* slider = FindWidget(editor["editor"], [](const Json& w) {
    return w["path"].is_string() &&
           w["path"].get<std::string>().ends_with("ParameterWidget3/ScalarLayout/scalarSlider");
  });
  ASSERT_NE(slider, nullptr);
  EXPECT_EQ((*slider)["state"]["value"], 20);

  // Reset again: the value is the default already, so nothing is written or announced.
  auto again = server.Post(reset, gloss);
  ASSERT_EQ(again->status, 200) << again->body;
  EXPECT_EQ(Json::parse(again->body)["writes"], Json::array());
  EXPECT_EQ(Json::parse(again->body)["changed"], Json::array());
  EXPECT_EQ(server.GetJson("/api/document")["revision"], 2);

  // A colour resets whole, alpha included, whichever editor asks.
  auto colour = server.Post("/api/nodes/red_paint/reset",
                            R"({"editor": "classic", "parameter": "default_slot_diffuse_color"})");
  ASSERT_EQ(colour->status, 200) << colour->body;
  const Json colourAnswer = Json::parse(colour->body);
  ASSERT_EQ(colourAnswer["writes"].size(), 1u) << colourAnswer;
  EXPECT_EQ(colourAnswer["writes"][0]["new"].size(), 4u) << colourAnswer["writes"];
  EXPECT_EQ(colourAnswer["writes"][0]["new"], Json::parse("[0.55, 0.03, 0.03, 1.0]"));
  EXPECT_EQ(colourAnswer["revision"], 3);
}

TEST(RshviewServe, AnEditorFetchedAgainShowsWhatAnotherEditorWroteMeanwhile) {
  Scratch scratch;
  Server server;
  const auto gloss = [&] {
    const Json editor = server.GetJson("/api/nodes/red_paint/editor");
    const Json* slider = FindWidget(editor["editor"], [](const Json& w) {
      return w["path"].is_string() &&
             w["path"].get<std::string>().ends_with("ParameterWidget3/ScalarLayout/scalarSlider");
    });
    return std::pair{slider ? (*slider)["state"]["value"] : Json(), editor["revision"]};
  };
  ASSERT_EQ(server.Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "60"))->status, 200);
  // Nothing changed in between: the same answer, byte for byte.
  const auto first = server.Client().Get("/api/nodes/red_paint/editor");
  const auto second = server.Client().Get("/api/nodes/red_paint/editor");
  ASSERT_TRUE(first && second);
  EXPECT_EQ(first->body, second->body);
  EXPECT_EQ(gloss(), std::pair(Json(60), Json(1)));

  // Written through the classic editor (a reset), then by another tab through the immersive one:
  // each next answer shows the new value and revision, not the tree it sent before.
  auto viaClassic =
      server.Post("/api/nodes/red_paint/reset", R"({"editor": "classic", "parameter": )"
                                                R"("default_generic_brdf_diffuse_glossiness"})");
  ASSERT_EQ(viaClassic->status, 200) << viaClassic->body;
  EXPECT_EQ(gloss(), std::pair(Json(20), Json(2)));
  ASSERT_EQ(server
                .Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "45"),
                      {{"X-Rshview-Client", "tab-2"}})
                ->status,
            200);
  EXPECT_EQ(gloss(), std::pair(Json(45), Json(3)));
}

// Each tab works in editors of its own: one walking the classic editor into a sub-shader does not
// change what another tab's label paths mean. An event carries the view of the tree it was made
// on: it is refused once the editor shows other things there (units changed, walked elsewhere),
// and played on an editor built afresh that shows the same (closed to make room, or a restart).
TEST(RshviewServe, EachTabHasItsOwnEditorsAndAnEventIsPlayedOnlyOnTheViewItWasMadeOn) {
  Scratch scratch;
  Server server;
  const auto call = [&](const std::string& client, const std::string& route, Json body) {
    const httplib::Headers headers{{"X-Rshview-Client", client}};
    auto result =
        route.ends_with("editor")
            ? server.Client().Get(("/api/nodes/" + route + "?editor=classic").c_str(), headers)
            : server.Post("/api/nodes/" + route, body.dump(), headers);
    return std::pair{result ? result->status : 0,
                     result ? Json::parse(result->body, nullptr, false) : Json()};
  };
  const std::string floorView = call("tab-a", "floor/editor", {}).second["view"];
  EXPECT_EQ(call("tab-b", "floor/editor", {}).second["view"], floorView) << "the same widgets";
  const Json edit{{"editor", "classic"},
                  {"view", floorView},
                  {"action", "press"},
                  {"path", "connectionMenu14/editItem"}};
  const auto [walked, walkedAnswer] = call("tab-a", "floor/events", edit);
  ASSERT_EQ(walked, 200) << walkedAnswer;
  const std::string tilesView = walkedAnswer["view"];
  EXPECT_NE(tilesView, floorView);
  // Tab B still shows the floor: its label names the floor's own parameter.
  const auto reset = [](const std::string& view) {
    return Json{{"editor", "classic"}, {"path", "parameterLabel3"}, {"view", view}};
  };
  const auto [resetStatus, resetAnswer] = call("tab-b", "floor/reset", reset(floorView));
  ASSERT_EQ(resetStatus, 200) << resetAnswer;
  EXPECT_EQ(resetAnswer["reset"]["node"], "floor");
  EXPECT_EQ(resetAnswer["view"], floorView) << "a value write changes no view";
  EXPECT_EQ(call("tab-a", "floor/reset", reset(tilesView)).second["reset"]["node"], "floor.tiles");
  // Made on the floor's rows, refused on the tiles', events and resets alike, doing nothing.
  const Json before = server.GetJson("/api/document")["revision"];
  const auto [walkedStale, walkedStaleAnswer] = call("tab-a", "floor/reset", reset(floorView));
  EXPECT_EQ(walkedStale, 409);
  EXPECT_EQ(walkedStaleAnswer["error"], "stale editor");
  EXPECT_NE(walkedStaleAnswer["detail"].get<std::string>().find("fetch it again"),
            std::string::npos);
  Json slider{{"editor", "classic"},
              {"view", floorView},
              {"action", "set"},
              {"path", "container/shaderFrame/parameterDialog2/scalarSlider"},
              {"argument", "0.5"}};
  EXPECT_EQ(call("tab-a", "floor/events", slider).first, 409);
  EXPECT_EQ(server.GetJson("/api/document")["revision"], before);

  // The units change builds every editor again, in other units: tab B's view is stale.
  const Json revision = server.GetJson("/api/document")["revision"];
  ASSERT_EQ(server.Client().Put("/api/units", R"({"length": "cm"})", "application/json")->status,
            200);
  EXPECT_EQ(call("tab-b", "floor/reset", reset(floorView)).first, 409);
  EXPECT_EQ(server.GetJson("/api/document")["revision"].get<int>(), revision.get<int>() + 1)
      << "only the units change";
  const std::string cmView = call("tab-b", "floor/editor", {}).second["view"];
  EXPECT_NE(cmView, floorView);
  ASSERT_EQ(call("tab-b", "floor/reset", reset(cmView)).first, 200);

  // The editor used longest ago is closed when a new one would pass the bound (tab A's, built
  // first but used since, stays); an event on a closed one is played on one built afresh when it
  // shows the same, refused otherwise.
  Json editInCm = edit;
  editInCm["view"] = cmView;
  ASSERT_EQ(call("tab-a", "floor/events", editInCm).first, 200);
  const std::string tilesCmView = call("tab-a", "floor/editor", {}).second["view"];
  std::size_t opened = 0;
  const auto open = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      ASSERT_EQ(call("tab-c" + std::to_string(opened++), "floor/editor", {}).first, 200);
  };
  open(RshviewServeSession::kMaxOpenEditors - 2);
  ASSERT_EQ(call("tab-a", "floor/editor", {}).first, 200);
  open(1);
  EXPECT_EQ(call("tab-a", "floor/reset", reset(tilesCmView)).first, 200) << "still walked";
  open(RshviewServeSession::kMaxOpenEditors);
  EXPECT_EQ(call("tab-b", "floor/reset", reset(cmView)).first, 200);
  EXPECT_EQ(call("tab-a", "floor/reset", reset(tilesCmView)).first, 409);
}

// Another tab's connection adds rows to this tab's immersive editor: its next answer shows them
// under another view, and a press made on the old rows is refused rather than undoing it.
TEST(RshviewServe, AConnectionMadeInOneTabShowsInTheImmersiveEditorOfAnother) {
  Scratch scratch;
  Server server;
  const auto editor = [&](const std::string& client) {
    auto result = server.Client().Get("/api/nodes/floor/editor",
                                      httplib::Headers{{"X-Rshview-Client", client}});
    return result ? Json::parse(result->body) : Json();
  };
  const auto icon = [](const Json& answer) {
    const Json* button = FindWidget(answer["editor"], [](const Json& w) {
      return w["path"].is_string() &&
             w["path"].get<std::string>().ends_with("/ParameterConnection6");
    });
    return button ? (*button)["state"]["icon"] : Json();
  };
  const Json before = editor("tab-a");
  EXPECT_EQ(icon(before), "I_RmaConnect.png");
  const Json press{{"action", "press"}, {"path", "ParameterConnection6"}};
  auto made = server.Post("/api/nodes/floor/events", press.dump(), {{"X-Rshview-Client", "tab-b"}});
  ASSERT_EQ(made->status, 200) << made->body;
  ASSERT_EQ(Json::parse(made->body)["connections"].size(), 1u) << made->body;

  const Json after = editor("tab-a");
  EXPECT_EQ(icon(after), "I_RmaDisconnect.png");
  EXPECT_NE(after["view"], before["view"]);
  Json stale = press;
  stale["view"] = before["view"];
  EXPECT_EQ(
      server.Post("/api/nodes/floor/events", stale.dump(), {{"X-Rshview-Client", "tab-a"}})->status,
      409);
  const Json floor = server.GetJson("/api/document")["nodes"][2];
  ASSERT_EQ(floor["id"], "floor");
  EXPECT_EQ(floor["subShaders"].size(), 2u) << floor["subShaders"] << ": the new one stays";
}

TEST(RshviewServe, AUnitsChangeRebuildsTheEditorsInTheNewUnit) {
  Scratch scratch;
  Server server;
  const auto lengthSpinner = [](const Json& w) {
    return w["class"] == "KEPVidCtlDoubleSpinBox" && w["state"].value("suffix", "") != "";
  };
  const Json before = server.GetJson("/api/nodes/red_paint/editor");
  const Json* mm = FindWidget(before["editor"], lengthSpinner);
  ASSERT_NE(mm, nullptr);
  EXPECT_EQ((*mm)["state"]["suffix"], "mm");
  const std::string path = (*mm)["path"];

  auto changed =
      server.Client().Put("/api/units", R"({"length": "cm", "angle": "deg"})", "application/json");
  ASSERT_TRUE(changed);
  ASSERT_EQ(changed->status, 200) << changed->body;
  EXPECT_EQ(Json::parse(changed->body)["length"]["unit"], "cm");
  const Json after = server.GetJson("/api/nodes/red_paint/editor");
  EXPECT_EQ(after["revision"], 1);
  const Json* cm = FindWidget(after["editor"], [&](const Json& w) { return w["path"] == path; });
  ASSERT_NE(cm, nullptr);
  EXPECT_EQ((*cm)["state"]["suffix"], "cm");
  EXPECT_DOUBLE_EQ((*cm)["state"]["minimum"].get<double>(),
                   (*mm)["state"]["minimum"].get<double>() / 10);
  EXPECT_EQ(server.GetJson("/api/document")["units"],
            Json::parse(R"({"length": "cm", "angle": "deg"})"));
  // Not kept for later runs unless asked.
  EXPECT_FALSE(fs::exists(scratch.Path("preferences.json")));

  auto bad = server.Client().Put("/api/units", R"({"length": "parsec"})", "application/json");
  ASSERT_TRUE(bad);
  EXPECT_EQ(bad->status, 400);
  EXPECT_NE(bad->body.find("parsec"), std::string::npos);
  EXPECT_EQ(server.GetJson("/api/units")["length"]["unit"], "cm");
}

TEST(RshviewServe, SaveWritesTheDocFileAtomicallyAndItReloads) {
  Scratch scratch;
  const Outcome copy =
      Rshview({"drive", "--node", "red_paint", "--save", scratch.Path("mine.rshdoc.json"),
               scratch.Write("empty.txt", "# nothing\n")});
  ASSERT_EQ(copy.code, 0) << copy.err;
  {
    Server server({"--doc", scratch.Path("mine.rshdoc.json")});
    ASSERT_EQ(server.Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "60"))->status,
              200);
    auto saved = server.Post("/api/save", "");
    ASSERT_TRUE(saved);
    ASSERT_EQ(saved->status, 200) << saved->body;
    const Json answer = Json::parse(saved->body);
    EXPECT_EQ(answer["path"], scratch.Path("mine.rshdoc.json"));
    EXPECT_EQ(answer["bytes"], fs::file_size(scratch.Path("mine.rshdoc.json")));
    EXPECT_EQ(server.GetJson("/api/document")["saved"], true);
    EXPECT_EQ(server.Post("/api/save", R"({"where": "elsewhere"})")->status, 400);
  }
  // No temporary file is left beside it, and the saved value reads back.
  for (const auto& entry : fs::directory_iterator(scratch.Path("")))
    EXPECT_FALSE(entry.path().filename().string().starts_with(".mine")) << entry.path();
  const Outcome params = Rshview({"params", "--doc", scratch.Path("mine.rshdoc.json"), "--node",
                                  "red_paint", "--format", "json"});
  ASSERT_EQ(params.code, 0) << params.err;
  bool found = false;
  const Json listed = Json::parse(params.out);
  for (const Json& parameter : listed["parameters"])
    if (parameter["name"] == "default_generic_brdf_diffuse_glossiness") {
      found = true;
      EXPECT_DOUBLE_EQ(parameter["value"].get<double>(), 0.6);
    }
  EXPECT_TRUE(found);
}

/// The glossiness of red_paint as `rshview params` reads it from `doc`, or -1.
double GlossinessIn(const std::string& doc) {
  const Outcome params =
      Rshview({"params", "--doc", doc, "--node", "red_paint", "--format", "json"});
  EXPECT_EQ(params.code, 0) << params.err;
  if (params.code != 0) return -1;
  const Json listed = Json::parse(params.out);
  for (const Json& parameter : listed["parameters"])
    if (parameter["name"] == "default_generic_brdf_diffuse_glossiness")
      return parameter["value"].get<double>();
  return -1;
}

TEST(RshviewServe, AStopKeepsUnsavedChangesInARecoveryFileThatTheNextStartNames) {
  Scratch scratch;
  // The working copy (no --doc): made on this first start.
  const std::string doc = scratch.Path("data/showroom.rshdoc.json");
  const std::string recovery = scratch.Path("data/showroom.unsaved.rshdoc.json");
  std::string original;
  {
    Server server;
    original = scratch.Read("data/showroom.rshdoc.json");
    EXPECT_FALSE(server.GetJson("/api/document").contains("recovery"));
    ASSERT_EQ(server.Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "60"))->status,
              200);
    const Outcome& ended = server.Stop();
    EXPECT_EQ(ended.code, 0) << ended.err;
    EXPECT_NE(ended.err.find("not written to " + doc + "; they are kept in " + recovery),
              std::string::npos)
        << ended.err;
    EXPECT_NE(ended.err.find("mv " + recovery + " " + doc), std::string::npos) << ended.err;
  }
  // The document is as it was; the recovery file loads and holds the write.
  EXPECT_EQ(scratch.Read("data/showroom.rshdoc.json"), original);
  EXPECT_DOUBLE_EQ(GlossinessIn(recovery), 0.6);
  EXPECT_DOUBLE_EQ(GlossinessIn(doc), 0.2);
  const std::string kept = scratch.Read("data/showroom.unsaved.rshdoc.json");
  const auto keptTime = fs::last_write_time(recovery);
  {
    Server server;
    const Json document = server.GetJson("/api/document");
    ASSERT_TRUE(document.contains("recovery")) << document.dump();
    EXPECT_EQ(document["recovery"]["path"], recovery);
    EXPECT_TRUE(std::regex_match(document["recovery"]["modified"].get<std::string>(),
                                 std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)")))
        << document["recovery"];
    // Changes made without taking the kept ones go to a second file: the first is not lost.
    ASSERT_EQ(server.Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "45"))->status,
              200);
  }
  const std::string second = scratch.Path("data/showroom.unsaved-2.rshdoc.json");
  EXPECT_EQ(scratch.Read("data/showroom.unsaved.rshdoc.json"), kept);
  EXPECT_DOUBLE_EQ(GlossinessIn(second), 0.45);
  fs::last_write_time(second, keptTime + std::chrono::seconds(2));
  {
    Server server;
    const Json document = server.GetJson("/api/document");
    EXPECT_EQ(document["recovery"]["path"], second) << "the newest";
    EXPECT_EQ(document["recovery"]["count"], 2);
    // A save leaves the recovery file; a document newer than it ends the notice.
    ASSERT_EQ(server.Post("/api/save", "")->status, 200);
    fs::last_write_time(doc, keptTime + std::chrono::seconds(3));
    EXPECT_FALSE(server.GetJson("/api/document").contains("recovery"));
    // Without changes the stop writes nothing.
    const Outcome& ended = server.Stop();
    EXPECT_EQ(ended.code, 0) << ended.err;
    EXPECT_NE(
        ended.out.find("rshview: changes not saved when the server last stopped are in " + second),
        std::string::npos)
        << ended.out;
    EXPECT_EQ(ended.err.find("unsaved"), std::string::npos) << ended.err;
  }
  EXPECT_EQ(scratch.Read("data/showroom.unsaved.rshdoc.json"), kept);
  EXPECT_EQ(fs::last_write_time(recovery), keptTime);
  // The document saved since says nothing of the kept changes: the next stop writes beside them.
  {
    Server server;
    ASSERT_EQ(server.Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "30"))->status,
              200);
  }
  EXPECT_EQ(scratch.Read("data/showroom.unsaved.rshdoc.json"), kept);
  EXPECT_DOUBLE_EQ(GlossinessIn(second), 0.45);
  EXPECT_DOUBLE_EQ(GlossinessIn(scratch.Path("data/showroom.unsaved-3.rshdoc.json")), 0.3);
}

TEST(RshviewServe, ARecoveryFileGoesToAFreeNameAndOneThatCannotBeWrittenFailsTheStop) {
  Scratch scratch;
  const auto copyOfTheSample = [&](const std::string& doc) {
    const Outcome copy = Rshview(
        {"drive", "--node", "red_paint", "--save", doc, scratch.Write("empty.txt", "# nothing\n")});
    EXPECT_EQ(copy.code, 0) << copy.err;
  };
  // Something of another kind in the first name's place is left alone, and found past the gap.
  const std::string doc = scratch.Path("mine.rshdoc.json");
  copyOfTheSample(doc);
  const std::string taken = scratch.Path("mine.unsaved.rshdoc.json");
  fs::create_directories(fs::path(taken) / "inside");
  {
    // A change put back leaves nothing to keep.
    Server server({"--doc", doc});
    for (const char* value : {"60", "20"})
      ASSERT_EQ(server.Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, value))->status,
                200);
    const Outcome& ended = server.Stop();
    EXPECT_NE(ended.err.find("nothing to keep"), std::string::npos) << ended.err;
  }
  EXPECT_FALSE(fs::exists(scratch.Path("mine.unsaved-2.rshdoc.json")));
  {
    Server server({"--doc", doc});
    ASSERT_EQ(server.Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "60"))->status,
              200);
    EXPECT_EQ(server.Stop().code, 0);
  }
  const std::string recovery = scratch.Path("mine.unsaved-2.rshdoc.json");
  EXPECT_DOUBLE_EQ(GlossinessIn(recovery), 0.6);
  EXPECT_TRUE(fs::is_directory(fs::path(taken) / "inside"));
  {
    Server server({"--doc", doc});
    const Json document = server.GetJson("/api/document");
    EXPECT_EQ(document["recovery"]["path"], recovery) << document.dump();
    EXPECT_EQ(document["recovery"]["count"], 1);
  }

  // The document's folder went away while the server ran: the changes cannot be kept.
  const std::string gone = scratch.Path("gone/mine.rshdoc.json");
  fs::create_directories(fs::path(gone).parent_path());
  copyOfTheSample(gone);
  Server server({"--doc", gone});
  ASSERT_EQ(server.Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "60"))->status, 200);
  fs::remove_all(fs::path(gone).parent_path());
  const Outcome& ended = server.Stop();
  EXPECT_EQ(ended.code, 1);
  EXPECT_NE(ended.err.find("could not be kept in " + scratch.Path("gone/mine.unsaved.rshdoc.json")),
            std::string::npos)
      << ended.err;
  EXPECT_NE(ended.err.find("warning: the changes since the last save were not written to " + gone),
            std::string::npos)
      << ended.err;
  EXPECT_NE(ended.out.find("rshview: stopped"), std::string::npos);
}

TEST(RshviewServe, TheEventStreamDeliversAWriteToAnotherClientAndEndsAtStop) {
  Scratch scratch;
  Server server;
  std::promise<void> greeted, written;
  std::string received;
  std::thread listener([&] {
    httplib::Client client("127.0.0.1", server.Port());
    client.set_read_timeout(30, 0);
    bool sawHello = false, sawWrite = false;
    client.Get("/api/events", [&](const char* data, std::size_t length) {
      received.append(data, length);
      if (!sawHello && received.find("event: hello") != std::string::npos) {
        sawHello = true;
        greeted.set_value();
      }
      if (!sawWrite && received.find("event: write") != std::string::npos &&
          received.find("\n\n", received.find("event: write")) != std::string::npos) {
        sawWrite = true;
        written.set_value();
      }
      return true;
    });
  });
  ASSERT_EQ(greeted.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
  ASSERT_EQ(server
                .Post("/api/nodes/red_paint/events", EventBody(kGlossSlider, "60"),
                      {{"X-Rshview-Client", "tab-a"}})
                ->status,
            200);
  ASSERT_EQ(written.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
  // The greeting names this run of the server, as the document does.
  const std::size_t helloData = received.find("data: ", received.find("event: hello"));
  const Json hello =
      Json::parse(received.substr(helloData + 6, received.find('\n', helloData) - helloData - 6));
  EXPECT_EQ(hello["revision"], 0);
  EXPECT_EQ(hello["instance"].get<std::string>().size(), 16u) << hello;
  EXPECT_EQ(hello["instance"], server.GetJson("/api/document")["instance"]);
  const std::size_t data = received.find("data: ", received.find("event: write"));
  const Json write = Json::parse(received.substr(data + 6, received.find('\n', data) - data - 6));
  EXPECT_EQ(write["node"], "red_paint");
  EXPECT_EQ(write["parameter"], "default_generic_brdf_diffuse_glossiness");
  EXPECT_EQ(write["origin"], "tab-a");
  EXPECT_EQ(write["revision"], 1);
  // Stopping the server ends the open stream: nothing hangs.
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(server.Stop().code, 0);
  listener.join();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(RshviewServe, RefusedRequestsAnswerTheirErrorAndChangeNothing) {
  Scratch scratch;
  Server server;
  const std::string set = EventBody(kGlossSlider, "60");
  const std::string events = "/api/nodes/red_paint/events";
  auto& client = server.Client();
  struct Case {
    const char* what;
    httplib::Result result;
    int status;
    std::string detail;
  };
  const Case cases[] = {
      {"oversized body", server.Post(events, std::string(70 * 1024, ' ')), 413, ""},
      {"malformed JSON", server.Post(events, R"({"action": "set", })"), 400, "line 1, column"},
      {"unknown key", server.Post(events, R"({"action": "set", "path": "x", "colour": 1})"), 400,
       "'colour'"},
      {"wrong type", server.Post(events, R"({"action": "set", "path": 3})"), 400, "'path'"},
      {"missing key", server.Post(events, R"({"path": "x"})"), 400, "'action'"},
      {"bad Host",
       client.Post(events.c_str(), {{"Host", "evil.example:" + std::to_string(server.Port())}}, set,
                   "application/json"),
       421, "evil.example"},
      {"cross-origin write", server.Post(events, set, {{"Origin", "http://evil.example"}}), 403,
       "evil.example"},
      {"form post", client.Post(events.c_str(), set, "application/x-www-form-urlencoded"), 415,
       "application/x-www-form-urlencoded"},
      {"text post", client.Post(events.c_str(), set, "text/plain"), 415, "text/plain"},
      {"wrong method", client.Get(events.c_str()), 405, "POST"},
      {"unknown route", client.Get("/api/nothing"), 404, "/api/nothing"},
      {"unknown node", server.Post("/api/nodes/nope/events", set), 404, "'nope'"},
      {"unknown editor", client.Get("/api/nodes/red_paint/editor?editor=fancy"), 400, "fancy"},
      {"bad compact", client.Get("/api/nodes/red_paint/editor?compact=yes"), 400, "'yes'"},
      {"bad client id", server.Post(events, set, {{"X-Rshview-Client", "a b"}}), 400,
       "X-Rshview-Client"},
      {"bad preview size", client.Get("/api/nodes/red_paint/preview.png?size=9999"), 400, "9999"},
      {"no texture", client.Get("/api/nodes/window/texture"), 404, "window"},
  };
  for (const Case& c : cases) {
    ASSERT_TRUE(c.result) << c.what;
    EXPECT_EQ(c.result->status, c.status) << c.what << ": " << c.result->body;
    const Json error = Json::parse(c.result->body, nullptr, false);
    ASSERT_TRUE(error.is_object()) << c.what << ": " << c.result->body;
    EXPECT_TRUE(error.contains("error")) << c.what;
    EXPECT_NE(error.dump().find(c.detail), std::string::npos) << c.what << ": " << error;
  }
  // The server's own origin may write.
  EXPECT_EQ(
      server.Post(events, set, {{"Origin", "http://localhost:" + std::to_string(server.Port())}})
          ->status,
      200);
  EXPECT_EQ(server.GetJson("/api/document")["revision"], 1);
}

TEST(RshviewServe, BodiesAreCheckedHoweverTheyAreSent) {
  Scratch scratch;
  Server server;
  const std::string head =
      "Host: " + server.Address() + "\r\nContent-Type: application/json\r\nConnection: close\r\n";
  // A chunked body gives no Content-Length for the library to check: the server checks it.
  std::string units = R"({"length": "cm", "pad": ")" + std::string(70 * 1024, 'x') + "\"}";
  std::string chunked = "PUT /api/units HTTP/1.1\r\n" + head + "Transfer-Encoding: chunked\r\n\r\n";
  for (std::size_t at = 0; at < units.size(); at += 8192) {
    const std::string chunk = units.substr(at, 8192);
    char size[16];
    std::snprintf(size, sizeof size, "%zx\r\n", chunk.size());
    chunked += size + chunk + "\r\n";
  }
  chunked += "0\r\n\r\n";
  const auto [tooLarge, tooLargeBody] = StatusAndBody(RawExchange(server.Port(), chunked));
  EXPECT_EQ(tooLarge, 413) << tooLargeBody;
  EXPECT_NE(tooLargeBody.dump().find("65536"), std::string::npos) << tooLargeBody;
  EXPECT_EQ(server.GetJson("/api/units")["length"]["unit"], "mm");

  // A POST with neither Content-Length nor Transfer-Encoding has no body: it is answered at once,
  // not after waiting for a body until the client gives up.
  const auto sent = std::chrono::steady_clock::now();
  const auto [empty, emptyBody] =
      StatusAndBody(RawExchange(server.Port(), "POST /api/save HTTP/1.1\r\n" + head + "\r\n"));
  EXPECT_EQ(empty, 200) << emptyBody;
  EXPECT_LT(std::chrono::steady_clock::now() - sent, std::chrono::seconds(2));
  // A body that cannot be read says why it was refused.
  const auto [cut, cutBody] = StatusAndBody(
      RawExchange(server.Port(), "PUT /api/units HTTP/1.1\r\n" + head +
                                     "Transfer-Encoding: chunked\r\n\r\nzz\r\n{}\r\n0\r\n\r\n"));
  EXPECT_EQ(cut, 400) << cutBody;
  EXPECT_TRUE(cutBody["detail"].is_string()) << cutBody;

  // Units that change nothing rebuild nothing, announce nothing and keep the revision.
  server.GetJson("/api/nodes/red_paint/editor");
  for (const char* same : {"{}", R"({"length": "mm"})"}) {
    auto unchanged = server.Client().Put("/api/units", same, "application/json");
    ASSERT_TRUE(unchanged);
    EXPECT_EQ(unchanged->status, 200) << same << ": " << unchanged->body;
    EXPECT_EQ(server.GetJson("/api/document")["revision"], 0) << same;
  }
  EXPECT_EQ(server.GetJson("/api/nodes/red_paint/editor")["revision"], 0);
}

TEST(RshviewServe, StopsPromptlyWithAnIdleKeepAliveConnectionOpen) {
  Scratch scratch;
  Server server;
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(server.Port()));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  const std::string request = "GET /api/units HTTP/1.1\r\nHost: " + server.Address() + "\r\n\r\n";
  ASSERT_EQ(send(fd, request.data(), request.size(), MSG_NOSIGNAL),
            static_cast<ssize_t>(request.size()));
  char buffer[256];
  ASSERT_GT(recv(fd, buffer, sizeof buffer, 0), 12);
  // The connection stays open and idle, as a browser keeps it.
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(server.Stop().code, 0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
  close(fd);
}

TEST(RshviewServe, OrdinaryRequestsAreAnsweredWhileEveryEventStreamIsOpen) {
  Scratch scratch;
  Server server;
  constexpr int kStreams = 16;  // the most the server keeps open
  std::vector<std::unique_ptr<httplib::Client>> clients;
  std::vector<std::thread> streams;
  std::atomic<int> greeted{0};
  for (int i = 0; i < kStreams; ++i) {
    clients.push_back(std::make_unique<httplib::Client>("127.0.0.1", server.Port()));
    clients.back()->set_read_timeout(30, 0);
    streams.emplace_back([&client = *clients.back(), &greeted] {
      bool counted = false;
      client.Get("/api/events", [&](const char*, std::size_t) {
        if (!counted) ++greeted;
        counted = true;
        return true;
      });
    });
  }
  for (int i = 0; i < 2000 && greeted < kStreams; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  ASSERT_EQ(greeted, kStreams);
  auto refused = server.Client().Get("/api/events");
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->status, 503);
  EXPECT_NE(refused->body.find("too many event streams"), std::string::npos) << refused->body;
  // Several requests at once still find threads to answer them.
  std::vector<std::future<int>> answers;
  for (int i = 0; i < 6; ++i)
    answers.push_back(std::async(std::launch::async, [&server] {
      httplib::Client client("127.0.0.1", server.Port());
      client.set_read_timeout(10, 0);
      auto result = client.Get("/api/units");
      return result ? result->status : 0;
    }));
  for (auto& answer : answers) EXPECT_EQ(answer.get(), 200);
  EXPECT_EQ(server.Stop().code, 0);
  for (std::thread& stream : streams) stream.join();
}

TEST(RshviewServe, AWorkingCopyThatNoLongerLoadsIsKeptAsideAndMadeAfresh) {
  Scratch scratch;
  const std::string copy = scratch.Path("data/showroom.rshdoc.json");
  std::vector<Json> instances;
  {
    Server first;
    instances.push_back(first.GetJson("/api/document")["instance"]);
  }
  std::ifstream in(copy);
  Json made = Json::parse(in);
  in.close();
  // Written with absolute paths free of links, so that it reads the same files from anywhere.
  const std::string library = made["library"];
  EXPECT_TRUE(fs::path(library).is_absolute()) << library;
  EXPECT_EQ(fs::canonical(library).string(), library);
  EXPECT_NE(made.dump().find("\"image\":\"/"), std::string::npos) << made.dump();

  struct Case {
    const char* what;
    const char* key;
    std::string message;
  };
  const Case cases[] = {
      {"library moved", "library", "its library /nowhere/library is not a folder"},
      {"image moved", "image", "its image /nowhere/checker.png does not exist"},
  };
  int saved = 0;
  for (const Case& c : cases) {
    Json broken = made;
    if (std::string(c.key) == "library") {
      broken["library"] = "/nowhere/library";
    } else {
      broken["materials"][0]["subShaders"][0]["values"]["texture"]["image"] =
          "/nowhere/checker.png";
      ASSERT_NE(broken.dump().find("/nowhere/checker.png"), std::string::npos) << broken.dump();
    }
    broken["materials"][0]["alias"] = "what I saved " + std::to_string(++saved);
    std::ofstream(copy) << broken.dump();
    Server server;
    const Json document = server.GetJson("/api/document");
    EXPECT_EQ(document["path"], copy) << c.what;
    EXPECT_NE(document["instance"], instances.back()) << "a new run has a new instance id";
    instances.push_back(document["instance"]);
    EXPECT_EQ(document["nodes"][0]["alias"], "Red metallic paint") << c.what;
    const Outcome& ended = server.Stop();
    EXPECT_NE(ended.err.find(c.message), std::string::npos) << c.what << ": " << ended.err;
    EXPECT_NE(ended.err.find("moved to " + copy + ".bak"), std::string::npos) << ended.err;
  }
  // Nothing the person saved is lost: each broken copy is kept under a name of its own.
  std::ifstream first(copy + ".bak"), second(copy + ".bak2");
  EXPECT_NE(std::string(std::istreambuf_iterator<char>(first), {}).find("what I saved 1"),
            std::string::npos);
  EXPECT_NE(std::string(std::istreambuf_iterator<char>(second), {}).find("what I saved 2"),
            std::string::npos);
}

TEST(RshviewServe, ListeningBeyondThisMachineIsWarnedAbout) {
  Scratch scratch;
  Server server({"--host", "0.0.0.0"});
  EXPECT_EQ(server.GetJson("/api/units")["length"]["unit"], "mm");
  const Outcome& ended = server.Stop();
  EXPECT_NE(ended.err.find("warning: listening on 0.0.0.0"), std::string::npos) << ended.err;
  Server local;
  EXPECT_EQ(local.Stop().err.find("warning"), std::string::npos);
}

TEST(RshviewServe, StaticFilesStayInsideTheFrontEndFolder) {
  Scratch scratch;
  scratch.Write("web/index.html", "<html>front-end</html>");
  scratch.Write("web/assets/app.js", "console.log(1);");
  scratch.Write("secret.txt", "secret");
  fs::create_symlink(scratch.Path("secret.txt"), scratch.Path("web/assets/link.txt"));
  Server server({"--web", scratch.Path("web")});
  auto index = server.Client().Get("/");
  ASSERT_TRUE(index);
  EXPECT_EQ(index->status, 200);
  EXPECT_EQ(index->body, "<html>front-end</html>");
  auto script = server.Client().Get("/assets/app.js", {{"Accept-Encoding", "br, gzip"}});
  ASSERT_TRUE(script);
  EXPECT_EQ(script->status, 200);
  EXPECT_EQ(script->get_header_value("Content-Type"), "application/javascript; charset=utf-8");
  EXPECT_FALSE(script->has_header("Content-Encoding"));

  const std::string host = "Host: " + server.Address() + "\r\n\r\n";
  for (const char* path : {"/../secret.txt", "/assets/../../secret.txt", "/%2e%2e/secret.txt",
                           "/assets/%2E%2E/%2e%2e/secret.txt", "/assets/link.txt",
                           "//"
                           "etc/passwd",
                           "/assets/missing.js", "/assets/..%2f..%2fsecret.txt"}) {
    const int status =
        RawStatus(server.Port(), "GET " + std::string(path) + " HTTP/1.1\r\n" + host);
    EXPECT_TRUE(status == 404 || status == 400) << path << ": " << status;
  }
  EXPECT_EQ(RawStatus(server.Port(), "GET /assets/app.js HTTP/1.1\r\n" + host), 200);
  EXPECT_EQ(RawStatus(server.Port(), "GET / HTTP/1.1\r\nHost: attacker.example\r\n\r\n"), 421);
}

TEST(RshviewServe, WithoutABuiltFrontEndTheRootSaysHowToBuildIt) {
  Scratch scratch;
  Server server({"--web", scratch.Path("no-web")});
  auto page = server.Client().Get("/");
  ASSERT_TRUE(page);
  EXPECT_EQ(page->status, 200);
  EXPECT_NE(page->body.find("npm --prefix apps/rshview/web ci"), std::string::npos);
  EXPECT_EQ(server.Client().Get("/assets/app.js")->status, 404);
  auto preview = server.Client().Get("/api/nodes/red_paint/preview.png?size=32");
  ASSERT_TRUE(preview);
  EXPECT_EQ(preview->status, 200);
  EXPECT_EQ(preview->get_header_value("Content-Type"), "image/png");
}

TEST(RshviewServe, WrongCommandLinesAreRefused) {
  Scratch scratch;
  EXPECT_EQ(Rshview({"serve", "--port", "70000"}).code, 2);
  EXPECT_EQ(Rshview({"serve", "--port", "x"}).code, 2);
  EXPECT_EQ(Rshview({"dump", "--port", "1"}).code, 2);
  EXPECT_EQ(Rshview({"serve", "extra"}).code, 2);
  const Outcome help = Rshview({"--help"});
  EXPECT_NE(help.out.find("  serve "), std::string::npos);
}
}  // namespace
