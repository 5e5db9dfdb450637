// The parts of rshview serve that stand alone: the request checks, the comparison of editor
// trees, the UI thread's task queue, the event stream and the recovery file's name.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <thread>

#include "RshviewCompactTree.h"
#include "RshviewEditorDiff.h"
#include "RshviewEditorView.h"
#include "RshviewEventStream.h"
#include "RshviewRecovery.h"
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

TEST(RshviewServeCompact, LeavesOutDefaultsAndThePathsAReaderDerives) {
  // A widget's common keys at their defaults go, another value stays; an object loses its keys
  // at their defaults, and goes when none is left; numbers compare by value (1 and 1.0).
  const std::string tree =
      R"({"class":"KEPVidLayGrid","name":"Top","path":"","visible":true,"sensitive":false,)"
      R"("layoutWhenInvisible":true,"cell":{"row":0,"column":0,"rowSpan":1,"columnSpan":1,)"
      R"("attach":[]},"minimumSize":{"width":0,"height":5},"state":{"rows":1,)"
      R"("columnWeights":[1.0],"rowWeights":[],"horizontalSpacing":2,"verticalSpacing":2},)"
      R"("children":[)"
      // Its path follows from its father's: left out; an empty state goes.
      R"({"class":"KEPVidCtlSlider","name":"s","path":"s","visible":false,"cell":{"row":2,)"
      R"("column":0,"rowSpan":1,"columnSpan":1,"attach":["left"]},"state":{"singleStep":1,)"
      R"("pageStep":10,"tickInterval":0,"tickPosition":0,"barSize":1,"squareHeightRatio":0.1,)"
      R"("magnifier":true},"children":[]},)"
      // A second "s" is s[1]; a path that does not follow stays; a class without defaults
      // keeps its state whole.
      R"({"class":"KEPVidCtlSlider","name":"s","path":"s[1]","children":[]},)"
      R"({"class":"KEPVidCtlLabel","name":"t","path":"elsewhere/t","state":{"text":""}},)"
      // Below an unnamed widget (path null) every path stays.
      R"({"class":"KEPVidLayGrid","name":"","path":null,"children":[)"
      R"({"class":"KEPVidCtlLabel","name":"u","path":"u","children":[]}]}]})";
  const std::optional<std::string> compact = RshviewCompactTree(tree);
  ASSERT_TRUE(compact);
  EXPECT_EQ(*compact,
            R"({"class":"KEPVidLayGrid","name":"Top","path":"","sensitive":false,)"
            R"("minimumSize":{"height":5},"state":{"columnWeights":[1.0]},"children":[)"
            R"({"class":"KEPVidCtlSlider","name":"s","visible":false,)"
            R"("cell":{"row":2,"attach":["left"]}},)"
            R"({"class":"KEPVidCtlSlider","name":"s"},)"
            R"({"class":"KEPVidCtlLabel","name":"t","path":"elsewhere/t","state":{"text":""}},)"
            R"({"class":"KEPVidLayGrid","name":"","path":null,"children":[)"
            R"({"class":"KEPVidCtlLabel","name":"u","path":"u"}]}]})");
  // A subtree's root keeps its path (a reader has no father to derive it from).
  EXPECT_EQ(RshviewCompactTree(R"({"class":"KEPVidCtlLabel","name":"x","path":"a/x"})"),
            R"({"class":"KEPVidCtlLabel","name":"x","path":"a/x"})");
  // The defaults the answer lists are the ones left out, as JSON.
  const Json defaults = Json::parse(RshviewCompactDefaults());
  EXPECT_EQ(defaults["widget"]["cell"]["rowSpan"], 1);
  EXPECT_EQ(defaults["widget"]["children"], Json::array());
  EXPECT_EQ(defaults["state"]["KEPVidCtlSlider"]["squareHeightRatio"], 0.1);
  // Text that is not a widget tree gives nothing rather than half a tree.
  for (const char* bad :
       {"", "[]", R"({"class":"x","children":[{"class":"y"})", R"({"class":"x","cell":{"row":0)",
        R"({"class":"x"} trailing)", R"({"class":"x","children":[1]})",
        R"({"class":"KEPVidCtlSlider","state":{"a" 1}})"})
    EXPECT_FALSE(RshviewCompactTree(bad)) << bad;
}

TEST(RshviewServeView, ChangesWithWhatWidgetsStandForNotWithTheirValues) {
  const std::string base =
      R"({"class":"KEPRshShaderRootFrame","name":"","path":"","state":{"title":"Floor"},)"
      R"("children":[{"class":"KEPVidCtlLabel","name":"l","path":"l","state":{"text":"gloss"}},)"
      R"({"class":"KEPVidCtlEditor","name":"e","path":"e","visible":true,)"
      R"("state":{"text":"0.35","value":0.35},"children":[]},)"
      R"({"class":"KEPVidCtlDoubleSpinBox","name":"s","path":"s","state":{"suffix":"mm"}},)"
      R"({"class":"KEPVidCtlButton","name":"b","path":"b","state":{"label":"","icon":"c.png"}},)"
      R"({"class":"KEPRbaScalarWheel","name":"w","path":"w","state":{"unitSymbol":"deg"}},)"
      R"({"class":"KEPDlgSelectorList","name":"y","path":"y","state":{"lines":["A","B"]}},)"
      R"({"class":"KEPVidCtlExpander","name":"x","path":"x","state":{"label":"Base"}}]})";
  const auto view = [](const std::string& tree, std::string_view units = R"({"length":"mm"})") {
    const RshviewWidgetText text(tree);
    EXPECT_TRUE(text.Valid()) << tree;
    return RshviewEditorView(text, units);
  };
  const auto edited = [&](std::string_view from, std::string_view to) {
    std::string tree = base;
    tree.replace(tree.find(from), from.size(), to);
    return tree;
  };
  const std::string shown = view(base);
  EXPECT_EQ(shown.size(), 16u);
  // What a value write or a hidden row changes: the same view.
  EXPECT_EQ(view(edited(R"("text":"0.35","value":0.35)", R"("text":"0.6","value":0.6)")), shown);
  EXPECT_EQ(view(edited(R"("visible":true)", R"("visible":false)")), shown);
  // What changes what a path means or how a value typed there is read: another view.
  for (const auto& [from, to] :
       std::initializer_list<std::pair<std::string_view, std::string_view>>{
           {R"("title":"Floor")", R"("title":"Floor - Tiles")"},
           {R"("text":"gloss")", R"("text":"gamma")"},
           {R"("suffix":"mm")", R"("suffix":"cm")"},
           {R"("icon":"c.png")", R"("icon":"d.png")"},
           {R"("unitSymbol":"deg")", R"("unitSymbol":"rad")"},
           {R"(["A","B"])", R"(["A","C"])"},
           {R"("label":"Base")", R"("label":"Coat")"},
           {R"("name":"e","path":"e")", R"("name":"f","path":"f")"},
           {R"("class":"KEPVidCtlEditor")", R"("class":"KEPVidCtlSlider")"}})
    EXPECT_NE(view(edited(from, to)), shown) << to;
  EXPECT_NE(view(base, R"({"length":"cm"})"), shown);
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
  // A task that has started is waited for to its end, past the time-out. Whether the UI
  // thread picks it up before the time-out depends on the machine's load, so the call is
  // repeated until it does; a task that never started must have been given up.
  bool started = false;
  for (int attempt = 0; attempt < 100 && !started; ++attempt) {
    const auto outcome = queue.Call(
        [&] {
          started = true;
          std::this_thread::sleep_for(60ms);
        },
        10ms);
    EXPECT_EQ(outcome, started ? RshviewUiQueue::Outcome::Done : RshviewUiQueue::Outcome::TimedOut);
  }
  EXPECT_TRUE(started);
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

TEST(RshviewServeRecovery, NamesTheFileBesideTheDocumentNeverTheDocumentItself) {
  struct Case {
    const char* doc;
    const char* recovery;
  };
  const Case cases[] = {
      {"/d/showroom.rshdoc.json", "/d/showroom.unsaved.rshdoc.json"},
      {"/d/my.room.rshdoc.json", "/d/my.room.unsaved.rshdoc.json"},
      // A recovery file opened as the document keeps its own beside it, under another name.
      {"/d/showroom.unsaved.rshdoc.json", "/d/showroom.unsaved.unsaved.rshdoc.json"},
      {"/d/room.json", "/d/room.unsaved.json"},
      {"/d/notes", "/d/notes.unsaved"},
      {"/d/.rshdoc.json", "/d/.rshdoc.unsaved.json"},
      {"rel/a b.rshdoc.json", "rel/a b.unsaved.rshdoc.json"},
  };
  for (const Case& c : cases) EXPECT_EQ(RshviewRecoveryPath(c.doc), c.recovery) << c.doc;
  EXPECT_EQ(RshviewShellWord("/d/room.unsaved.rshdoc.json"), "/d/room.unsaved.rshdoc.json");
  EXPECT_EQ(RshviewShellWord("/d/it's a room"), R"('/d/it'\''s a room')");
  EXPECT_EQ(RshviewShellWord(""), "''");
}
