// Widget choice: the configured kind with an information trace, else the type's default kind
// with a warning, on the "KEPRshParameterConfiguration" channel.
#include "MetadataTestSupport.h"

namespace keptest {
namespace {

class WidgetChoiceTest : public MetadataTest {};

TEST_F(WidgetChoiceTest, ConfiguredKindElseTheTypesDefault) {
  const std::tuple<KEPHostValue, const char*, const char*> rows[] = {
      {Boolean(true), "check", "check"},
      {Integer(1), "spinner", "spinner"},
      {Scalar(1), "no-value", "spinner"},
      {Color(1, 1, 1), "color", "color"},
      {Vector({1, 2}), "spinner", "spinner"},
      {Texture(), "texture", "texture"},
      {Void(), "shader", "shader"}};
  for (const auto& [value, immersive, classic] : rows) {
    const std::string type = KEPRmaTypeName(value.type);
    // Resources offered without "widget": the configuration is not asked.
    const std::tuple<std::optional<Keys>, const char*, const char*, KEPTraceLevel, std::string>
        passes[] = {{std::nullopt, "Slider", "Slider", KEPTraceLevel::Info,
                     "Parameter p's widget is Slider { type = " + type + " }"},
                    {Keys{}, immersive, classic, KEPTraceLevel::Warning,
                     "Parameter p's widget defaulted to " + std::string(immersive) +
                         " { type = " + type + " }"},
                    {Keys{{"widget", "ratio"}}, "ratio", "ratio", KEPTraceLevel::Info,
                     "Parameter p's widget is ratio { type = " + type + " }"}};
    for (const auto& [resources, immKind, dlgKind, level, trace] : passes) {
      const Behaviours b = Behave(Param(value, {{".Widget", "Slider"}}, resources));
      TraceCapture capture;
      KEPString kind;
      ASSERT_EQ(b.imm->ChooseWidgetKind(kind), S_OK);
      EXPECT_EQ(kind, immKind);
      ASSERT_EQ(b.dlg->ChooseWidgetKind(kind), S_OK);  // not traced
      EXPECT_EQ(kind, dlgKind);
      ASSERT_EQ(capture.Entries().size(), 1u);
      EXPECT_EQ(capture.Entries()[0].channel, "KEPRshParameterConfiguration");
      EXPECT_EQ(capture.Entries()[0].level, level);
      EXPECT_EQ(capture.Entries()[0].text, trace);
    }
    KEPString defaults[2];
    EXPECT_EQ(Imm(Param(value))->GetDefaultWidgetKind(defaults[0]), S_OK);
    EXPECT_EQ(Dlg(Param(value))->GetDefaultWidgetKind(defaults[1]), S_OK);
    EXPECT_EQ(defaults[0], immersive);
    EXPECT_EQ(defaults[1], classic);
  }
}

}  // namespace
}  // namespace keptest
