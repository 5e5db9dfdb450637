// Which groups and parameters the editor shows, and in which order: group order with and without
// sorting, orders inside a group, hidden parameters and groups, the placement parameters of a
// texture under a physical material, and what "GroupCount" reads as.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "EditorTestSupport.h"
#include "KEPHostRecorder.h"

namespace keptest {
namespace {

class GroupingTest : public EditorTest {
 protected:
  /// The names of the editor's children, top to bottom.
  std::vector<std::string> Shown(KEPIRshShader* node) { return Layout(Edit(node)); }
  /// The parameters shown in `grid` of the editor of `node`.
  std::vector<std::string> Rows(KEPIRshShader* node, const std::string& grid) {
    return Labels(At(Edit(node), grid));
  }
};

const Keys kThreeGroups = {
    {"GroupCount", "3"},     {"Group0.Order", "9"},   {"Group1.Order", "5"},
    {"Group0.Name", "Nine"}, {"Group1.Name", "Five"}, {"Group2.Name", "Last"},
    {"a.Group", "Group0"},   {"b.Group", "Group1"},   {"c.Group", "Group2"}};

TEST_F(GroupingTest, GroupsFollowTheirOrderOnlyWhenSortingIsEnabled) {
  const std::vector<std::string> sorted = {"ParameterGroup1", "ParameterGroup0", "ParameterGroup2"};
  const std::vector<std::string> configured = {"ParameterGroup0", "ParameterGroup1",
                                               "ParameterGroup2"};
  const std::pair<std::optional<std::string>, std::vector<std::string>> rows[] = {
      {"yes", sorted},    {"TRUE", sorted},     {"1", sorted},
      {"Yes", sorted},    {"no", configured},   {"0", configured},
      {"on", configured}, {"yes ", configured}, {std::nullopt, configured}};
  int n = 0;
  for (const auto& [status, expected] : rows) {
    Keys config = kThreeGroups;
    if (status) config.emplace_back("GlobalShaderSortingOrder.Status", *status);
    EXPECT_EQ(Shown(Node("t" + std::to_string(n++), {"a", "b", "c"}, config)), expected)
        << "status " << status.value_or("(missing)");
  }
}

TEST_F(GroupingTest, EqualOrUnreadableGroupOrdersKeepConfigurationOrder) {
  // Up to 32 groups are sorted by insertion: equal orders stay as configured; an order that does
  // not read as a number counts as missing (last); "%llu" reads " 3x" as 3 and "-1" as the
  // largest value.
  KEPRshShaderImmLayout* editor = Edit(Node("t", {"a", "b", "c", "d", "e"},
                                            {{"GlobalShaderSortingOrder.Status", "yes"},
                                             {"GroupCount", "5"},
                                             {"Group0.Order", "abc"},
                                             {"Group1.Order", "7"},
                                             {"Group2.Order", " 3x"},
                                             {"Group3.Order", "7"},
                                             {"Group4.Order", "-1"},
                                             {"a.Group", "Group0"},
                                             {"b.Group", "Group1"},
                                             {"c.Group", "Group2"},
                                             {"d.Group", "Group3"},
                                             {"e.Group", "Group4"}}));
  EXPECT_EQ(Layout(editor),
            (std::vector<std::string>{"ParameterGroup2", "ParameterGroup1", "ParameterGroup3",
                                      "ParameterGroup0", "ParameterGroup4"}));
}

TEST_F(GroupingTest, ManyGroupsAreSortedByOrder) {
  // Above 32 groups another sort takes over; the orders still decide.
  Keys config = {{"GlobalShaderSortingOrder.Status", "yes"}, {"GroupCount", "40"}};
  std::vector<std::string> parameters;
  for (int i = 0; i < 40; ++i) {
    const std::string group = "Group" + std::to_string(i);
    config.emplace_back(group + ".Order", std::to_string((i * 17) % 40));
    parameters.push_back("p" + std::to_string(i));
    config.emplace_back(parameters.back() + ".Group", group);
  }
  const std::vector<std::string> shown = Shown(Node("t", parameters, config));
  ASSERT_EQ(shown.size(), 40u);
  for (int order = 0; order < 40; ++order) {
    int group = 0;
    while ((group * 17) % 40 != order) ++group;
    EXPECT_EQ(shown[static_cast<std::size_t>(order)], "ParameterGroup" + std::to_string(group));
  }
}

TEST_F(GroupingTest, ParametersFollowTheirSortingOrders) {
  struct Case {
    const char* what;
    Keys orders;  // parameter -> ".SortingOrder" (absent: none)
    std::vector<std::string> expected;
  };
  const Case cases[] = {
      {"none first, then by number; an unreadable order goes by name (here after both)",
       {{"ten", "10"}, {"two", "2"}, {"zabc", "abc"}},
       {"none", "two", "ten", "zabc"}},
      {"an unreadable order whose name sorts first goes before the numbers",
       {{"ten", "10"}, {"two", "2"}, {"aabc", "abc"}},
       {"none", "aabc", "two", "ten"}},
      {"\"%u\" reading: blanks skipped, text after the number ignored, -1 wraps",
       {{"ten", "10"}, {"two", "2x"}, {"wrap", "-1"}, {"three", " 3"}},
       {"none", "two", "three", "ten", "wrap"}},
  };
  int n = 0;
  for (const Case& c : cases) {
    std::vector<std::string> parameters = {"none"};
    Keys config = {
        {"GlobalShaderSortingOrder.Status", "yes"}, {"GroupCount", "1"}, {"none.Group", "Group0"}};
    for (const auto& [name, order] : c.orders) {
      parameters.insert(parameters.begin(), name);  // node order: reversed, then "none" last
      config.emplace_back(name + ".Group", "Group0");
      config.emplace_back(name + ".SortingOrder", order);
    }
    EXPECT_EQ(Rows(Node("t" + std::to_string(n++), parameters, config),
                   "ParameterGroup0/ParameterGroup0Layout"),
              c.expected)
        << c.what;
  }
}

TEST_F(GroupingTest, ParametersWithoutOrderGoByNameAndEqualOrdersEitherWay) {
  const Keys config = {{"GlobalShaderSortingOrder.Status", "yes"},
                       {"GroupCount", "2"},
                       {"zeta.Group", "Group0"},
                       {"alpha.Group", "Group0"},
                       {"x.Group", "Group1"},
                       {"y.Group", "Group1"},
                       {"w.Group", "Group1"},
                       {"x.SortingOrder", "4"},
                       {"y.SortingOrder", "4"},
                       {"w.SortingOrder", "1"}};
  KEPRshShaderImmLayout* editor = Edit(Node("t", {"zeta", "alpha", "x", "y", "w"}, config));
  EXPECT_EQ(Labels(At(editor, "ParameterGroup0/ParameterGroup0Layout")),
            (std::vector<std::string>{"alpha", "zeta"}));
  const std::vector<std::string> equal =
      Labels(At(editor, "ParameterGroup1/ParameterGroup1Layout"));
  ASSERT_EQ(equal.size(), 3u);
  EXPECT_EQ(equal[0], "w");
  EXPECT_TRUE((equal[1] == "x" && equal[2] == "y") || (equal[1] == "y" && equal[2] == "x"));
}

TEST_F(GroupingTest, NodeOrderWhereverSortingDoesNotApply) {
  const Keys ordered = {{"GroupCount", "1"},     {"c.Group", "Group0"},   {"b.Group", "Group0"},
                        {"c.SortingOrder", "2"}, {"b.SortingOrder", "1"}, {"z.SortingOrder", "2"},
                        {"y.SortingOrder", "1"}};
  // Sorting disabled: the group keeps node order.
  EXPECT_EQ(Rows(Node("off", {"c", "b"}, ordered), "ParameterGroup0/ParameterGroup0Layout"),
            (std::vector<std::string>{"c", "b"}));
  // Sorting enabled: the parameters of no group keep node order all the same.
  Keys enabled = ordered;
  enabled.emplace_back("GlobalShaderSortingOrder.Status", "yes");
  KEPRshShaderImmLayout* editor = Edit(Node("on", {"z", "c", "y", "b"}, enabled));
  EXPECT_EQ(Labels(At(editor, "ParameterGroup0/ParameterGroup0Layout")),
            (std::vector<std::string>{"b", "c"}));
  EXPECT_EQ(Labels(At(editor, "ParameterNoGroupLayout")), (std::vector<std::string>{"z", "y"}));
}

TEST_F(GroupingTest, TheRecordersLevelDecidesWhetherGroupsAreSorted) {
  const Keys config = {{"GlobalShaderSortingOrder.Status", "yes"},
                       {"GroupCount", "2"},
                       {"Group0.Order", "2"},
                       {"Group1.Order", "1"},
                       {"b.Group", "Group0"},
                       {"a.Group", "Group0"},
                       {"c.Group", "Group1"}};
  const std::string record = (std::filesystem::temp_directory_path() /
                              ("keprsh-editor-record-" + std::to_string(::getpid()) + ".json"))
                                 .string();
  struct Case {
    const char* what;
    const char* replayed;  // record file to replay; null: capture instead
    std::vector<std::string> expected;
  };
  const Case cases[] = {
      {"a replay without the level reads 0", R"({"softwareLevels": {}})", {"b", "a"}},
      {"a replay of level 1 sorts",
       R"({"softwareLevels": {"LayoutParameterSortingLevel": 1}})",
       {"a", "b"}},
      {"a capture sorts and records level 1", nullptr, {"a", "b"}},
  };
  int n = 0;
  for (const Case& c : cases) {
    Reset();  // a new session: the level is read again
    if (c.replayed) {
      std::ofstream file(record, std::ios::binary);
      file << c.replayed;
      file.close();
      ASSERT_EQ(KEPHostRecorder::StartReplay(record), S_OK) << c.what;
    } else {
      ASSERT_EQ(KEPHostRecorder::StartCapture(record), S_OK);
    }
    KEPRshShaderImmLayout* editor = Edit(Node("t" + std::to_string(n++), {"b", "a", "c"}, config));
    // Groups follow their orders whatever the level.
    EXPECT_EQ(Layout(editor), (std::vector<std::string>{"ParameterGroup1", "ParameterGroup0"}))
        << c.what;
    EXPECT_EQ(Labels(At(editor, "ParameterGroup0/ParameterGroup0Layout")), c.expected) << c.what;
    if (!c.replayed) {
      EXPECT_EQ(KEPHostRecorder::RecordedLevels()["LayoutParameterSortingLevel"], 1);
    }
    KEPHostRecorder::Stop();
  }
  std::filesystem::remove(record);
}

TEST_F(GroupingTest, HiddenParametersAndGroups) {
  const Keys config = {
      {"GroupCount", "3"},   {"a.Group", "Group0"},  // all of Group0 hidden: no expander
      {"a.Widget", "None"},  {"b.Group", "Group0"},
      {"b.Widget", "NONE"},  {"c.Group", "Group1"},  // Group1 shown without its hidden one
      {"d.Group", "Group1"}, {"d.Widget", "none"},
      {"e.Group", "Group7"},   // a group that is not configured: nowhere
      {"f.Widget", "nonE"},    // of no group, hidden
      {"g.Widget", "none "}};  // not the word none: shown
  KEPRshShaderImmLayout* editor = Edit(Node("t", {"a", "b", "c", "d", "e", "f", "g"}, config));
  EXPECT_EQ(Layout(editor),
            (std::vector<std::string>{"ParameterGroup1", "ParameterNoGroupLayout"}));
  EXPECT_EQ(Labels(At(editor, "ParameterGroup1/ParameterGroup1Layout")),
            (std::vector<std::string>{"c"}));
  EXPECT_EQ(Labels(At(editor, "ParameterNoGroupLayout")), (std::vector<std::string>{"g"}));
  // Hidden parameters take no running number.
  EXPECT_NE(At(editor, "ParameterGroup1/ParameterGroup1Layout/ParameterLabel0"), nullptr);
  EXPECT_NE(At(editor, "ParameterNoGroupLayout/ParameterLabel1"), nullptr);
}

TEST_F(GroupingTest, PlacementParametersOfATextureUnderAPhysicalMaterialAreLeftOut) {
  TheWorld().Add(Type("MPM_paint").Param("weight", Scalar(1)));
  TheWorld().Add(Type("mia_phen_material").Param("weight", Scalar(1)));
  Type texture("kep_phen_texture");
  for (const char* name : {"scale_u", "angle", "group_names", "gamma", "scale"})
    texture.Param(name, Scalar(1));
  TheWorld().Add(texture);
  const KEPHostShaderTypeDefinition* type = TheWorld().library->FindType("kep_phen_texture");
  struct Case {
    const char* father;
    std::vector<std::string> expected;
  };
  const Case cases[] = {
      {"MPM_paint", {"gamma", "scale"}},
      {"mia_phen_material", {"scale_u", "angle", "group_names", "gamma", "scale"}}};
  for (const Case& c : cases) {
    KEPHostShaderNode* father = TheWorld().Node(c.father);
    const auto node = KEP_var<KEPHostShaderNode>::Adopt(
        KEPHostShaderNode::Create(*type, std::string("tex-") + c.father, father));
    EXPECT_EQ(Rows(node.Get(), "ParameterNoGroupLayout"), c.expected) << c.father;
    Root()->DeleteChildren();
  }
}

TEST_F(GroupingTest, GroupCountReadsAsAnUnsigned64BitNumber) {
  const std::vector<std::string> both = {"ParameterGroup0", "ParameterGroup1",
                                         "ParameterNoGroupLayout"};
  struct Case {
    const char* count;
    std::size_t records;
    std::vector<std::string> expected;
    const char* capped;  // the count the warning names; null: no warning
  };
  const Case cases[] = {
      {"2", 2, both, nullptr},
      {" 2 groups", 2, both, nullptr},
      {"1", 1, {"ParameterGroup0", "ParameterNoGroupLayout"}, nullptr},  // Group1 not configured
      {"two", 0, {"ParameterNoGroupLayout"}, nullptr},
      {"", 0, {"ParameterNoGroupLayout"}, nullptr},
      {"4096", 4096, both, nullptr},
      {"4097", 4096, both, "4097"},
      {"4000000000", 4096, both, "4000000000"},
      {"-1", 4096, both, "18446744073709551615"},
  };
  int n = 0;
  for (const Case& c : cases) {
    TraceCapture capture;
    const std::string type = "t" + std::to_string(n++);
    const auto start = std::chrono::steady_clock::now();
    KEPRshShaderImmLayout* editor =
        Edit(Node(type, {"a", "b", "loose"},
                  {{"GroupCount", c.count}, {"a.Group", "Group0"}, {"b.Group", "Group1"}}));
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(Layout(editor), c.expected) << c.count;
    EXPECT_EQ(editor->GetGroups().size(), c.records) << c.count;
    const std::string warning = "Too many groups { configuration = " + type +
                                ", GroupCount = " + (c.capped ? c.capped : "") +
                                ", groups read = 4096 }";
    EXPECT_EQ(capture.Contains(warning), c.capped != nullptr) << c.count;
    // A huge count costs a bounded number of records, not gigabytes or minutes.
    EXPECT_LT(elapsed, std::chrono::seconds(5)) << c.count;
  }
}

TEST_F(GroupingTest, GroupRecordsHoldKeyNameAndOrder) {
  KEPRshShaderImmLayout* editor = Edit(Node("t", {"a"},
                                            {{"GroupCount", "2"},
                                             {"Group0.Name", "Base coat \xC3\xA9"},
                                             {"Group0.Order", "18446744073709551615"},
                                             {"Group1.Order", "3"}}));
  const std::vector<KEPRshGroupRecord>& groups = editor->GetGroups();
  ASSERT_EQ(groups.size(), 2u);
  EXPECT_EQ(groups[0].key, "Group0");
  EXPECT_EQ(groups[0].number, 0u);
  EXPECT_EQ(groups[0].name.ToUTF8(), "Base coat \xC3\xA9");
  EXPECT_EQ(groups[0].order, 18446744073709551615ull);
  EXPECT_EQ(groups[1].key, "Group1");
  EXPECT_TRUE(groups[1].name.IsEmpty());
  EXPECT_EQ(groups[1].order, 3u);
}

}  // namespace
}  // namespace keptest
