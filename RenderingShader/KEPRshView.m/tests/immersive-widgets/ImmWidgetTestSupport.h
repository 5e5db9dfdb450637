// Shared set-up of the immersive widget tests: a registered module, a world of shader nodes made
// in one line, a root widget that owns what the tests build, and helpers that act on controls as
// a person would and count what reaches the model.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KEPHostConfiguration.h"
#include "KEPIRshParameter.h"
#include "KEPRshModelEvents.h"
#include "KEPRshParameterScalarImmWidget.h"
#include "KEPRshViewModule.h"
#include "KEPTestSupport.h"
#include "KEPVidCtlDoubleSpinBox.h"
#include "KEPVidCtlEditor.h"
#include "KEPVidCtlSlider.h"
#include "KEPVidLayGrid.h"
#include "KEP_var.h"

namespace keptest {

using Keys = std::vector<std::pair<std::string, std::string>>;

/// Counts the value writes of one parameter that the model announces, with the value each left.
class WriteLog {
 public:
  explicit WriteLog(KEPIRshParameter* parameter) : parameter_(parameter) {
    token_ = KEPRshModelEvents::AddParameterObserver(
        [this](KEPIRshParameter* changed, KEPRshParameterChangeKind kind) {
          if (changed != parameter_ || kind != KEPRshParameterChangeKind::Value) return;
          float value = 0.0f;
          changed->GetScalarValue(value);
          values_.push_back(value);
        });
  }
  ~WriteLog() { KEPRshModelEvents::RemoveObserver(token_); }
  WriteLog(const WriteLog&) = delete;
  WriteLog& operator=(const WriteLog&) = delete;

  std::size_t Count() const { return values_.size(); }
  const std::vector<float>& Values() const { return values_; }

 private:
  KEPIRshParameter* parameter_;
  std::vector<float> values_;
  int token_ = 0;
};

class ImmWidgetTest : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    KEPRshViewRegister();
    world_.emplace();
    root_ = KEP_var<KEPVidWidget>::Adopt(new KEPVidLayGrid(nullptr, "Root"));
  }
  void TearDown() override {
    // Widgets go before the model and the host's state they observe.
    root_.Reset();
    world_.reset();
    Fixture::TearDown();
  }

  /// A node of a new type (named `type`, else "t<n>") with `parameters`, whose configuration
  /// holds `config` (whole keys: "p.Min").
  KEPHostShaderNode* Node(const std::vector<std::pair<std::string, KEPHostValue>>& parameters,
                          const Keys& config = {}, std::string type = "") {
    if (type.empty()) type = "t" + std::to_string(++types_);
    Type definition(type);
    for (const auto& [name, value] : parameters) definition.Param(name, value);
    world_->Add(definition);
    for (const auto& [key, text] : config) KEPHostConfiguration::SetValue(type, key, text);
    return world_->Node(type);
  }
  /// Parameter "p" holding `value`, alone in a node of its own, configured with `config` (keys
  /// after the name: ".Min").
  KEPHostParameter* Param(float value, const Keys& config) {
    Keys keys;
    for (const auto& [suffix, text] : config) keys.emplace_back("p" + suffix, text);
    return world_->Param(Node({{"p", Scalar(value)}}, keys), "p");
  }
  KEPHostParameter* ParamOf(KEPHostShaderNode* node, const std::string& name) {
    return world_->Param(node, name);
  }

  /// The scalar widget of `parameter`, owned by the root.
  KEPRshParameterScalarImmWidget* Widget(KEPIRshParameter* parameter) {
    return new KEPRshParameterScalarImmWidget(parameter, root_.Get(), "ParameterWidget");
  }
  KEPVidWidget* Root() const { return root_.Get(); }
  /// Destroys the document with its nodes and parameters (widgets built stay).
  void DropModel() { world_.reset(); }

  template <class Control>
  static Control* Find(const KEPVidWidget* widget, const char* name) {
    return dynamic_cast<Control*>(widget->FindNamedChild(name));
  }
  static KEPVidCtlSlider* SliderOf(const KEPVidWidget* w) {
    return Find<KEPVidCtlSlider>(w, "scalarSlider");
  }
  static KEPVidCtlEditor* EditorOf(const KEPVidWidget* w) {
    return Find<KEPVidCtlEditor>(w, "scalarEditor");
  }
  static KEPVidCtlDoubleSpinBox* SpinnerOf(const KEPVidWidget* w) {
    return Find<KEPVidCtlDoubleSpinBox>(w, "scalarSpinner");
  }

  /// What a person does to `control`; the action must apply.
  static void Act(KEPVidWidget* control, KEPVidAction action, const std::string& argument) {
    ASSERT_NE(control, nullptr);
    std::string error;
    ASSERT_EQ(control->InjectUserEvent(action, argument, error), S_OK) << error;
  }

  static float Stored(KEPIRshParameter* parameter) {
    float value = -12345.0f;
    EXPECT_EQ(parameter->GetScalarValue(value), S_OK);
    return value;
  }

 private:
  std::optional<World> world_;
  KEP_var<KEPVidWidget> root_;
  int types_ = 0;
};

}  // namespace keptest
