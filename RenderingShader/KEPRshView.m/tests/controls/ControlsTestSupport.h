// Shared set-up of the value control tests: a registered module, scalar parameters of the
// stand-alone host with their configuration, and a scripted parameter whose every answer (stored
// value, unit, magnitude, ranges, precision, read and write results) a test chooses.
#pragma once

#include <future>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "KEPHostConfiguration.h"
#include "KEPIRshParameter.h"
#include "KEPISYPIntrospectable.h"
#include "KEPParmDictionary.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshParameterImmLayout.h"
#include "KEPRshViewModule.h"
#include "KEPTestSupport.h"
#include "KEP_var.h"

namespace keptest {

/// True when some thread holds the render lock: another thread cannot take it.
inline bool RenderLockHeldElsewhere() {
  return !std::async(std::launch::async, [] {
            const bool taken = KEPRdgRenderLock::Mutex().try_lock();
            if (taken) KEPRdgRenderLock::Mutex().unlock();
            return taken;
          }).get();
}

/// A magnitude without a current unit (the dictionary's always have one).
class MagnitudeWithoutCurrentUnit : public KEPBaseUnknown, public KEPICkeMagnitude {
 public:
  KEPUnicodeString Name() const override { return u"LOST"; }
  KEPICkeUnit* BaseUnit() const override { return nullptr; }
  KEPICkeUnit* CurrentUnit() const override { return nullptr; }
  HRESULT SetCurrentUnit(KEPICkeUnit*) override { return E_INVALIDARG; }
};

/// A parameter component that is its own layout behaviour (no extension in between), answering
/// what the test scripted. Every read and write notes whether the render lock was held.
class ScriptedParameter : public KEPRshParameterImmLayout, public KEPIRshParameter {
 public:
  std::string name = "p";
  float value = 0.0f;
  HRESULT readResult = S_OK;
  HRESULT writeResult = S_OK;
  std::vector<float> writes;  ///< every value a write was asked for
  KEPICkeUnit* unit = nullptr;
  KEPICkeMagnitude* magnitude = nullptr;
  HRESULT magnitudeResult = S_OK;
  std::pair<double, double> hard{0.0, 10.0};
  HRESULT hardResult = S_OK;
  std::pair<double, double> soft{1.0, 5.0};
  HRESULT softResult = S_OK;
  int precision = 3;
  HRESULT precisionResult = S_OK;
  /// Reads outside SetValue/SetValues need no lock; a test that checks it turns this on.
  bool checkLock = false;
  bool lockedOnEveryAccess = true;

  HRESULT GetName(KEPString& out) override {
    out = name;
    return S_OK;
  }
  HRESULT GetTypeName(KEPString& out) override {
    out = "KEPRmaScalar";
    return S_OK;
  }
  HRESULT GetScalarValue(float& out) override {
    Note();
    if (SUCCEEDED(readResult)) out = value;
    return readResult;
  }
  HRESULT SetScalarValue(float next) override {
    Note();
    writes.push_back(next);
    if (SUCCEEDED(writeResult)) value = next;
    return writeResult;
  }
  HRESULT GetUnit(KEPICkeUnit*& out) override {
    if (!unit) return E_FAIL;
    out = unit;
    out->AddRef();
    return S_OK;
  }
  HRESULT GetMagnitude(KEPICkeMagnitude*& out) override {
    if (magnitude) {
      out = magnitude;
      out->AddRef();
    }
    return magnitudeResult;
  }
  HRESULT GetHardRange(double& min, double& max) override {
    return Range(hard, hardResult, min, max);
  }
  HRESULT GetSoftRange(double& min, double& max) override {
    return Range(soft, softResult, min, max);
  }
  HRESULT GetDecimalPrecision(int& out) override {
    if (SUCCEEDED(precisionResult)) out = precision;
    return precisionResult;
  }

  // What the controls never ask.
  HRESULT GetBooleanValue(unsigned char&) override { return E_FAIL; }
  HRESULT SetBooleanValue(unsigned char) override { return E_FAIL; }
  HRESULT GetIntegerValue(int&) override { return E_FAIL; }
  HRESULT SetIntegerValue(int) override { return E_FAIL; }
  HRESULT GetColorValue(float&, float&, float&, float*) override { return E_FAIL; }
  HRESULT SetColorValue(float, float, float, float) override { return E_FAIL; }
  HRESULT GetVectorValue(float (&)[4]) override { return E_FAIL; }
  HRESULT SetVectorValue(const float (&)[4]) override { return E_FAIL; }
  int GetVectorDimension() override { return 0; }
  HRESULT GetTextureValue(KEPIPLMDmtDocument*&) override { return E_FAIL; }
  HRESULT SetTextureValue(KEPIPLMDmtDocument*) override { return E_FAIL; }
  HRESULT GetConnectedShader(KEPIRshShader*&) override { return E_FAIL; }
  HRESULT SetConnectedShader(KEPIRshShader*) override { return E_FAIL; }

 private:
  static HRESULT Range(std::pair<double, double> range, HRESULT result, double& min, double& max) {
    if (SUCCEEDED(result)) std::tie(min, max) = range;
    return result;
  }
  void Note() {
    if (checkLock && !RenderLockHeldElsewhere()) lockedOnEveryAccess = false;
  }
};

inline KEP_var<ScriptedParameter> Scripted(std::string name = "p") {
  auto parameter = KEP_var<ScriptedParameter>::Adopt(new ScriptedParameter());
  parameter->name = std::move(name);
  return parameter;
}

/// The adapter through which `object` is introspected (borrowed).
inline KEPSYPIntrospectableAdapter* AdapterOf(KEPBaseUnknown* object) {
  const auto introspectable = KEPQueryVar<KEPISYPIntrospectable>(object);
  return introspectable
             ? dynamic_cast<KEPSYPIntrospectableAdapter*>(introspectable->GetImplementation())
             : nullptr;
}

/// Texts of one channel's entries at one level.
inline std::vector<std::string> TextsAt(const TraceCapture& trace, const std::string& channel,
                                        KEPTraceLevel level) {
  std::vector<std::string> texts;
  for (const KEPTraceEntry& entry : trace.Entries())
    if (entry.channel == channel && entry.level == level) texts.push_back(entry.text);
  return texts;
}

class ControlsTest : public Fixture {
 protected:
  void SetUp() override {
    Fixture::SetUp();
    KEPRshViewRegister();
    world_.emplace();
  }
  void TearDown() override {
    world_.reset();
    Fixture::TearDown();
  }

  /// Two host scalar parameters "x" and "y" of one node; `config` keys are whole ("x.Unit").
  std::pair<KEPHostParameter*, KEPHostParameter*> HostPair(
      float x, float y, const std::vector<std::pair<std::string, std::string>>& config = {}) {
    const std::string type = "t" + std::to_string(++types_);
    world_->Add(Type(type).Param("x", Scalar(x)).Param("y", Scalar(y)));
    for (const auto& [key, text] : config) KEPHostConfiguration::SetValue(type, key, text);
    KEPHostShaderNode* node = world_->Node(type);
    return {world_->Param(node, "x"), world_->Param(node, "y")};
  }
  /// A host colour parameter "c" alone in a node; `config` keys are whole ("c.Min").
  KEPHostParameter* HostColor(float r, float g, float b, float a,
                              const std::vector<std::pair<std::string, std::string>>& config = {}) {
    const std::string type = "t" + std::to_string(++types_);
    world_->Add(Type(type).Param("c", Color(r, g, b, a)));
    for (const auto& [key, text] : config) KEPHostConfiguration::SetValue(type, key, text);
    return world_->Param(world_->Node(type), "c");
  }
  /// Destroys every node and parameter made so far.
  void EndWorld() { world_.reset(); }

 private:
  std::optional<World> world_;
  int types_ = 0;
};

}  // namespace keptest
