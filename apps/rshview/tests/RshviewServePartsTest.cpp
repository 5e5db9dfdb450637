// The parts of rshview serve that stand alone: the request checks, the comparison of editor
// trees, the UI thread's task queue and the event stream.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <thread>

#include "RshviewEditorDiff.h"
#include "RshviewEventStream.h"
#include "RshviewRequestChecks.h"
#include "RshviewUiQueue.h"

namespace {
using Json = nlohmann::json;
using namespace std::chrono_literals;

TEST(RshviewServeChecks, HostAndOriginMustNameThisServer) {
  const auto own = RshviewOwnAddresses("::1", 8642);
  struct Case {
    const char* host;
    bool allowed;
  };
  const Case hosts[] = {
      {"127.0.0.1:8642", true},       {"localhost:8642", true},
      {"LocalHost:8642", true},       {"[::1]:8642", true},
      {"127.0.0.1:8643", false},      {"127.0.0.1", false},
      {"evil.example:8642", false},   {"", false},
      {"localhost:8642.evil", false}, {"127.0.0.2:8642", false},
  };
  for (const Case& c : hosts) EXPECT_EQ(RshviewHostAllowed(c.host, own), c.allowed) << c.host;
  const Case origins[] = {
      {"http://localhost:8642", true},   {"http://[::1]:8642", true},
      {"https://localhost:8642", false}, {"null", false},
      {"http://evil.example", false},    {"http://localhost:8642/x", false},
  };
  for (const Case& c : origins) EXPECT_EQ(RshviewOriginAllowed(c.host, own), c.allowed) << c.host;
  const auto lan = RshviewOwnAddresses("192.168.1.5", 80);
  EXPECT_TRUE(RshviewHostAllowed("192.168.1.5:80", lan));
}

TEST(RshviewServeChecks, ClientIdsAndBodies) {
  EXPECT_TRUE(RshviewClientIdValid("tab-1_a.b"));
  EXPECT_FALSE(RshviewClientIdValid(""));
  EXPECT_FALSE(RshviewClientIdValid("a b"));
  EXPECT_FALSE(RshviewClientIdValid(std::string(65, 'a')));

  Json body;
  std::string error;
  bool malformed = false;
  EXPECT_TRUE(RshviewParseBody("", true, body, error, malformed));
  EXPECT_EQ(body, Json::object());
  EXPECT_FALSE(RshviewParseBody("", false, body, error, malformed));
  EXPECT_TRUE(malformed);
  EXPECT_FALSE(RshviewParseBody("{\n  \"a\": tru }", false, body, error, malformed));
  EXPECT_TRUE(malformed);
  EXPECT_EQ(error.rfind("line 2, column", 0), 0u) << error;
  EXPECT_FALSE(RshviewParseBody("[1]", false, body, error, malformed));
  EXPECT_FALSE(malformed);
  EXPECT_NE(error.find("array"), std::string::npos);

  struct Case {
    const char* body;
    const char* error;  ///< empty: accepted
  };
  const Case events[] = {
      {R"({"action": "set", "path": "a/b", "argument": "3"})", ""},
      {R"({"editor": "classic", "action": "press", "path": "p"})", ""},
      {R"({"action": "set", "path": "a", "restricted": 1})", "'restricted'"},
      {R"({"action": "set", "path": "a", "editor": "fancy"})", "fancy"},
      {R"({"action": "set", "path": "a", "editor": "classic", "restricted": true})", "immersive"},
      {R"({"action": "set"})", "missing key 'path'"},
      {R"({"action": "set", "path": "a", "argument": 3})", "'argument' must be a string"},
      {R"({"action": "set", "path": "a", "Path": "b"})", "unknown key 'Path'"},
  };
  for (const Case& c : events) {
    RshviewEditorEvent event;
    error.clear();
    const bool accepted = RshviewReadEditorEvent(Json::parse(c.body), event, error);
    EXPECT_EQ(accepted, std::string(c.error).empty()) << c.body << ": " << error;
    EXPECT_NE(error.find(c.error), std::string::npos) << c.body << ": " << error;
  }
}

Json Widget(const char* path, int value, Json children = Json::array()) {
  return {{"class", "W"},
          {"path", path ? Json(path) : Json(nullptr)},
          {"state", {{"value", value}}},
          {"children", std::move(children)}};
}

std::vector<std::string> ChangedPaths(const Json& before, const Json& after) {
  // Both trees come from one writer, as the server's do: spacing and key order alike.
  const RshviewWidgetText old(before.dump()), now(after.dump());
  EXPECT_TRUE(old.Valid());
  EXPECT_TRUE(now.Valid());
  std::vector<std::string> paths;
  const auto changed = RshviewChangedWidgets(old, now);
  for (const RshviewChangedWidget& widget : changed) {
    // The subtree is the widget's own text, and it names its path.
    const Json subtree = Json::parse(widget.widget);
    EXPECT_EQ(subtree["path"], widget.path);
    paths.push_back(widget.path);
  }
  const Json listed = Json::parse(RshviewChangedWidgetsJson(changed));
  EXPECT_EQ(listed.size(), changed.size());
  return paths;
}

TEST(RshviewServeDiff, ReportsTheHighestChangedWidgetOfEachBranch) {
  const auto tree = [](int a, int b, int c, int unnamed) {
    // Json::array: a braced list of one json is a copy of it for some compilers.
    return Widget(
        "", 0,
        Json::array(
            {Widget("g", 0, Json::array({Widget("g/a", a), Widget("g/b", b)})),
             Widget("h", 0,
                    Json::array({Widget(nullptr, unnamed, Json::array({Widget("h/c", c)}))}))}));
  };
  const Json base = tree(1, 2, 3, 4);
  EXPECT_TRUE(ChangedPaths(base, base).empty());
  EXPECT_EQ(ChangedPaths(base, tree(9, 2, 3, 4)), std::vector<std::string>{"g/a"});
  EXPECT_EQ(ChangedPaths(base, tree(9, 9, 9, 4)), (std::vector<std::string>{"g/a", "g/b", "h/c"}));
  // An unnamed widget is reported through its named father, which covers its descendants.
  EXPECT_EQ(ChangedPaths(base, tree(1, 2, 9, 9)), std::vector<std::string>{"h"});
  // A widget whose children changed in number is reported whole.
  Json grown = base;
  grown["children"][0]["children"].push_back(Widget("g/new", 0));
  grown["children"][0]["children"][0]["state"]["value"] = 7;
  EXPECT_EQ(ChangedPaths(base, grown), std::vector<std::string>{"g"});
  // A change of the root itself is the whole editor.
  Json root = base;
  root["visible"] = false;
  EXPECT_EQ(ChangedPaths(base, root), std::vector<std::string>{""});
  // Texts with escapes and brackets inside strings are read as texts.
  Json tricky = base;
  tricky["children"][1]["state"]["label"] = "a \"[quoted]\" {b}\\";
  EXPECT_EQ(ChangedPaths(base, tricky), std::vector<std::string>{"h"});
  EXPECT_FALSE(RshviewWidgetText("{\"children\": [1]}").Valid());
  EXPECT_FALSE(RshviewWidgetText("{\"path\": \"a\"").Valid());
}

TEST(RshviewServeQueue, RunsTasksOnTheUiThreadAndTimesOutOrClosesOtherwise) {
  RshviewUiQueue queue;
  // Nobody runs the queue: the task is dropped at the time-out and never runs later.
  bool ran = false;
  EXPECT_EQ(queue.Call([&] { ran = true; }, 20ms), RshviewUiQueue::Outcome::TimedOut);
  queue.RunPending(0ms);
  EXPECT_FALSE(ran);

  std::atomic<bool> stop{false};
  std::thread ui([&] {
    while (!stop) queue.RunPending(5ms);
  });
  std::thread::id where;
  EXPECT_EQ(queue.Call([&] { where = std::this_thread::get_id(); }, 5s),
            RshviewUiQueue::Outcome::Done);
  EXPECT_EQ(where, ui.get_id());
  // A task that has started is waited for to its end, past the time-out.
  EXPECT_EQ(queue.Call([] { std::this_thread::sleep_for(50ms); }, 1ms),
            RshviewUiQueue::Outcome::Done);
  // An exception does not leave the caller waiting.
  EXPECT_EQ(queue.Call([] { throw std::runtime_error("x"); }, 5s), RshviewUiQueue::Outcome::Done);
  stop = true;
  ui.join();
  queue.Close();
  EXPECT_EQ(queue.Call([] {}, 5s), RshviewUiQueue::Outcome::Closed);
}

TEST(RshviewServeStream, ReadersGetTheEventsSinceTheySubscribedAndEndAtClose) {
  RshviewEventStream stream;
  stream.Publish("write", {{"n", 0}});
  std::uint64_t cursor = 0;
  ASSERT_TRUE(stream.Subscribe(cursor));
  std::string text;
  ASSERT_TRUE(stream.Next(cursor, text, 1ms));
  EXPECT_EQ(text, ": heartbeat\n\n");
  stream.Publish("write", {{"n", 1}});
  stream.Publish("units", {{"length", "cm"}});
  ASSERT_TRUE(stream.Next(cursor, text, 1s));
  EXPECT_EQ(text, "event: write\ndata: {\"n\":1}\n\nevent: units\ndata: {\"length\":\"cm\"}\n\n");
  // A reader waiting for events is woken when the stream closes.
  std::thread closer([&] {
    std::this_thread::sleep_for(20ms);
    stream.Close();
  });
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(stream.Next(cursor, text, 10s));
  EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
  closer.join();
  stream.Unsubscribe();
  EXPECT_FALSE(stream.Subscribe(cursor));
}

TEST(RshviewServeStream, RefusesReadersBeyondTheLimit) {
  RshviewEventStream stream;
  std::uint64_t cursor = 0;
  for (int i = 0; i < RshviewEventStream::kMaxSubscribers; ++i)
    ASSERT_TRUE(stream.Subscribe(cursor));
  EXPECT_FALSE(stream.Subscribe(cursor));
  stream.Unsubscribe();
  EXPECT_TRUE(stream.Subscribe(cursor));
}
}  // namespace
