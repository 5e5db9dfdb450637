// Widget choice: the configured kind with an information trace, else the type's default kind
// with a warning, on the "KEPRshParameterConfiguration" channel.
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

class WidgetChoiceTest : public MetadataTest {};

struct Row {
  const char* name;
  KEPHostValue value;
  const char* immersiveDefault;
  const char* classicDefault;
};

TEST_F(WidgetChoiceTest, ConfiguredKindIsTakenAsWrittenWithAnInfoTrace) {
  World world;
  world.Add(Type("mat").Param("roughness", Scalar(0.5f)));
  Config("mat", {{"roughness.Widget", "Slider"}});
  auto imm = Imm(world.Param(world.Node("mat"), "roughness"));
  TraceCapture capture;
  KEPString kind;
  ASSERT_EQ(imm->ChooseWidgetKind(kind), S_OK);
  EXPECT_EQ(kind, "Slider");
  ASSERT_EQ(capture.Entries().size(), 1u);
  const KEPTraceEntry& entry = capture.Entries()[0];
  EXPECT_EQ(entry.channel, "KEPRshParameterConfiguration");
  EXPECT_EQ(entry.level, KEPTraceLevel::Info);
  EXPECT_EQ(entry.text, "Parameter roughness's widget is Slider { type = KEPRmaScalar }");
}

TEST_F(WidgetChoiceTest, MissingKindFallsBackToTheTypeDefaultWithAWarning) {
  const Row rows[] = {{"b", Boolean(true), "check", "check"},
                      {"n", Integer(1), "spinner", "spinner"},
                      {"x", Scalar(1), "no-value", "spinner"},
                      {"c", Color(1, 1, 1), "color", "color"},
                      {"v", Vector({1, 2}), "spinner", "spinner"},
                      {"t", Texture(), "texture", "texture"},
                      {"s", Void(), "shader", "shader"}};
  World world;
  Type type("mat");
  for (const Row& row : rows) type.Param(row.name, row.value);
  world.Add(type);
  KEPHostShaderNode* node = world.Node("mat");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    KEPString typeName;
    world.Param(node, row.name)->GetTypeName(typeName);
    TraceCapture capture;
    KEPString kind;
    ASSERT_EQ(Imm(world.Param(node, row.name))->ChooseWidgetKind(kind), S_OK);
    EXPECT_EQ(kind, row.immersiveDefault);
    ASSERT_EQ(capture.Entries().size(), 1u);
    EXPECT_EQ(capture.Entries()[0].level, KEPTraceLevel::Warning);
    EXPECT_EQ(capture.Entries()[0].channel, "KEPRshParameterConfiguration");
    EXPECT_EQ(capture.Entries()[0].text, "Parameter " + std::string(row.name) +
                                             "'s widget defaulted to " + row.immersiveDefault +
                                             " { type = " + typeName + " }");
    capture.Clear();
    ASSERT_EQ(Dlg(world.Param(node, row.name))->ChooseWidgetKind(kind), S_OK);
    EXPECT_EQ(kind, row.classicDefault);
  }
}

TEST_F(WidgetChoiceTest, ResourceKindWinsAndKindListsFollowTheType) {
  World world;
  world.Add(Type("res")
                .Param("x", Scalar(1))
                .Param("c", Color(1, 1, 1))
                .Resource("x", "widget", "ratio"));
  Config("res", {{"x.Widget", "slider"}});
  KEPHostShaderNode* node = world.Node("res");
  KEPString kind;
  auto imm = Imm(world.Param(node, "x"));
  ASSERT_EQ(imm->ChooseWidgetKind(kind), S_OK);
  EXPECT_EQ(kind, "ratio");
  std::vector<KEPString> kinds;
  ASSERT_EQ(imm->GetWidgetKinds(kinds), S_OK);
  EXPECT_EQ(kinds, (std::vector<KEPString>{"slider", "wheel", "spinner", "ratio", "dynamic-slider",
                                           "no-value", "generic"}));
  ASSERT_EQ(Dlg(world.Param(node, "x"))->GetWidgetKinds(kinds), S_OK);
  EXPECT_EQ(kinds, (std::vector<KEPString>{"slider", "wheel", "blackbody"}));
  ASSERT_EQ(Imm(world.Param(node, "c"))->GetWidgetKinds(kinds), S_OK);
  EXPECT_EQ(kinds, (std::vector<KEPString>{"scalar-spinner", "color"}));
  // A colour of a node with resources but no "widget" resource takes its default.
  ASSERT_EQ(Imm(world.Param(node, "c"))->ChooseWidgetKind(kind), S_OK);
  EXPECT_EQ(kind, "color");
  DeleteAll(node);
}

}  // namespace
}  // namespace keptest
