// Test support: capture traces, build configuration, libraries, documents and nodes in a few
// lines. Every builder leaves the process-wide stores as a test expects: call Reset() (or use
// KEPTestFixture) at the start of a test.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KEPHostShaderDocument.h"
#include "KEPHostShaderLibrary.h"
#include "KEPRbaConfiguration.h"
#include "KEPRshShaderManager.h"
#include "KEPTrace.h"

namespace keptest {

/// Collects every trace entry while alive; restores the previous sink afterwards.
class TraceCapture {
 public:
  explicit TraceCapture(int moduleLevel = 9);
  ~TraceCapture();
  const std::vector<KEPTraceEntry>& Entries() const { return entries_; }
  /// Texts of the entries, optionally only those of one channel.
  std::vector<std::string> Texts(const std::string& channel = "") const;
  /// True when some entry's text contains `fragment`.
  bool Contains(const std::string& fragment) const;
  void Clear() { entries_.clear(); }

 private:
  std::vector<KEPTraceEntry> entries_;
  KEPTraceSinkFn previous_;
  int previousLevel_;
};

/// Sets configuration values: Config("mia_phen_material", {{"x.Min", "0"}, {"x.Max", "1"}}).
void Config(const std::string& id, std::initializer_list<std::pair<std::string, std::string>> kv);

/// Value builders.
KEPHostValue Boolean(bool v);
KEPHostValue Integer(int v);
KEPHostValue Scalar(float v);
KEPHostValue Color(float r, float g, float b, float a = 1.0f);
KEPHostValue Vector(std::initializer_list<float> components);
KEPHostValue Texture(const std::string& imagePath = "");
KEPHostValue Void();

/// Builds a shader type: Type("mia_phen_material").Param("x", Scalar(1)).Resource("x","min","0").
class Type {
 public:
  explicit Type(std::string name, std::string configurationId = "");
  Type& Param(std::string name, KEPHostValue value);
  /// Adds a resource and marks the type as offering resources.
  Type& Resource(const std::string& parameter, const std::string& key, const std::string& value);
  Type& Resources(bool offered = true);
  /// Makes the type a texture shader (it answers the viewer for the material it is connected to).
  Type& TextureShader();
  /// Declares the feature type a node of the type yields when connected ("" fits any parameter).
  Type& Output(std::string featureType);
  const KEPHostShaderTypeDefinition& Definition() const { return definition_; }

 private:
  KEPHostShaderTypeDefinition definition_;
};

/// A library, a document over it and the installed shader manager, for one test.
class World {
 public:
  World();
  ~World();
  World& Add(const Type& type);
  World& Connectable(const std::string& parameterType,
                     std::initializer_list<std::pair<std::string, std::string>> typeAndLabel);
  /// Creates a node of `type` in the document (the type must have been added).
  KEPHostShaderNode* Node(const std::string& type, const std::string& id = "");
  /// A parameter of a node by name (borrowed).
  KEPHostParameter* Param(KEPHostShaderNode* node, const std::string& name);
  /// Installs the manager without any connectable list (a fresh library).
  KEPHostShaderDocument* Document();
  std::shared_ptr<KEPHostShaderLibrary> library;

 private:
  void Rebuild();
  KEP_var<KEPHostShaderDocument> document_;
};

/// Clears the configuration store, uninstalls the shader manager and the trace sink, restores the
/// units' display units, and points the preference repositories at an empty file of this process.
void Reset();

/// Fixture that resets process-wide state before and after each test.
class Fixture : public ::testing::Test {
 protected:
  void SetUp() override { Reset(); }
  void TearDown() override { Reset(); }
};

/// Path of a file in the source tree (for the bundled samples).
std::string SourcePath(const std::string& relative);

}  // namespace keptest
