// KEPRshShaderHardwareExt: the hardware material of a shader node, as the viewer sees it.
//
// Used as an extension of a component that also carries a KEPIRshShaderLink; every answer is
// computed from the typed parameters of the linked shader. A shader whose type name begins with
// "MPM" (a physical shader) is read through its slot, BRDF and plain mapping parameters; any
// other through the "_uv_mapping" family, falling back on the texture shader connected to one of
// its parameters.
//
// This class answers the interfaces; the program file search (KEPRshShaderProgramLocator), the
// parameter list and its lookups (KEPRshShaderParameterIndex), the connected texture found
// (KEPRshConnectedTextureCache) and the texture images found (KEPRshTextureDocumentCache) live in
// their own units.
//
// The viewer asks every question on every frame, so once the first question has read the
// parameter list, answering allocates nothing and takes no lock: a renderer on another thread
// holds the render lock for its frame (see KEPIRshParameter). A material answers one caller at a
// time: its caches fill as it answers.
#pragma once

#include <string_view>
#include <vector>

#include "KEPBaseUnknown.h"
#include "KEPBaseUnknown_WR.h"
#include "KEPIHardwareMaterial.h"
#include "KEPIOpenGLShaderMaterial.h"
#include "KEPIRmaMappingManipulator.h"
#include "KEPIRmaMappingManipulatorMaterial.h"
#include "KEPIRshParameter.h"
#include "KEPRshConnectedTextureCache.h"
#include "KEPRshShaderParameterIndex.h"
#include "KEPRshTextureDocumentCache.h"
#include "KEPRshViewModule.h"
#include "KEPVisTypes.h"

class KEPIRshShader;
class KEPIRshShaderLink;
class KEPRshShaderHardwareLink;

class KEPRSHVIEW_API KEPRshShaderHardwareExt : public KEPBaseUnknown,
                                               public KEPIHardwareMaterial,
                                               public KEPIOpenGLShaderMaterial,
                                               public KEPIRmaMappingManipulator,
                                               public KEPIRmaMappingManipulatorMaterial {
  KEP_DECLARE_CLASS
 public:
  KEPRshShaderHardwareExt();
  KEPRshShaderHardwareExt(const KEPRshShaderHardwareExt& other);
  KEPRshShaderHardwareExt& operator=(const KEPRshShaderHardwareExt& other);
  ~KEPRshShaderHardwareExt() override;

  /// Null: the class is only ever instantiated through a derived extension.
  virtual KEPBaseUnknown* CreateItself();

  /// Forgets the parameters when the component moves from a live state to deleted (2).
  HRESULT ChangeComponentState(int from, int to, const void* context) override;

  // --- Lighting (KEPIHardwareMaterial)
  void GetAmbient(float& coefficient, float* const color) override;
  void GetDiffuse(float& coefficient, float* const color) override;
  void GetSpecular(float& coefficient, float* const color, float& glossiness) override;
  float GetTransparencyCoef() override;
  float GetReflectivityCoef() override;
  KEPRmaEnvironmentPixelImage* GetEnvironmentMap() override;
  void GetNonLinearReflection(float& a, float& b) override;
  int GetReflectionType() override;

  // --- Texture (KEPIHardwareMaterial)
  KEPTexturePixelImage* GetTextureImage() override;
  void GetTextureWrapping(int& u, int& v) override;
  void GetTextureFlip(unsigned char& u, unsigned char& v) override;
  void GetTexturePosition(float& u, float& v) override;
  void GetTextureSize(float& u, float& v) override;
  float GetTextureAngle() override;

  // --- Program and its parameters (KEPIOpenGLShaderMaterial)
  const KEPUnicodeString& GetExternalShader() override;
  int CheckExternalShaderImagesLink(KEPString& name) override;
  int IsModifiedExternalShaderImageLink(int position) override;
  void GetShaderFloatParameter(int position, float& value) override;
  int CheckShaderFloatParameter(KEPString& name) override;
  int IsModifiedShaderFloatParameter(int position) override;
  void GetExternalShaderImageLink(int position, KEPIPLMDmtDocument*& document) override;
  void GetExternalShaderImageLink(int position, KEPUnicodeString& path) override;
  int CheckShaderColorParameter(KEPString& name) override;
  int IsModifiedShaderColorParameter(int position) override;
  void GetShaderColorParameter(int position, float& r, float& g, float& b) override;

  // --- Texture placement (KEPIRmaMappingManipulator)
  HRESULT GetMappingType(short& type) override;
  HRESULT GetRatio(double& ratio) override;
  HRESULT GetRotation(double& angle) override;
  HRESULT GetScale(double& scale) override;
  HRESULT GetFlipU(unsigned char& flip) override;
  HRESULT GetFlipV(unsigned char& flip) override;
  HRESULT GetTranslationU(double& translation) override;
  HRESULT GetTranslationV(double& translation) override;
  HRESULT GetSize(double& size) override;
  HRESULT SetSize(const double& size) override;
  HRESULT SetTranslationU(double& translation) override;
  HRESULT SetTranslationV(double& translation) override;

  // --- Material side of the placement (KEPIRmaMappingManipulatorMaterial)
  HRESULT GetColor(double& r, double& g, double& b) override;
  HRESULT GetTransparentColor(double& r, double& g, double& b) override;
  HRESULT GetUseTranparentColor(unsigned char& use) override;
  HRESULT GetLuminosity(double& luminosity) override;
  HRESULT GetContrast(double& contrast) override;
  HRESULT GetShininess(double& shininess) override;
  HRESULT GetTransparency(double& transparency) override;
  HRESULT GetTextureRepeat(unsigned char& repeat) override;
  KEPTexturePixelImage* GetTexturePixelImage() override;

  // --- Sticker mode: a sticker draws with the "_Stk" sibling of the program file
  unsigned char IsStickerMode() override;
  void SetStickerMode(unsigned char sticker) override;

  // --- Operations with fixed results: the viewer cannot change a shader through this object,
  // and it offers no internal images, string parameters or parameter counts.
  HRESULT GetMatrix(KEPMathTransformation& matrix) override;
  HRESULT SetMatrix(const KEPMathTransformation& matrix) override;
  HRESULT SetExternalShaderImageLink(int position, KEPUnicodeString& path) override;
  HRESULT SetInternalShaderImageLink(int position, KEPUnicodeString& path) override;
  int CheckInternalShaderImagesLink(KEPString& name) override;
  int CheckShaderStringParameter(KEPString& name) override;
  int GetExternalShaderStatus() override;
  int GetExternalShaderType() override;
  int GetNbExternalShaderImageParamName() override;
  int GetNbExternalShaderImagesLink() override;
  int GetNbInternalShaderImageParamName() override;
  int GetNbInternalShaderImagesLink() override;
  int GetShaderColorNbParameter() override;
  int GetShaderFloatNbParameter() override;
  int GetShaderStringNbParameter() override;
  int GetShaderType() override;
  int IsModifiedInternalShaderImageLink(int position) override;
  int IsModifiedShaderISLFile() override;
  int IsModifiedShaderStringParameter(int position) override;
  int IsResetParametersShaderISLFile() override;
  KEPILinkableObject* GetExternalShaderLink() override;
  int UpdateSubstanceOutputMaps(const KEPString& output) override;
  int UseTextureRatio() override;
  KEPUnicodeString GetPrevShaderExtFile() override;
  KEPUnicodeString GetShaderISLFile() override;
  KEPString GetExternalShaderImagesLinkName(int position) override;
  KEPString GetInternalShaderImagesLinkName(int position) override;
  KEPString GetShaderColorParameterName(int position) override;
  KEPString GetShaderFloatParameterName(int position) override;
  KEPString GetShaderStringParameterName(int position) override;
  void GenerateSubstanceOutputMaps(unsigned char generate) override;
  void GetInternalShaderImageLink(int position, KEPIPLMDmtDocument*& document) override;
  void GetInternalShaderImageLink(int position, KEPUnicodeString& path) override;
  void GetShaderStringParameter(int position, KEPUnicodeString& value) override;
  void ModifyExternalShaderImageLink(int position, KEPIPLMDmtDocument* document, int mode) override;
  void ModifyExternalShaderImageLink(int position, KEPUnicodeString& path, int mode) override;
  void ModifyExternalShaderLink(KEPIPLMDmtDocument* document) override;
  void ModifyInternalShaderImageLink(int position, KEPIPLMDmtDocument* document) override;
  void ModifyInternalShaderImageLink(int position, KEPUnicodeString& path) override;
  void ModifyShaderColorParameter(int position, float r, float g, float b, int mode) override;
  void ModifyShaderFloatParameter(int position, float value, int mode) override;
  void ModifyShaderISLFile(KEPUnicodeString& path) override;
  void ModifyShaderStringParameter(int position, KEPUnicodeString& value, int mode) override;
  void ResetParametersExternalShader(int mode) override;
  void ResetParametersInternalShader() override;
  void SetExternalShaderImageLink(int position, KEPIPLMDmtDocument* document) override;
  void SetExternalShaderImagesLinkName(int position, KEPUnicodeString& name) override;
  void SetExternalShaderLink(KEPIPLMDmtDocument* document) override;
  void SetInternalShaderImageLink(int position, KEPIPLMDmtDocument* document) override;
  void SetInternalShaderImagesLinkName(int position, KEPUnicodeString& name) override;
  void SetShaderColorParameter(int position, float r, float g, float b) override;
  void SetShaderFloatParameter(int position, float value) override;
  void SetShaderISLFile(KEPUnicodeString& path) override;
  void SetShaderStringParameter(int position, KEPUnicodeString& path) override;

 protected:
  /// Reads the linked shader's parameters on first use (the steps: InitFromLinkedShader); does
  /// nothing without a link or a shader, so that the next query tries again.
  void Init() {
    if (!parameters_.HasList()) InitFromLinkedShader();
  }
  /// Releases the parameter references and forgets the list; names and program file stay.
  void CleanUp();
  /// Parameter at position i (1-based, borrowed, possibly null), after Init.
  KEPIRshParameter* GetParameter(int i);
  /// First parameter whose name is `name` (exact, case-sensitive; borrowed), after Init.
  KEPIRshParameter* GetParameter(std::string_view name);
  /// Position (1-based) of `name` in the parameter names, or -1. Does not call Init.
  int CheckParameter(std::string_view name);
  /// 2 when position i holds a parameter, else 3.
  int IsModifiedParameter(int i);
  /// The material of the first shader connected to one of the parameters, with a reference for
  /// the caller, or null.
  KEPIHardwareMaterial* GetConnectedTexture();

  /// Index of `name` among KEPRshShaderParameterIndex::kReadNames; other names do not compile.
  static consteval int ReadName(std::string_view name) {
    return KEPRshShaderParameterIndex::ReadName(name);
  }
  /// Same answer as GetParameter(kReadNames[index]), from the positions resolved at Init.
  KEPIRshParameter* GetReadParameter(int index) {
    Init();
    return parameters_.Read(index);
  }

  /// True when the linked shader's type name begins with "MPM". A node's type never changes, so
  /// the answer is kept for the node: through this module's own link until the link is given
  /// another shader; on a shader node, whose link is the node itself, for good; through any
  /// other link, the shader is asked for on every call and the type read again when it is not
  /// the (living) node seen last.
  bool IsPhysicalShader();
  /// The linked shader's type name; empty without a link or a shader.
  KEPString GetLinkedTypeName();
  /// The same, into `typeName`.
  void ReadLinkedTypeName(KEPString& typeName);

 private:
  /// Init's work: finds the program file once, then takes the shader's parameter list.
  void InitFromLinkedShader();
  KEPIRshShaderLink* FindLink();
  /// Reads "default_slot_diffuse_color" for GetColor and GetTransparentColor.
  HRESULT GetDiffuseColor(double& r, double& g, double& b);
  /// How ReadPair reads: kChecked changes the outputs only when both values read (the second is
  /// not read after a failed first); kUnchecked reads both straight into the outputs.
  enum class PairRead { kChecked, kUnchecked };
  /// Reads the u/v pair of parameters named by ReadName indexes `nameU`, `nameV` into u and v.
  /// False, outputs untouched, when either parameter is missing or (kChecked) a read fails.
  template <PairRead how, class T>
  bool ReadPair(int nameU, int nameV, T& u, T& v);
  /// Runs `ask` on the connected texture's material (the connected-texture fall-backs); false when
  /// there is none, or when this object is already asking one (a cycle of connections ends there).
  template <class Interface, class Ask>
  bool AskConnectedTexture(Ask&& ask);

  KEPRshShaderParameterIndex parameters_;
  KEPUnicodeString shaderFile_;
  KEPString shaderType_;
  unsigned char stickerMode_ = 0;

  /// The sibling link extension of the component (borrowed: it lives as long as we do), and the
  /// same seen as this module's link class when it is one.
  KEPIRshShaderLink* link_ = nullptr;
  KEPRshShaderHardwareLink* ownLink_ = nullptr;
  /// True when the component is a shader node: its link answers the node itself, always.
  bool nodeLink_ = false;
  /// IsPhysicalShader's last answer; through ownLink_, that link's change count when it was
  /// read; through another link, the node it was read from (a weak reference, so that another
  /// node at the same address is not taken for it).
  bool physical_ = false;
  bool physicalKnown_ = false;
  unsigned long long physicalLinkChanges_ = 0;
  KEPIRshShader* physicalShader_ = nullptr;
  KEPBaseUnknown_WR physicalShaderAlive_;
  /// The connected texture's material as last found; not copied.
  KEPRshConnectedTextureCache connected_;
  /// The texture image answered last, and the image link path answered per position (the viewer
  /// asks for several); not copied.
  KEPRshTextureDocumentCache textureImage_;
  std::vector<KEPRshTextureDocumentCache> imageLinks_;
  /// The program file in sticker mode, built from shaderFile_ once it is known.
  KEPUnicodeString stickerFile_;
  /// Scratch space of IsPhysicalShader.
  KEPString typeNameBuffer_;
};
