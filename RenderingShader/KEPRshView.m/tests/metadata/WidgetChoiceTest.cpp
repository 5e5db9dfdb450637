// Widget choice: the configured kind with an information trace, else the type's default kind
// with a warning, on the "KEPRshParameterConfiguration" channel; the kinds each type tells apart.
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

class WidgetChoiceTest : public MetadataTest {};

using Kinds = std::vector<KEPString>;

struct Row {
  KEPHostValue value;
  const char* immersiveDefault;
  const char* classicDefault;
  Kinds immersiveKinds;
  Kinds classicKinds;
};

TEST_F(WidgetChoiceTest, ConfiguredKindElseTheTypesDefaultAndTheKindsItTellsApart) {
  const Row rows[] = {
      {Boolean(true), "check", "check", {}, {}},
      {Integer(1),
       "spinner",
       "spinner",
       {"slider", "wheel", "combo", "check"},
       {"slider", "wheel", "combo", "check"}},
      {Scalar(1),
       "no-value",
       "spinner",
       {"slider", "wheel", "spinner", "ratio", "dynamic-slider", "no-value", "generic"},
       {"slider", "wheel", "blackbody"}},
      {Color(1, 1, 1), "color", "color", {"scalar-spinner", "color"}, {}},
      {Vector({1, 2}),
       "spinner",
       "spinner",
       {"sliderx2", "sliderx3", "sliderx4", "no-value"},
       {"vector2d", "sliderx2", "sliderx3", "sliderx4"}},
      {Texture(), "texture", "texture", {}, {}},
      {Void(), "shader", "shader", {}, {}}};
  for (const Row& row : rows) {
    const std::string type = KEPRmaTypeName(row.value.type);
    // Configured: taken as written. Resources offered without "widget": the configuration is
    // not asked, the type's default is taken.
    const std::tuple<std::optional<Keys>, const char*, const char*, KEPTraceLevel, std::string>
        passes[] = {{std::nullopt, "Slider", "Slider", KEPTraceLevel::Info,
                     "Parameter p's widget is Slider { type = " + type + " }"},
                    {Keys{}, row.immersiveDefault, row.classicDefault, KEPTraceLevel::Warning,
                     "Parameter p's widget defaulted to " + std::string(row.immersiveDefault) +
                         " { type = " + type + " }"}};
    for (const auto& [resources, immersive, classic, level, trace] : passes) {
      const Behaviours b = Behave(Param(row.value, {{".Widget", "Slider"}}, resources));
      TraceCapture capture;
      KEPString kind;
      ASSERT_EQ(b.imm->ChooseWidgetKind(kind), S_OK);
      EXPECT_EQ(kind, immersive);
      ASSERT_EQ(capture.Entries().size(), 1u);
      EXPECT_EQ(capture.Entries()[0].channel, "KEPRshParameterConfiguration");
      EXPECT_EQ(capture.Entries()[0].level, level);
      EXPECT_EQ(capture.Entries()[0].text, trace);
      ASSERT_EQ(b.dlg->ChooseWidgetKind(kind), S_OK);
      EXPECT_EQ(kind, classic);
      EXPECT_EQ(capture.Entries().size(), 1u);  // the classic choice is not traced
    }
    const Behaviours b = Behave(Param(row.value));
    Kinds kinds{"stale"};
    ASSERT_EQ(b.imm->GetWidgetKinds(kinds), S_OK);
    EXPECT_EQ(kinds, row.immersiveKinds) << type;
    ASSERT_EQ(b.dlg->GetWidgetKinds(kinds), S_OK);
    EXPECT_EQ(kinds, row.classicKinds) << type;
    KEPString immersive, classic;
    ASSERT_EQ(b.imm->GetDefaultWidgetKind(immersive), S_OK);
    ASSERT_EQ(b.dlg->GetDefaultWidgetKind(classic), S_OK);
    EXPECT_EQ(immersive, row.immersiveDefault);
    EXPECT_EQ(classic, row.classicDefault);
  }
}

TEST_F(WidgetChoiceTest, ResourceKindWinsOverTheConfiguration) {
  const Behaviours b = Behave(Param(Scalar(1), {{".Widget", "slider"}}, Keys{{"widget", "ratio"}}));
  b.Each([](auto* behaviour) {
    KEPString kind;
    ASSERT_EQ(behaviour->ChooseWidgetKind(kind), S_OK);
    EXPECT_EQ(kind, "ratio");
  });
}

}  // namespace
}  // namespace keptest
