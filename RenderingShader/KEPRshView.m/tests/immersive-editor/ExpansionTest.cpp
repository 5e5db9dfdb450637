// Group expanders: the state a group opens in (configuration default, then the user's stored
// preference), its traces, and the preference written and committed when the user opens or
// closes a group.
#include <filesystem>

#include "EditorTestSupport.h"
#include "KEPHostPreferences.h"
#include "KEPSysPreferenceRepository.h"

namespace keptest {
namespace {

constexpr char kRepository[] = "KEPRmaUIGroupExpansion";

class ExpansionTest : public EditorTest {
 protected:
  static KEPSysPreferenceRepository& Preferences() {
    return *KEPSysPreferenceRepository::GetRepository(kRepository);
  }
  /// The short stored under `key` when the preference file is read afresh; -1 when none.
  static short StoredInFile(const std::string& key) {
    KEPHostPreferences::Unload();
    short value = -1;
    if (Preferences().ReadSetting(key, &value, 1) != 1) value = -1;
    return value;
  }
  /// A node of type `type` with one group named `name` holding "p", configured by `config`.
  KEPHostShaderNode* Grouped(const std::string& type, const Keys& config = {},
                             const std::string& name = "Coat") {
    Keys all = {{"GroupCount", "1"}, {"Group0.Name", name}, {"p.Group", "Group0"}};
    all.insert(all.end(), config.begin(), config.end());
    return Node(type, {"p"}, all);
  }
  static KEPVidCtlExpander* Group(const KEPVidWidget* editor, int number = 0) {
    return dynamic_cast<KEPVidCtlExpander*>(At(editor, "ParameterGroup" + std::to_string(number)));
  }
  static void User(KEPVidCtlExpander* group, KEPVidAction action) {
    std::string error;
    ASSERT_EQ(group->InjectUserEvent(action, "", error), S_OK) << error;
  }
};

TEST_F(ExpansionTest, AGroupOpensAsConfiguredUnlessTheUserChoseOtherwise) {
  struct Case {
    std::optional<std::string> byDefault;
    std::optional<short> stored;
    bool expanded;
  };
  const Case cases[] = {
      {std::nullopt, std::nullopt, false},  // collapsed unless told otherwise
      {"No", std::nullopt, true},
      {"false", std::nullopt, true},
      {"anything", std::nullopt, true},
      {"YES", std::nullopt, false},
      {"True", std::nullopt, false},
      {"1", std::nullopt, false},
      {"No", 1, false},  // the user's choice wins
      {std::nullopt, 0, true},
      {"yes", 0, true},
      {"yes", 7, false},  // any non-zero value is collapsed
  };
  int n = 0;
  for (const Case& c : cases) {
    const std::string type = "mat" + std::to_string(n++);
    const std::string key = type + ".Coat.Collapsed";
    Keys config;
    if (c.byDefault) config.emplace_back("Group0.CollapsedByDefault", *c.byDefault);
    if (c.stored) {
      ASSERT_EQ(Preferences().WriteSetting(key, &*c.stored, 1), 1);
    }
    TraceCapture capture;
    const KEPRshShaderImmLayout* editor = Edit(Grouped(type, config));
    const std::string what = c.byDefault.value_or("(no default)") + ", stored " +
                             (c.stored ? std::to_string(*c.stored) : "nothing");
    ASSERT_NE(Group(editor), nullptr) << what;
    EXPECT_EQ(Group(editor)->IsExpanded(), c.expanded) << what;
    const std::string state = c.expanded ? "expanded" : "collapsed";
    EXPECT_EQ(capture.Texts("KEPRmaUI"),
              (std::vector<std::string>{key + " group collapse preferences is " + state,
                                        "Coat group initialized to " + state}))
        << what;
    for (const KEPTraceEntry& entry : capture.Entries())
      EXPECT_TRUE(entry.channel != "KEPRmaUI" || entry.level == KEPTraceLevel::Info);
    // Opening the editor stores nothing.
    EXPECT_EQ(Preferences().HasKey(key), c.stored.has_value()) << what;
  }
}

TEST_F(ExpansionTest, OpeningOrClosingAGroupStoresTheStateAndCommitsAtOnce) {
  KEPRshShaderImmLayout* editor = Edit(Grouped("mat"));
  ASSERT_NE(Group(editor), nullptr);
  ASSERT_FALSE(Group(editor)->IsExpanded());
  const std::string file = KEPHostPreferences::FilePath();
  ASSERT_FALSE(file.empty());

  const std::pair<KEPVidAction, short> steps[] = {
      {KEPVidAction::Expand, 0}, {KEPVidAction::Collapse, 1}, {KEPVidAction::Expand, 0}};
  for (const auto& [action, stored] : steps) {
    TraceCapture capture;
    User(Group(editor), action);
    EXPECT_EQ(capture.Texts("KEPRmaUI"),
              (std::vector<std::string>{std::string("mat.Coat.Collapsed ") +
                                        (stored ? "collapsed" : "expanded")}));
    EXPECT_FALSE(Preferences().HasUncommittedChanges());
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(StoredInFile("mat.Coat.Collapsed"), stored);
  }

  // The next editor of the node opens as the user left the group.
  Root()->DeleteChildren();
  EXPECT_TRUE(Group(Edit(TheWorld().Document()->Nodes().back().Get()))->IsExpanded());
}

TEST_F(ExpansionTest, GroupsOfOneConfigurationShareAStateByDisplayName) {
  KEPRshShaderImmLayout* editor = Edit(Node("mat", {"a", "b", "c"},
                                            {{"GroupCount", "3"},
                                             {"Group0.Name", "Coat"},
                                             {"Group1.Name", "Coat"},
                                             {"Group2.Name", "Flakes"},
                                             {"a.Group", "Group0"},
                                             {"b.Group", "Group1"},
                                             {"c.Group", "Group2"}}));
  User(Group(editor, 1), KEPVidAction::Expand);
  EXPECT_EQ(Preferences().Keys(), (std::vector<KEPString>{"mat.Coat.Collapsed"}));
  Root()->DeleteChildren();
  editor = Edit(TheWorld().Document()->Nodes().back().Get());
  EXPECT_TRUE(Group(editor, 0)->IsExpanded());
  EXPECT_TRUE(Group(editor, 1)->IsExpanded());
  EXPECT_FALSE(Group(editor, 2)->IsExpanded());
}

TEST_F(ExpansionTest, WithoutTheRepositoryTheDefaultStandsAndNothingIsStored) {
  KEPHostPreferences::SetUnavailableForTest(kRepository, true);
  TraceCapture capture;
  KEPRshShaderImmLayout* editor = Edit(Grouped("mat", {{"Group0.CollapsedByDefault", "no"}}));
  EXPECT_TRUE(Group(editor)->IsExpanded());
  EXPECT_EQ(capture.Texts("KEPRmaUI"),
            (std::vector<std::string>{"Coat group initialized to expanded"}));
  User(Group(editor), KEPVidAction::Collapse);
  EXPECT_EQ(capture.Texts("KEPRmaUI").size(), 1u);
  KEPHostPreferences::SetUnavailableForTest(kRepository, false);
  EXPECT_FALSE(Preferences().HasKey("mat.Coat.Collapsed"));
}

TEST_F(ExpansionTest, AGroupThatOutlivesItsEditorStoresNothing) {
  KEPRshShaderImmLayout* editor = Edit(Grouped("mat"));
  const KEP_var<KEPVidCtlExpander> kept(Group(editor));
  Root()->DeleteChildren();
  ASSERT_EQ(kept->GetFather(), nullptr);
  kept->SetExpanded(true);
  EXPECT_FALSE(Preferences().HasKey("mat.Coat.Collapsed"));
}

}  // namespace
}  // namespace keptest
