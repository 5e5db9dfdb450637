// Shared set-up of the immersive widget tests: a registered module, shader nodes made in one
// line, a root widget that owns what the tests build, and a log of the writes the model announces.
#pragma once

#include <future>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KEPHostConfiguration.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshModelEvents.h"
#include "KEPRshParameterScalarImmWidget.h"
#include "KEPRshViewModule.h"
#include "KEPTestSupport.h"
#include "KEPVidCtlDoubleSpinBox.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlSlider.h"

namespace keptest {

using Keys = std::vector<std::pair<std::string, std::string>>;

/// The values that the model announces as written into one parameter.
struct WriteLog {
  explicit WriteLog(KEPIRshParameter* parameter)
      : token(KEPRshModelEvents::AddParameterObserver([this, parameter](KEPIRshParameter* p, auto) {
          float value = 0.0f;
          if (p == parameter && SUCCEEDED(p->GetScalarValue(value))) values.push_back(value);
        })) {}
  ~WriteLog() { KEPRshModelEvents::RemoveObserver(token); }
  WriteLog(const WriteLog&) = delete;
  WriteLog& operator=(const WriteLog&) = delete;
  std::vector<float> values;
  int token;
};

class ImmWidgetTest : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    KEPRshViewRegister();
    world_.emplace();
    root_ = KEP_var<KEPVidWidget>::Adopt(new KEPVidWidget(nullptr, "Root"));
  }
  void TearDown() override {
    root_.Reset();  // widgets go before the model and the host state they observe
    world_.reset();
    Fixture::TearDown();
  }

  /// A node of type `type` (else a new one) with `parameters`, configured with whole keys.
  KEPHostShaderNode* Node(const std::vector<std::pair<std::string, KEPHostValue>>& parameters,
                          const Keys& config = {}, std::string type = "") {
    if (type.empty()) type = "t" + std::to_string(++types_);
    Type definition(type);
    for (const auto& [name, value] : parameters) definition.Param(name, value);
    world_->Add(definition);
    for (const auto& [key, text] : config) KEPHostConfiguration::SetValue(type, key, text);
    return world_->Node(type);
  }
  KEPHostParameter* ParamOf(KEPHostShaderNode* node, const std::string& name) {
    return world_->Param(node, name);
  }
  /// Parameter "p" alone in a node of its own; `config` holds keys after the name (".Min").
  KEPHostParameter* Param(float value, const Keys& config) {
    Keys keys;
    for (const auto& [suffix, text] : config) keys.emplace_back("p" + suffix, text);
    return ParamOf(Node({{"p", Scalar(value)}}, keys), "p");
  }
  /// Over 0..1 in steps of 0.01.
  KEPHostParameter* UnitRange(float value, const char* kind = "slider") {
    return Param(value, {{".Widget", kind}, {".Min", "0"}, {".Max", "1"}, {".Step", "0.01"}});
  }
  KEPRshParameterScalarImmWidget* Widget(KEPIRshParameter* parameter) {
    return new KEPRshParameterScalarImmWidget(parameter, root_.Get(), "ParameterWidget");
  }
  KEPVidWidget* Root() const { return root_.Get(); }
  void DropModel() { world_.reset(); }  // every node and parameter goes; the widgets stay
  World& TheWorld() { return *world_; }
  /// A widget of class `W` over `parameter`, owned by the root.
  template <class W>
  W* Make(KEPIRshParameter* parameter) {
    return new W(parameter, root_.Get(), "ParameterWidget");
  }
  /// True when a thread other than this one could take the render lock now.
  static bool RenderThreadCanLock();

  static KEPVidCtlSlider* SliderOf(const KEPVidWidget* w) {
    return dynamic_cast<KEPVidCtlSlider*>(w->FindNamedChild("scalarSlider"));
  }
  static KEPVidCtlEditor* EditorOf(const KEPVidWidget* w) {
    return dynamic_cast<KEPVidCtlEditor*>(w->FindNamedChild("scalarEditor"));
  }
  static KEPVidCtlDoubleSpinBox* SpinnerOf(const KEPVidWidget* w) {
    return dynamic_cast<KEPVidCtlDoubleSpinBox*>(w->FindNamedChild("scalarSpinner"));
  }
  /// What a person does to `control`.
  static void Act(KEPVidWidget* control, KEPVidAction action, const std::string& argument) {
    std::string error;
    ASSERT_NE(control, nullptr);
    ASSERT_EQ(control->InjectUserEvent(action, argument, error), S_OK) << error;
  }
  static float Stored(KEPIRshParameter* parameter) {
    float value = -1.0f;
    parameter->GetScalarValue(value);
    return value;
  }

 private:
  std::optional<World> world_;
  KEP_var<KEPVidWidget> root_;
  int types_ = 0;
};

inline bool ImmWidgetTest::RenderThreadCanLock() {
  return std::async(std::launch::async,
                    [] {
                      const bool got = KEPRdgRenderLock::Mutex().try_lock();
                      if (got) KEPRdgRenderLock::Mutex().unlock();
                      return got;
                    })
      .get();
}

}  // namespace keptest
