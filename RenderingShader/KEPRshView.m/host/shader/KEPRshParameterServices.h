// Shortcuts over the shader model used by the editors.
#pragma once

// Host types have one identity in every library that uses them (see KEP_EXPORT).
#pragma GCC visibility push(default)

#include <vector>

#include "KEPString.h"
#include "KEPTypes.h"

class KEPIPLMDmtDocument;
class KEPIRenderingMaterial;
class KEPIRshParameter;
class KEPIRshShader;

class KEPRshParameterServices {
 public:
  /// The shader that owns `parameter`, with a reference for the caller, or null.
  static KEPIRshShader* FindShaderParent(KEPIRshParameter* parameter);
  /// Scalar value of the sibling parameter `name` in the same shader.
  static HRESULT RetrieveParameterValue(KEPIRshParameter* parameter, const KEPString& name,
                                        float& value);
  /// Layer groups of the texture document held by `parameter`.
  static HRESULT RetrieveGroupList(KEPIRshParameter* parameter, std::vector<KEPString>& groups);
  /// Resolution of the texture document held by `parameter`; 72 when none is stored.
  static HRESULT RetrieveDpi(KEPIRshParameter* parameter, double& dpi);
  /// A new texture document for `parameter` (documents do not change: a parameter given another
  /// image, other groups or another resolution is given another document), with a reference for
  /// the caller, to be set with KEPIRshParameter::SetTextureValue. A relative `path` is resolved
  /// against the directory of the material document that holds the parameter, as that document's
  /// own texture paths are. E_INVALIDARG for a null parameter, an empty path or a resolution that
  /// is not a positive number; E_FAIL, traced with the path, when the file is missing or not an
  /// image the host can read. `document` is untouched on failure.
  static HRESULT CreateTextureDocument(KEPIRshParameter* parameter, const KEPString& path,
                                       const std::vector<KEPString>& groups, double dpi,
                                       KEPIPLMDmtDocument*& document);
  /// True when `shader` has a texture parameter whose image is a vector (SVG) map.
  static bool IsSVGMapPresent(KEPIRshShader* shader);
  /// The rendering material that owns `shader` (through the root node above it, the shader itself
  /// when it is one), with a reference for the caller; null when the node belongs to no material.
  static KEPIRenderingMaterial* FindRenderingMaterial(KEPIRshShader* shader);

  /// A number that changes whenever a parameter of any shader is connected or disconnected, or a
  /// connected node goes away; what a client derived from connections holds while it is unchanged.
  static unsigned long long GetConnectionGeneration();
  /// Called by the shader model when a connection changes.
  static void NoteConnectionChange();
};

#pragma GCC visibility pop
