// The classic scalar frame: the control each widget kind builds, the unit table both ways, the
// model notification after a successful write only, and a parameter that outlives its node or
// has no place in the model (the render lock is RenderLockTest's).

#include "FramesTestSupport.h"
#include "KEPDlgSpinner.h"
#include "KEPIRshShaderSupport.h"
#include "KEPRbaScalarSlider.h"
#include "KEPRbaScalarWheel.h"
#include "KEPRshParameterScalarFrame.h"
#include "KEPRshScalarBlackbodySlider.h"

namespace keptest {
namespace {

using ScalarFrameTest = FrameTest;

/// A scalar parameter known to no model: it has no father to ask for (no KEPISpecObject).
class LonelyParameter : public KEPBaseUnknown, public KEPIRshParameter {
 public:
  float value = 4.0f;
  HRESULT GetName(KEPString& n) override { return n = "lonely", S_OK; }
  HRESULT GetTypeName(KEPString& t) override { return t = "KEPRmaScalar", S_OK; }
  HRESULT GetBooleanValue(unsigned char&) override { return E_FAIL; }
  HRESULT SetBooleanValue(unsigned char) override { return E_FAIL; }
  HRESULT GetIntegerValue(int&) override { return E_FAIL; }
  HRESULT SetIntegerValue(int) override { return E_FAIL; }
  HRESULT GetScalarValue(float& v) override { return v = value, S_OK; }
  HRESULT SetScalarValue(float v) override { return value = v, S_OK; }
  HRESULT GetColorValue(float&, float&, float&, float*) override { return E_FAIL; }
  HRESULT SetColorValue(float, float, float, float) override { return E_FAIL; }
  HRESULT GetVectorValue(float (&)[4]) override { return E_FAIL; }
  HRESULT SetVectorValue(const float (&)[4]) override { return E_FAIL; }
  int GetVectorDimension() override { return 0; }
  HRESULT GetTextureValue(KEPIPLMDmtDocument*&) override { return E_FAIL; }
  HRESULT SetTextureValue(KEPIPLMDmtDocument*) override { return E_FAIL; }
  HRESULT GetConnectedShader(KEPIRshShader*&) override { return E_FAIL; }
  HRESULT SetConnectedShader(KEPIRshShader*) override { return E_FAIL; }
};

TEST_F(ScalarFrameTest, WidgetKindChoosesOneControlInAnyLetterCase) {
  struct Row {
    const char* kind;  // nullptr: no ".Widget" key
    const char* control;
  } const rows[] = {{"Slider", "scalarSlider"}, {"BLACKBODY", "scalarBlackbodySlider"},
                    {"wheel", "scalarWheel"},   {"spinner", "scalarSpinner"},
                    {"ratio", "scalarSpinner"}, {nullptr, "scalarSpinner"}};
  for (const Row& r : rows) {
    SCOPED_TRACE(r.kind ? r.kind : "(none)");
    Keys keys;
    if (r.kind) keys.emplace_back(".Widget", r.kind);
    auto* frame = Build<KEPRshParameterScalarFrame>(Param(KEPHostValue::Scalar(0.5f), keys));
    ASSERT_NE(frame, nullptr);
    ASSERT_EQ(frame->GetChildCount(), 1u);
    EXPECT_EQ(frame->GetChild(0)->GetName(), r.control);
    const int built = (frame->GetSlider() != nullptr) + (frame->GetBlackbodySlider() != nullptr) +
                      (frame->GetWheel() != nullptr) + (frame->GetSpinner() != nullptr);
    EXPECT_EQ(built, 1);
  }
}

TEST_F(ScalarFrameTest, ControlsAreSetUpWithTheirRangeDefaultsFormatsAndWidths) {
  auto* slider =
      Build<KEPRshParameterScalarFrame>(Param(KEPHostValue::Scalar(0.5f), {{".Widget", "slider"}}))
          ->GetSlider();
  double lo = 0, hi = 0, step = 0, minor = 0, major = 0, drag = 0;
  int positions = 0;
  slider->GetRange(lo, hi, step);
  slider->GetTrackSettings(minor, major, drag, positions);
  EXPECT_EQ(std::vector<double>({lo, hi, step, minor, major, drag}),
            std::vector<double>({0.0, 1.0, 0.01f, 1.0, 1.0, 1.0}));  // the range is read as floats
  EXPECT_EQ(positions, 100);
  EXPECT_STREQ(slider->GetFormat(), "%.2f");
  EXPECT_EQ(slider->GetVisibleTextWidth(), 4);
  EXPECT_EQ(slider->GetStyle(), 0xa0000);

  auto* wheel =
      Build<KEPRshParameterScalarFrame>(Param(KEPHostValue::Scalar(0.5f), {{".Widget", "wheel"}}))
          ->GetWheel();
  wheel->GetRange(lo, hi, step);
  EXPECT_EQ(std::vector<double>({lo, hi, step}), std::vector<double>({-1e6, 1e6, 1.0}));
  EXPECT_EQ(wheel->GetPrecision(), 4);
  EXPECT_EQ(wheel->GetStyle(), 0x8a0000);

  auto* blackbody = Build<KEPRshParameterScalarFrame>(
                        Param(KEPHostValue::Scalar(0.5f), {{".Widget", "blackbody"}}))
                        ->GetBlackbodySlider();
  EXPECT_EQ(blackbody->GetVisibleTextWidth(), 6);
  EXPECT_STREQ(blackbody->GetFormat(), "%.2f");
  EXPECT_FALSE(blackbody->GetGradientPixels().empty());  // painted once set up
}

TEST_F(ScalarFrameTest, UnitTableScalesLengthsIntoTheControlAndGivesItsCode) {
  struct Row {
    const char *widget, *unit;
    float stored;
    double shown;
    int code;
  } const rows[] = {
      {"spinner", "cm", 25.0f, 0.025, 46}, {"spinner", "MM", 10.0f, 0.01, 45},
      {"wheel", "m", 2000.0f, 2.0, 43},    {"slider", "Km", 0.5f, 0.0005, 47},
      {"spinner", "deg", 1.5f, 1.5, 12},   {"spinner", "k", 6500.0f, 6500.0, 95},
      {"wheel", "K", 6500.0f, 6500.0, 95}, {"slider", "K", 0.5f, 0.5, 0},
      {"slider", "k", 0.5f, 0.5, 0},       {"spinner", "in", 5.0f, 5.0, 0},
      {"blackbody", "K", 0.5f, 0.5, 95},   {"blackbody", "mm", 0.5f, 0.5, 0},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(std::string(r.widget) + " in " + r.unit);
    auto* frame = Build<KEPRshParameterScalarFrame>(
        Param(KEPHostValue::Scalar(r.stored),
              {{".Widget", r.widget}, {".Unit", r.unit}, {".Min", "-1e6"}, {".Max", "1e6"}}));
    double value = 0.0;
    int code = -1;
    if (auto* c = frame->GetSpinner()) value = c->GetValue(), code = c->GetUnit();
    if (auto* c = frame->GetWheel()) value = c->GetValue(), code = c->GetUnit();
    if (auto* c = frame->GetSlider()) value = c->GetValue(), code = c->GetUnit();
    if (auto* c = frame->GetBlackbodySlider()) value = c->GetValue(), code = c->GetUnit();
    EXPECT_NEAR(value, r.shown, 1e-9);
    EXPECT_EQ(code, r.code);
  }
  // The wheel shows kelvins with the configured unit name as its symbol.
  auto* wheel = Build<KEPRshParameterScalarFrame>(
                    Param(KEPHostValue::Scalar(1.0f), {{".Widget", "wheel"}, {".Unit", "K"}}))
                    ->GetWheel();
  EXPECT_EQ(wheel->GetCustomUnitSymbol(), "K");
}

TEST_F(ScalarFrameTest, LengthRangeIsScaledButTheBlackbodyRangeIsNot) {
  const Keys range = {{".Unit", "cm"}, {".Min", "0"}, {".Max", "1000"}, {".Step", "10"}};
  auto* spinner =
      Build<KEPRshParameterScalarFrame>(Param(KEPHostValue::Scalar(1.0f), range))->GetSpinner();
  double lo = 0, hi = 0, step = 0;
  spinner->GetMinMaxStep(lo, hi, step);
  EXPECT_NEAR(hi, 1.0, 1e-12);
  EXPECT_NEAR(step, 0.01, 1e-12);
  Keys blackbodyKeys = {{".Widget", "blackbody"}, {".Min", "1000"}, {".Max", "10000"}};
  auto* blackbody =
      Build<KEPRshParameterScalarFrame>(Param(KEPHostValue::Scalar(6500.0f), blackbodyKeys))
          ->GetBlackbodySlider();
  blackbody->GetMinMaxStep(lo, hi, step);
  EXPECT_EQ(std::vector<double>({lo, hi, step}), std::vector<double>({1000.0, 10000.0, 0.01f}));
  EXPECT_EQ(blackbody->GetValue(), 6500.0);
}

TEST_F(ScalarFrameTest, PersonsValueIsWrittenBackInTheStoredUnit) {
  KEPHostParameter* cm = Param(KEPHostValue::Scalar(25.0f), {{".Unit", "cm"}});
  auto* spinner = Build<KEPRshParameterScalarFrame>(cm)->GetSpinner();
  Act(spinner, KEPVidAction::Set, "3");  // typed in centimetres
  EXPECT_FLOAT_EQ(Scalar(cm), 30.0f);
  Act(spinner, KEPVidAction::Set, "2.5");
  EXPECT_EQ(Scalar(cm), 25.0f);

  // A slider never holds kelvins, so nothing is scaled on the way out either.
  KEPHostParameter* kelvin =
      Param(KEPHostValue::Scalar(0.5f), {{".Widget", "slider"}, {".Unit", "K"}});
  Act(Build<KEPRshParameterScalarFrame>(kelvin)->GetSlider(), KEPVidAction::Drag, "0.75");
  EXPECT_EQ(Scalar(kelvin), 0.75f);

  KEPHostParameter* temperature =
      Param(KEPHostValue::Scalar(6500.0f),
            {{".Widget", "blackbody"}, {".Unit", "K"}, {".Min", "1000"}, {".Max", "10000"}});
  auto* blackbody = Build<KEPRshParameterScalarFrame>(temperature)->GetBlackbodySlider();
  Act(blackbody->GetSlider(), KEPVidAction::Set, "3000");
  EXPECT_EQ(Scalar(temperature), 3000.0f);
  Act(blackbody->GetSpinner(), KEPVidAction::Set, "4000");
  EXPECT_EQ(Scalar(temperature), 4000.0f);
}

TEST_F(ScalarFrameTest, SuccessfulWriteAloneNotifiesTheOwnerOfTheShader) {
  KEPHostParameter* p = Param(KEPHostValue::Scalar(1.0f));
  auto* frame = Build<KEPRshParameterScalarFrame>(p);
  ASSERT_EQ(frame->GetOwnerFeature(), static_cast<KEPBaseUnknown*>(Document()));
  FloatModifyLog log;
  TraceCapture capture(5);
  Act(frame->GetSpinner(), KEPVidAction::Set, "2");
  ASSERT_EQ(log.sent.size(), 1u);
  EXPECT_EQ(log.sent[0].feature, static_cast<KEPBaseUnknown*>(Document()));
  EXPECT_EQ(log.sent[0].support, static_cast<KEPIRshShaderSupport*>(Document()));
  EXPECT_EQ(log.sent[0].attributeKind, 2);
  EXPECT_TRUE(capture.Contains("(KEPRshParameterScalarFrame::ParameterModifiedCB)\n"));

  p->SetValue(KEPHostValue::Color(1, 1, 1));  // a scalar write now fails
  Act(frame->GetSpinner(), KEPVidAction::Set, "3");
  EXPECT_EQ(log.sent.size(), 1u);
}

TEST_F(ScalarFrameTest, ParameterOutlivesItsNodeAndNoOwnerIsNotified) {
  KEPHostParameter* p = Param(KEPHostValue::Scalar(1.0f), {{".Widget", "wheel"}});
  auto* frame = Build<KEPRshParameterScalarFrame>(p);
  FloatModifyLog log;
  DropModel();
  EXPECT_EQ(frame->GetOwnerFeature(), nullptr);
  Act(frame->GetWheel(), KEPVidAction::Set, "5");
  EXPECT_EQ(Scalar(frame->GetParameter()), 5.0f);
  EXPECT_TRUE(log.sent.empty());
}

TEST_F(ScalarFrameTest, ParameterWithoutAPlaceInTheModelLeavesTheFrameEmpty) {
  const auto lonely = KEP_var<LonelyParameter>::Adopt(new LonelyParameter());
  TraceCapture capture;
  auto* frame = new KEPRshParameterScalarFrame(Root(), lonely.Get(), "lonely", 0);
  EXPECT_EQ(frame->GetChildCount(), 0u);
  const auto& entries = capture.Entries();
  const auto assertion = std::find_if(entries.begin(), entries.end(), [](const KEPTraceEntry& e) {
    return e.level == KEPTraceLevel::Assertion;
  });
  ASSERT_NE(assertion, entries.end());
  EXPECT_EQ(assertion->text, "AssertionFailed:hFeature && \"KEPISpecObject not available\"");
  EXPECT_EQ(assertion->file, "RenderingShader/KEPRshView.m/src/KEPRshParameterScalarFrame");
  frame->ParameterModifiedCB(nullptr, nullptr, 0);  // no control: nothing is written
  EXPECT_EQ(lonely->value, 4.0f);
}

}  // namespace
}  // namespace keptest
