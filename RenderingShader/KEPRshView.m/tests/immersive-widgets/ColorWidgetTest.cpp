// The colour widget: what it shows of a colour, the lightness it writes back keeping hue and
// saturation, the picker's modes by software level, the echo guard, the render lock against a
// render thread, editors of one node in step, and a widget that outlives its parameter.
#include <unistd.h>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <future>
#include <thread>

#include "ImmWidgetTestSupport.h"
#include "KEPHostContext.h"
#include "KEPHostRecorder.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshUICtlParameterColor.h"
#include "KEPVidColorConversion.h"
#include "KEPVidCtlButton.h"
#include "KEPVidCtlColorCompositePicker.h"
#include "KEPVidCtlPopup.h"

namespace keptest {
namespace {

using Rgba = std::array<float, 4>;

/// The colours that the model announces as written into one parameter.
struct ColorLog {
  explicit ColorLog(KEPIRshParameter* parameter)
      : token(KEPRshModelEvents::AddParameterObserver([this, parameter](KEPIRshParameter* p, auto) {
          Rgba rgba{};
          if (p == parameter && SUCCEEDED(p->GetColorValue(rgba[0], rgba[1], rgba[2], &rgba[3])))
            writes.push_back(rgba);
        })) {}
  ~ColorLog() { KEPRshModelEvents::RemoveObserver(token); }
  ColorLog(const ColorLog&) = delete;
  ColorLog& operator=(const ColorLog&) = delete;
  std::vector<Rgba> writes;
  int token;
};

class ColorWidgetTest : public ImmWidgetTest {
 protected:
  KEPHostParameter* ColorParam(float r, float g, float b, float a = 1.0f) {
    return ParamOf(Node({{"c", Color(r, g, b, a)}}), "c");
  }
  KEPRshUICtlParameterColor* ColorWidget(KEPIRshParameter* parameter) {
    return new KEPRshUICtlParameterColor(parameter, Root(), "ParameterWidget");
  }
  template <class T>
  static T* Part(const KEPVidWidget* w, const char* name) {
    return dynamic_cast<T*>(w->FindNamedChild(name));
  }
  static KEPVidCtlSlider* Slider(const KEPVidWidget* w) {
    return Part<KEPVidCtlSlider>(w, "colorSlider");
  }
  static KEPVidCtlEditor* Editor(const KEPVidWidget* w) {
    return Part<KEPVidCtlEditor>(w, "colorEditor");
  }
  static KEPVidCtlButton* Button(const KEPVidWidget* w) {
    return Part<KEPVidCtlButton>(w, "AmbientColor");
  }
  static KEPVidCtlColorCompositePicker* Picker(const KEPVidWidget* w) {
    return Part<KEPVidCtlColorCompositePicker>(w, "colorPicker");
  }
  static KEPVidCtlPopup* Popup(const KEPVidWidget* w) {
    return Part<KEPVidCtlPopup>(w, "colorPopup");
  }
  static Rgba Stored(KEPIRshParameter* parameter) {
    Rgba rgba{-1.0f, -1.0f, -1.0f, -1.0f};
    parameter->GetColorValue(rgba[0], rgba[1], rgba[2], &rgba[3]);
    return rgba;
  }
  /// A person opens the popup through the button, then picks `rgb` ("r g b" in 0..1).
  static void Pick(const KEPVidWidget* w, const std::string& rgb) {
    Act(Button(w), KEPVidAction::Press, "");
    Act(Picker(w), KEPVidAction::Color, rgb);
  }
};

TEST_F(ColorWidgetTest, ShowsTheColourAndItsLightness) {
  struct Case {
    const char* what;
    Rgba colour;
    int slider;
    const char* editor;
    KEPVidColor shown;
    std::vector<std::string> traces;
  };
  const Case cases[] = {
      {"black",
       {0, 0, 0, 1},
       0,
       "0.00",
       {0, 0, 0, 255},
       {"HSL updated to { 0.00, 0.00, 0.00 }", "RGB updated to { 0.00, 0.00, 0.00 }"}},
      {"translucent red",
       {1, 0, 0, 0.2f},
       50,
       "0.50",
       {255, 0, 0, 255},
       {"HSL updated to { 0.00, 1.00, 0.50 }", "RGB updated to { 1.00, 0.00, 0.00 }"}},
      {"teal",
       {0.2f, 0.6f, 0.6f, 1},
       40,
       "0.40",
       {51, 153, 153, 255},
       {"HSL updated to { 0.50, 0.50, 0.40 }", "RGB updated to { 0.20, 0.60, 0.60 }"}},
      {"overbright white",
       {3, 2, 2, 1},
       100,
       "1.00",
       {255, 255, 255, 255},
       {"HSL updated to { 0.00, 0.00, 1.00 }", "RGB updated to { 3.00, 2.00, 2.00 }"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    KEPHostParameter* p = ColorParam(c.colour[0], c.colour[1], c.colour[2], c.colour[3]);
    TraceCapture trace;
    const auto* w = ColorWidget(p);
    EXPECT_EQ(Slider(w)->GetValue(), c.slider);
    EXPECT_EQ(Editor(w)->GetText().ToUTF8(), c.editor);
    EXPECT_EQ(Editor(w)->GetValue(), std::stod(c.editor));
    EXPECT_EQ(Button(w)->GetColor(), c.shown);
    EXPECT_EQ(Picker(w)->GetColor(), c.shown);
    EXPECT_EQ(trace.Texts("KEPRshUICtlParameterColor"), c.traces);
  }
}

TEST_F(ColorWidgetTest, ControlsAreNamedPlacedAndConfigured) {
  const auto* w = ColorWidget(ColorParam(0.5f, 0.5f, 0.5f));
  const KEPVidWidget* grid = w->FindNamedChild("ColorLayout");
  ASSERT_NE(grid, nullptr);
  EXPECT_EQ(grid->GetFather(), w);
  const std::pair<KEPVidWidget*, KEPVidGridCell> placed[] = {
      {Slider(w), {0, 0, 1, 1, KEPVidAttach_All}},
      {Editor(w), {0, 1, 1, 1, KEPVidAttach_All}},
      {Button(w), {0, 2, 1, 1, KEPVidAttach_All}},
      {Popup(w), {0, 2, 1, 1, KEPVidAttach_None}},  // beside the button, not stretched
  };
  for (const auto& [control, cell] : placed) {
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control->GetFather(), grid) << control->GetName();
    EXPECT_EQ(control->GetGridCell(), cell) << control->GetName();
  }
  EXPECT_EQ(Slider(w)->GetMinimum(), 0);
  EXPECT_EQ(Slider(w)->GetMaximum(), 100);
  EXPECT_EQ(Editor(w)->GetDataType(), 2);
  EXPECT_EQ(Editor(w)->GetCharacterWidth(), 4);
  // The picker lives in the popup, which opens next to the button and is closed at first.
  const KEPVidCtlColorCompositePicker* picker = Picker(w);
  EXPECT_EQ(picker->GetFather(), Popup(w));
  EXPECT_EQ(picker->GetStyle(), "VIDColorPicker");
  EXPECT_EQ(picker->GetSize(), 10);
  EXPECT_TRUE(picker->GetOption(0) && picker->GetOption(1));
  const KEPVidCtlPopup* popup = Popup(w);
  EXPECT_FALSE(popup->IsOpen());
  EXPECT_EQ(popup->GetAnchor(), Button(w));
  EXPECT_EQ((std::array<bool, 4>{popup->GetOption(0), popup->GetOption(1), popup->GetOption(2),
                                 popup->GetOption(3)}),
            (std::array<bool, 4>{false, true, true, true}));
  EXPECT_EQ(popup->GetOffsetX(), 55);
  EXPECT_EQ(popup->GetOffsetY(), 10);
  EXPECT_TRUE(w->IsAKindOf("KEPRshParameterImmWidget"));
}

TEST_F(ColorWidgetTest, PickerModesFollowTheSoftwareLevelReadOncePerProcess) {
  const std::vector<KEPString> firstLevel = {"ColorWheel", "ColorSquareS",
                                             "ColorSlidersAndSpinBoxes", "ColorPaletteSimpleColors",
                                             "ColorHistory"};
  const std::vector<KEPString> otherLevels = {
      "ColorSquareH", "ColorSquareS", "ColorSquareV", "ColorCircle", "ColorSlidersAndSpinBoxes",
      "ColorHistory"};
  KEPHostParameter* p = ColorParam(0.1f, 0.2f, 0.3f);
  EXPECT_EQ(Picker(ColorWidget(p))->GetModes(), firstLevel);

  const std::string record = (std::filesystem::temp_directory_path() /
                              ("keprsh-color-record-" + std::to_string(::getpid()) + ".json"))
                                 .string();
  struct Case {
    const char* what;
    const char* replayed;
    const std::vector<KEPString>& modes;
  };
  const Case cases[] = {
      {"a replay of level 2", R"({"softwareLevels": {"RNDRSHColorParameterColorPicker": 2}})",
       otherLevels},
      {"a replay without the level reads 0", R"({"softwareLevels": {}})", otherLevels},
      {"a replay of level 1", R"({"softwareLevels": {"RNDRSHColorParameterColorPicker": 1}})",
       firstLevel},
  };
  std::vector<KEPString> previous = firstLevel;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    // The level read before holds until the host resets its process state.
    std::ofstream(record, std::ios::binary) << c.replayed;
    ASSERT_EQ(KEPHostRecorder::StartReplay(record), S_OK);
    const std::vector<KEPString> before = Picker(ColorWidget(p))->GetModes();
    KEPRunProcessResetHooks();
    EXPECT_EQ(Picker(ColorWidget(p))->GetModes(), c.modes);
    EXPECT_EQ(Picker(ColorWidget(p))->GetModes(), c.modes);
    KEPHostRecorder::Stop();
    EXPECT_EQ(Picker(ColorWidget(p))->GetModes(), c.modes) << "read once";
    EXPECT_EQ(before, previous);
    previous = c.modes;
  }
  KEPRunProcessResetHooks();
  EXPECT_EQ(Picker(ColorWidget(p))->GetModes(), firstLevel);
  std::filesystem::remove(record);
}

TEST_F(ColorWidgetTest, LightnessChangesKeepHueAndSaturation) {
  // Through black and white and back: the widget keeps hue and saturation, so the colour
  // returns. A grey stays grey.
  const Rgba colours[] = {{1, 0, 0, 1},
                          {0, 1, 0, 1},
                          {0, 0, 1, 1},
                          {0.5f, 0.5f, 0.5f, 1},
                          {0.98f, 0.99f, 1, 1},
                          {0.1f, 0.05f, 0, 1},
                          {0.8f, 0.4f, 0.6f, 0.25f}};
  for (const Rgba& colour : colours) {
    SCOPED_TRACE(testing::Message() << colour[0] << " " << colour[1] << " " << colour[2]);
    KEPHostParameter* p = ColorParam(colour[0], colour[1], colour[2], colour[3]);
    auto* w = ColorWidget(p);
    const KEPVidHSL original = w->GetHSL();
    Act(Slider(w), KEPVidAction::Set, "0");
    EXPECT_EQ(Stored(p), (Rgba{0, 0, 0, colour[3]}));
    Act(Slider(w), KEPVidAction::Set, "100");
    EXPECT_EQ(Stored(p), (Rgba{1, 1, 1, colour[3]}));
    Act(Slider(w), KEPVidAction::Set, "30");
    const KEPVidHSL moved = KEPVidRGBToHSL(KEPVidRGB{Stored(p)[0], Stored(p)[1], Stored(p)[2]});
    EXPECT_NEAR(moved.lightness, 0.3f, 1e-6);
    EXPECT_NEAR(moved.hue, original.hue, 1e-4);
    EXPECT_NEAR(moved.saturation, original.saturation, 1e-4);
    Act(Editor(w), KEPVidAction::Type, KEPFormat("%.9g", static_cast<double>(original.lightness)));
    const Rgba back = Stored(p);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(back[i], colour[i], 1e-5);
    EXPECT_EQ(back[3], colour[3]);  // the alpha is never touched
    EXPECT_EQ(w->GetHSL().hue, original.hue);
    EXPECT_EQ(w->GetHSL().saturation, original.saturation);
  }
}

TEST_F(ColorWidgetTest, EachActionWritesOnceAndShowsItEverywhere) {
  KEPHostParameter* p = ColorParam(1, 0, 0);
  const auto* w = ColorWidget(p);
  const ColorLog log(p);

  Act(Slider(w), KEPVidAction::Set, "25");  // dark red
  ASSERT_EQ(log.writes.size(), 1u);
  EXPECT_EQ(log.writes[0], (Rgba{0.5f, 0, 0, 1}));
  EXPECT_EQ(Editor(w)->GetText().ToUTF8(), "0.25");
  EXPECT_EQ(Button(w)->GetColor(), (KEPVidColor{128, 0, 0, 255}));
  EXPECT_EQ(Picker(w)->GetColor(), (KEPVidColor{128, 0, 0, 255}));

  Act(Editor(w), KEPVidAction::Type, "0.75");  // pink
  ASSERT_EQ(log.writes.size(), 2u);
  EXPECT_EQ(log.writes[1], (Rgba{1, 0.5f, 0.5f, 1}));
  EXPECT_EQ(Slider(w)->GetValue(), 75);
  EXPECT_EQ(Editor(w)->GetText().ToUTF8(), "0.75");

  Pick(w, "0 0.2 1");
  ASSERT_EQ(log.writes.size(), 3u);
  EXPECT_EQ(log.writes[2], (Rgba{0, 51.0f / 255, 1, 1}));
  EXPECT_EQ(Slider(w)->GetValue(), 50);
  EXPECT_EQ(Editor(w)->GetText().ToUTF8(), "0.50");
  EXPECT_EQ(Button(w)->GetColor(), (KEPVidColor{0, 51, 255, 255}));

  // A lightness outside 0..1 is refused: nothing written, the editor shows the lightness again.
  for (const char* refused : {"1.5", "-0.1"}) {
    Act(Editor(w), KEPVidAction::Type, refused);
    EXPECT_EQ(Editor(w)->GetText().ToUTF8(), "0.50") << refused;
  }
  EXPECT_EQ(log.writes.size(), 3u);
}

TEST_F(ColorWidgetTest, PickerWaitsForARenderThreadAndWritesUnderTheLock) {
  KEPHostParameter* p = ColorParam(0.2f, 0.2f, 0.2f);
  const auto* w = ColorWidget(p);
  Act(Button(w), KEPVidAction::Press, "");
  // While the render thread holds the lock it must see one colour from start to end.
  std::promise<void> holding;
  std::atomic<bool> released{false};
  auto reader = std::async(std::launch::async, [&] {
    const KEPRdgRenderLock lock;
    const Rgba first = Stored(p);
    holding.set_value();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    const Rgba last = Stored(p);
    released = true;
    return first == last;
  });
  holding.get_future().wait();
  const auto renderThreadCanLock = [] {
    return std::async(std::launch::async,
                      [] {
                        const bool got = KEPRdgRenderLock::Mutex().try_lock();
                        if (got) KEPRdgRenderLock::Mutex().unlock();
                        return got;
                      })
        .get();
  };
  std::vector<bool> lockedOut;
  const int token =
      KEPRshModelEvents::AddParameterObserver([&](KEPIRshParameter*, KEPRshParameterChangeKind) {
        lockedOut.push_back(released && !renderThreadCanLock());
      });
  Act(Picker(w), KEPVidAction::Color, "1 1 0");
  Act(Slider(w), KEPVidAction::Set, "20");
  Act(Editor(w), KEPVidAction::Type, "0.3");
  KEPRshModelEvents::RemoveObserver(token);
  EXPECT_TRUE(reader.get());
  EXPECT_EQ(lockedOut, std::vector<bool>({true, true, true}));
  EXPECT_TRUE(renderThreadCanLock());
}

TEST_F(ColorWidgetTest, EditorsOfOneParameterStayInStepWithoutWritingBack) {
  KEPHostParameter* p = ColorParam(0, 0, 1);
  auto* first = ColorWidget(p);
  const auto* second = ColorWidget(p);
  const ColorLog log(p);
  Act(Slider(first), KEPVidAction::Set, "80");
  EXPECT_EQ(Slider(second)->GetValue(), 80);
  EXPECT_EQ(Editor(second)->GetText().ToUTF8(), "0.80");
  EXPECT_EQ(Button(second)->GetColor(), Button(first)->GetColor());
  EXPECT_EQ(Picker(second)->GetColor(), Picker(first)->GetColor());
  // A write from elsewhere (a grey from the spinner, a script) reaches both.
  ASSERT_EQ(p->SetColorValue(0.1f, 0.1f, 0.1f, 1.0f), S_OK);
  for (const KEPVidWidget* w :
       {static_cast<const KEPVidWidget*>(first), static_cast<const KEPVidWidget*>(second)}) {
    EXPECT_EQ(Slider(w)->GetValue(), 10);
    EXPECT_EQ(Editor(w)->GetText().ToUTF8(), "0.10");
    EXPECT_EQ(Picker(w)->GetColor(), (KEPVidColor{26, 26, 26, 255}));
  }
  EXPECT_EQ(log.writes.size(), 2u);
  // Black written by one widget: the other shows black, the first keeps its hue for the way back.
  Act(Slider(first), KEPVidAction::Set, "0");
  EXPECT_EQ(Slider(second)->GetValue(), 0);
  Pick(first, "0 0 1");
  Act(Slider(first), KEPVidAction::Set, "0");
  Act(Slider(first), KEPVidAction::Set, "50");
  EXPECT_EQ(Button(first)->GetColor(), (KEPVidColor{0, 0, 255, 255}));
  EXPECT_EQ(Picker(second)->GetColor(), (KEPVidColor{0, 0, 255, 255}));
  EXPECT_EQ(log.writes.size(), 6u);
}

TEST_F(ColorWidgetTest, TheButtonOpensThePopupWhosePickerIsRefusedWhileClosed) {
  KEPHostParameter* p = ColorParam(0.3f, 0.3f, 0.3f);
  const auto* w = ColorWidget(p);
  std::string error;
  EXPECT_EQ(Picker(w)->InjectUserEvent(KEPVidAction::Color, "1 0 0", error), E_INVALIDARG);
  EXPECT_EQ(Stored(p)[0], 0.3f);
  Act(Button(w), KEPVidAction::Press, "");
  EXPECT_TRUE(Popup(w)->IsOpen());
  Act(Picker(w), KEPVidAction::Color, "1 0 0");
  EXPECT_EQ(Stored(p), (Rgba{1, 0, 0, 1}));
}

TEST_F(ColorWidgetTest, WidgetOutlivingItsParameterDoesNothing) {
  const auto* w = ColorWidget(ColorParam(0.4f, 0.2f, 0.1f));
  const auto* empty = new KEPRshUICtlParameterColor(nullptr, Root(), "Empty");
  EXPECT_EQ(empty->GetChildCount(), 0u);
  DropModel();
  Act(Slider(w), KEPVidAction::Set, "10");
  Act(Editor(w), KEPVidAction::Type, "0.9");
  Pick(w, "0 1 0");
  EXPECT_FALSE(w->GetParameter());
}

}  // namespace
}  // namespace keptest
