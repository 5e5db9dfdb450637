#include <algorithm>
#include <cmath>

#include "KEPHostShaderNode.h"
#include "KEPRdgRenderLock.h"
#include "KEPRshModelEvents.h"
#include "KEPRshParameterServices.h"

class KEPHostParameter::Announcer {
 public:
  Announcer(KEPHostParameter* parameter, KEPRshParameterChangeKind kind)
      : parameter_(parameter), kind_(kind), writes_(parameter->writes_) {}
  ~Announcer() {
    if (parameter_->writes_ != writes_) KEPRshModelEvents::NoteParameterChange(parameter_, kind_);
  }
  Announcer(const Announcer&) = delete;
  Announcer& operator=(const Announcer&) = delete;

 private:
  KEPHostParameter* parameter_;
  KEPRshParameterChangeKind kind_;
  unsigned long long writes_;
};

KEP_IMPLEMENT_CLASS(KEPHostParameter, KEPBaseUnknown, "System")

KEPHostParameter* KEPHostParameter::Create(KEPHostShaderNode* father, std::string name,
                                           KEPHostValue value) {
  auto* parameter = new KEPHostParameter();
  parameter->father_ = father;
  parameter->name_ = std::move(name);
  parameter->value_ = std::move(value);
  parameter->SetLateType(KEPRmaTypeName(parameter->value_.type));
  return parameter;
}

bool KEPHostParameter::IsNumeric() const {
  return value_.type == KEPRmaType::Boolean || value_.type == KEPRmaType::Integer ||
         value_.type == KEPRmaType::Scalar;
}

HRESULT KEPHostParameter::GetName(KEPString& name) {
  name = name_;
  return S_OK;
}

HRESULT KEPHostParameter::GetTypeName(KEPString& typeName) {
  typeName = KEPRmaTypeName(value_.type);
  return S_OK;
}

HRESULT KEPHostParameter::GetBooleanValue(unsigned char& value) {
  switch (value_.type) {
    case KEPRmaType::Boolean:
      value = value_.boolean ? 1 : 0;
      return S_OK;
    case KEPRmaType::Integer:
      value = value_.integer != 0 ? 1 : 0;
      return S_OK;
    case KEPRmaType::Scalar:
      value = value_.scalar != 0.0f ? 1 : 0;
      return S_OK;
    default:
      return E_FAIL;
  }
}

HRESULT KEPHostParameter::SetBooleanValue(unsigned char value) {
  return SetIntegerValue(value ? 1 : 0);
}

HRESULT KEPHostParameter::GetIntegerValue(int& value) {
  switch (value_.type) {
    case KEPRmaType::Boolean:
      value = value_.boolean ? 1 : 0;
      return S_OK;
    case KEPRmaType::Integer:
      value = value_.integer;
      return S_OK;
    case KEPRmaType::Scalar:
      if (!std::isfinite(value_.scalar) || std::fabs(value_.scalar) > 2.1e9f) return E_FAIL;
      value = static_cast<int>(value_.scalar);
      return S_OK;
    default:
      return E_FAIL;
  }
}

HRESULT KEPHostParameter::SetIntegerValue(int value) {
  const Announcer announce(this, KEPRshParameterChangeKind::Value);
  KEPRdgRenderLock lock;
  switch (value_.type) {
    case KEPRmaType::Boolean:
      value_.boolean = value != 0;
      break;
    case KEPRmaType::Integer:
      value_.integer = value;
      break;
    case KEPRmaType::Scalar:
      value_.scalar = static_cast<float>(value);
      break;
    default:
      return E_FAIL;
  }
  Wrote();
  return S_OK;
}

HRESULT KEPHostParameter::GetScalarValue(float& value) {
  switch (value_.type) {
    case KEPRmaType::Boolean:
      value = value_.boolean ? 1.0f : 0.0f;
      return S_OK;
    case KEPRmaType::Integer:
      value = static_cast<float>(value_.integer);
      return S_OK;
    case KEPRmaType::Scalar:
      value = value_.scalar;
      return S_OK;
    default:
      return E_FAIL;
  }
}

HRESULT KEPHostParameter::SetScalarValue(float value) {
  const Announcer announce(this, KEPRshParameterChangeKind::Value);
  KEPRdgRenderLock lock;
  switch (value_.type) {
    case KEPRmaType::Boolean:
      value_.boolean = value != 0.0f;
      break;
    case KEPRmaType::Integer:
      if (!std::isfinite(value) || std::fabs(value) > 2.1e9f) return E_FAIL;
      value_.integer = static_cast<int>(std::lround(value));
      break;
    case KEPRmaType::Scalar:
      value_.scalar = value;
      break;
    default:
      return E_FAIL;
  }
  Wrote();
  return S_OK;
}

HRESULT KEPHostParameter::GetColorValue(float& r, float& g, float& b, float* alpha) {
  if (value_.type != KEPRmaType::Color) return E_FAIL;
  r = value_.components[0];
  g = value_.components[1];
  b = value_.components[2];
  if (alpha) *alpha = value_.components[3];
  return S_OK;
}

HRESULT KEPHostParameter::SetColorValue(float r, float g, float b, float alpha) {
  const Announcer announce(this, KEPRshParameterChangeKind::Value);
  KEPRdgRenderLock lock;
  if (value_.type != KEPRmaType::Color) return E_FAIL;
  value_.components[0] = r;
  value_.components[1] = g;
  value_.components[2] = b;
  value_.components[3] = alpha;
  Wrote();
  return S_OK;
}

HRESULT KEPHostParameter::GetVectorValue(float (&xyzw)[4]) {
  if (value_.type != KEPRmaType::Vector) return E_FAIL;
  for (int i = 0; i < 4; ++i) xyzw[i] = i < value_.dimension ? value_.components[i] : 0.0f;
  return S_OK;
}

HRESULT KEPHostParameter::SetVectorValue(const float (&xyzw)[4]) {
  const Announcer announce(this, KEPRshParameterChangeKind::Value);
  KEPRdgRenderLock lock;
  if (value_.type != KEPRmaType::Vector) return E_FAIL;
  for (int i = 0; i < 4; ++i) value_.components[i] = i < value_.dimension ? xyzw[i] : 0.0f;
  Wrote();
  return S_OK;
}

int KEPHostParameter::GetVectorDimension() {
  return value_.type == KEPRmaType::Vector ? value_.dimension : 0;
}

HRESULT KEPHostParameter::GetTextureValue(KEPIPLMDmtDocument*& document) {
  if (value_.type != KEPRmaType::Texture) return E_FAIL;
  document = value_.texture.Get();
  if (document) document->AddRef();
  return S_OK;
}

HRESULT KEPHostParameter::SetTextureValue(KEPIPLMDmtDocument* document) {
  if (value_.type != KEPRmaType::Texture) return E_FAIL;
  const Announcer announce(this, KEPRshParameterChangeKind::Value);
  KEPRdgRenderLock lock;
  value_.texture = KEP_var<KEPIPLMDmtDocument>(document);
  Wrote();
  return S_OK;
}

HRESULT KEPHostParameter::GetLightProfile(KEPString& path) {
  if (value_.type != KEPRmaType::LightProfile) return E_FAIL;
  path = value_.lightProfile;
  return S_OK;
}

HRESULT KEPHostParameter::SetLightProfile(const KEPString& path) {
  if (value_.type != KEPRmaType::LightProfile) return E_FAIL;
  const Announcer announce(this, KEPRshParameterChangeKind::Value);
  KEPRdgRenderLock lock;
  value_.lightProfile = path;
  Wrote();
  return S_OK;
}

HRESULT KEPHostParameter::GetConnectedShader(KEPIRshShader*& shader) {
  shader = nullptr;
  auto* node = dynamic_cast<KEPHostShaderNode*>(connected_.Get());
  if (!node) return E_FAIL;
  shader = node;
  shader->AddRef();
  return S_OK;
}

void KEPHostParameter::DetachFather() {
  KEPRdgRenderLock lock;
  if (auto* old = dynamic_cast<KEPHostShaderNode*>(connected_.Get())) {
    old->RemovePointing(this);
    connected_.Reset();
    KEPRshParameterServices::NoteConnectionChange();
    Wrote();
  }
  father_ = nullptr;
}

HRESULT KEPHostParameter::SetConnectedShader(KEPIRshShader* shader) {
  auto* node = dynamic_cast<KEPHostShaderNode*>(shader);
  if (shader && !node) return E_INVALIDARG;
  // A node from which this parameter is reached (its own node included) would make a cycle.
  if (node && node->Reaches(this)) return E_FAIL;
  const Announcer announce(this, KEPRshParameterChangeKind::Connection);
  // A renderer follows connections while it holds the lock for its frame.
  KEPRdgRenderLock lock;
  if (auto* old = dynamic_cast<KEPHostShaderNode*>(connected_.Get())) old->RemovePointing(this);
  connected_.Set(node);
  if (node) node->AddPointing(this);
  KEPRshParameterServices::NoteConnectionChange();
  Wrote();
  return S_OK;
}

HRESULT KEPHostParameter::GetParentShader(KEPIRshShader*& shader) {
  shader = father_;
  if (!shader) return E_FAIL;
  shader->AddRef();
  return S_OK;
}

HRESULT KEPHostParameter::GetFather(KEPBaseUnknown*& father) {
  father = father_;
  if (!father) return E_FAIL;
  father->AddRef();
  return S_OK;
}

HRESULT KEPHostParameter::GetAlias(KEPUnicodeString& alias) {
  alias = alias_.IsEmpty() ? KEPUnicodeString::FromUTF8(name_) : alias_;
  return S_OK;
}

HRESULT KEPHostParameter::SetAlias(const KEPUnicodeString& alias) {
  alias_ = alias;
  return S_OK;
}
