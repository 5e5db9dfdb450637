// The stand-alone shader model's node and parameter components.
#pragma once

#include <string>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPBaseUnknown_WR.h"
#include "KEPHostShaderLibrary.h"
#include "KEPIAlias.h"
#include "KEPIRshLightProfileParameter.h"
#include "KEPIRshParameter.h"
#include "KEPIRshParameterPrivate.h"
#include "KEPIRshShader.h"
#include "KEPIRshShaderOutput.h"
#include "KEPIRshShaderPrivate.h"
#include "KEPIRshShaderResources.h"
#include "KEPIRshSubShaders.h"
#include "KEPISpecObject.h"

class KEPHostShaderNode;

/// A parameter feature: a component whose late type is its feature type name, so that behaviours
/// registered for "KEPRmaScalar" and the like extend it. Its father is its shader node.
class KEPHostParameter : public KEPBaseUnknown,
                         public KEPIRshParameter,
                         public KEPIRshParameterPrivate,
                         public KEPISpecObject,
                         public KEPIAlias,
                         public KEPIRshLightProfileParameter {
  KEP_DECLARE_CLASS
 public:
  /// A new parameter with one reference for the caller; `father` may be null.
  static KEPHostParameter* Create(KEPHostShaderNode* father, std::string name, KEPHostValue value);

  // KEPIRshParameter
  HRESULT GetName(KEPString& name) override;
  HRESULT GetTypeName(KEPString& typeName) override;
  HRESULT GetBooleanValue(unsigned char& value) override;
  HRESULT SetBooleanValue(unsigned char value) override;
  HRESULT GetIntegerValue(int& value) override;
  HRESULT SetIntegerValue(int value) override;
  HRESULT GetScalarValue(float& value) override;
  HRESULT SetScalarValue(float value) override;
  HRESULT GetColorValue(float& r, float& g, float& b, float* alpha = nullptr) override;
  HRESULT SetColorValue(float r, float g, float b, float alpha = 1.0f) override;
  HRESULT GetVectorValue(float (&xyzw)[4]) override;
  HRESULT SetVectorValue(const float (&xyzw)[4]) override;
  int GetVectorDimension() override;
  HRESULT GetTextureValue(KEPIPLMDmtDocument*& document) override;
  HRESULT SetTextureValue(KEPIPLMDmtDocument* document) override;
  HRESULT GetConnectedShader(KEPIRshShader*& shader) override;
  HRESULT SetConnectedShader(KEPIRshShader* shader) override;
  // KEPIRshParameterPrivate: the father node
  HRESULT GetParentShader(KEPIRshShader*& shader) override;
  // KEPISpecObject
  HRESULT GetFather(KEPBaseUnknown*& father) override;
  // KEPIAlias: the name unless an alias was given
  HRESULT GetAlias(KEPUnicodeString& alias) override;
  HRESULT SetAlias(const KEPUnicodeString& alias) override;
  // KEPIRshLightProfileParameter (light-profile parameters only)
  HRESULT GetLightProfile(KEPString& path) override;
  HRESULT SetLightProfile(const KEPString& path) override;

  const KEPHostValue& Value() const { return value_; }
  /// Replaces the whole value (type included); for loaders and tests.
  void SetValue(KEPHostValue value) { value_ = std::move(value); }
  KEPHostShaderNode* Father() const { return father_; }
  /// Called by the father when it goes away: the parameter lets go of its connection without
  /// announcing it (the observers would meet a node in the middle of its destruction).
  void DetachFather();
  /// Number of value writes so far; lets a viewer tell that something changed.
  unsigned long long WriteCount() const { return writes_; }

 private:
  KEPHostParameter() = default;
  bool IsNumeric() const;
  void Wrote() { ++writes_; }
  /// Announces a write to the model's observers when it goes out of scope, if one was made since
  /// it was created. Declared before a setter's render lock, so the observers run after the lock
  /// is released and a renderer is not kept waiting by the views they refresh.
  class Announcer;

  KEPHostShaderNode* father_ = nullptr;
  std::string name_;
  KEPUnicodeString alias_;
  KEPHostValue value_;
  KEPBaseUnknown_WR connected_;
  unsigned long long writes_ = 0;
};

/// A shader node: a component of late type "KEPRshShader" (or "KEPRshTextureShader" for a
/// texture shader) that owns its parameters.
class KEPHostShaderNode : public KEPBaseUnknown,
                          public KEPIRshShader,
                          public KEPIRshShaderResources,
                          public KEPIRshShaderPrivate,
                          public KEPISpecObject,
                          public KEPIAlias,
                          public KEPIRshSubShaders,
                          public KEPIRshShaderOutput {
  KEP_DECLARE_CLASS
 public:
  /// A new node of `type` with the type's default values and one reference for the caller.
  static KEPHostShaderNode* Create(const KEPHostShaderTypeDefinition& type, std::string id,
                                   KEPBaseUnknown* father = nullptr);

  // KEPIRshShader
  HRESULT GetId(KEPString& id) override;
  HRESULT GetTypeName(KEPString& typeName) override;
  HRESULT GetConfigurationId(KEPString& configurationId) override;
  HRESULT GetParameters(KEPListP<KEPIRshParameter>*& parameters) override;
  HRESULT GetParameter(const KEPString& name, KEPIRshParameter*& parameter) override;
  HRESULT GetPointingComponents(std::vector<KEP_var<KEPIRshParameter>>& pointing) override;
  // KEPIRshShaderResources (offered only when the type has resources)
  HRESULT GetResourceValue(const KEPString& parameterName, const KEPString& key,
                           KEPUnicodeString& value) override;
  // KEPIRshShaderPrivate: the node's configuration identifier
  HRESULT GetConfiguration(KEPString& configurationId) override;
  // KEPISpecObject: the shader that holds this sub-shader, else the document that owns the node
  HRESULT GetFather(KEPBaseUnknown*& father) override;
  // KEPIAlias: the identifier unless an alias was given
  HRESULT GetAlias(KEPUnicodeString& alias) override;
  HRESULT SetAlias(const KEPUnicodeString& alias) override;
  // KEPIRshSubShaders: the nodes of the document whose father is this node
  HRESULT GetSubShaders(std::vector<KEP_var<KEPIRshShader>>& shaders) override;
  HRESULT AddSubShader(KEPIRshShader* shader) override;
  // KEPIRshShaderOutput: the type's declared output; E_NOTIMPL when it declares none
  HRESULT GetOutputType(KEPString& featureType) override;

  /// True when `target` is a parameter of this node or of a node reached from this one through
  /// connections, depth first. Each node is walked once, so a cycle already in the model ends the
  /// walk instead of holding it.
  bool Reaches(const KEPHostParameter* target) const;
  /// The document or the node that holds this one (borrowed), or null.
  KEPBaseUnknown* Father() const { return father_; }
  const std::string& Id() const { return id_; }
  const std::string& TypeName() const { return type_.name; }
  const std::vector<KEP_var<KEPHostParameter>>& Parameters() const { return parameters_; }
  /// Appends a parameter (for tests that need odd nodes); the node takes a reference.
  void AddParameter(KEPHostParameter* parameter);
  /// Removes every parameter (for tests of an empty or changed node).
  void RemoveParameters();
  void SetResourcesOffered(bool offered) { type_.hasResources = offered; }
  void SetResource(const std::string& parameterName, const std::string& key,
                   const std::string& value);
  void DetachFather() { father_ = nullptr; }
  /// Makes `father` (the document, or the shader that holds this sub-shader) this node's father.
  /// Not counted: the document detaches every node before any goes away.
  void SetFather(KEPBaseUnknown* father) { father_ = father; }

  // Bookkeeping of connections, kept by KEPHostParameter.
  void AddPointing(KEPHostParameter* parameter);
  void RemovePointing(KEPHostParameter* parameter);

 protected:
  void* QueryOwnInterface(const KEPIID& iid) override;

 private:
  KEPHostShaderNode() = default;
  ~KEPHostShaderNode() override;

  KEPHostShaderTypeDefinition type_;  ///< a copy: parameters and resources of this node's type
  std::string id_;
  KEPUnicodeString alias_;
  KEPBaseUnknown* father_ = nullptr;
  std::vector<KEP_var<KEPHostParameter>> parameters_;
  std::vector<KEPBaseUnknown_WR> pointing_;
};
