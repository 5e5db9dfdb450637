// `rshview preview`: a picture of a node's material as the viewer's material answers it, drawn
// on a sphere and written as a PNG file.
#include <charconv>
#include <ostream>

#include "KEP2DImagePixelRep.h"
#include "KEPCreateComponent.h"
#include "KEPDlgFrame.h"
#include "KEPIHardwareMaterial.h"
#include "KEPIRmaMappingManipulatorMaterial.h"
#include "KEPIRshShaderLink.h"
#include "KEPPixelImage.h"
#include "KEPRbaImageServices.h"
#include "KEPRshPreviewFrame.h"
#include "RshviewCommands.h"
#include "RshviewSphere.h"
#include "RshviewViewer.h"

const char* const kRshviewPreviewHelp =
    "Usage: rshview preview [--library DIR] [--doc FILE] [--node ID] [--size N] --out FILE\n"
    "\n"
    "Draws a lit sphere in the material of a node, as the viewer's material answers it\n"
    "(diffuse and specular colours and weights, glossiness, transparency, luminosity, the\n"
    "texture image with its position, size, angle, flips and wrapping), on a neutral grey\n"
    "background, and writes the picture as an RGBA PNG file (atomically: FILE keeps its old\n"
    "content if the write fails). The picture goes through the editors' preview frame, as a\n"
    "pixel image. A luminous material (luminosity 1) shows its colour and texture at full\n"
    "strength, as the viewer shows a material that lights itself.\n"
    "\n"
    "  --node ID    the node; default: the document's first material\n"
    "  --size N     width and height in pixels, 1 to 4096; default 256\n"
    "  --out FILE   the PNG file to write\n";

namespace {

constexpr int kMaxSize = 4096;

bool ParseSize(const std::string& text, int& size) {
  if (text.empty()) {
    size = 256;
    return true;
  }
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, size);
  return error == std::errc() && last == end && size >= 1 && size <= kMaxSize;
}

}  // namespace

bool RshviewAskSphereMaterial(KEPIRshShader* node, RshviewSphereMaterial& m) {
  auto delegate = KEP_var<KEPBaseUnknown>::Adopt(KEPCreateComponent("KEPRshShaderDelegate"));
  auto link = KEPQueryVar<KEPIRshShaderLink>(delegate);
  auto material = KEPQueryVar<KEPIHardwareMaterial>(delegate);
  if (!link || !material) return false;
  link->SetShader(node);
  material->GetDiffuse(m.diffuse, m.diffuseColor);
  material->GetSpecular(m.specular, m.specularColor, m.glossiness);
  m.transparency = material->GetTransparencyCoef();
  // The luminosity is asked as the viewer asks it; a material that does not answer it does not
  // light itself.
  double luminosity = 0.0;
  auto mapping = KEPQueryVar<KEPIRmaMappingManipulatorMaterial>(delegate);
  m.luminosity = mapping && SUCCEEDED(mapping->GetLuminosity(luminosity))
                     ? static_cast<float>(luminosity)
                     : 0.0f;
  if (auto image = KEP_var<KEPTexturePixelImage>::Adopt(material->GetTextureImage())) {
    m.texture = image->GetPixels();
    m.textureWidth = image->GetWidth();
    m.textureHeight = image->GetHeight();
    int wrapU = 1, wrapV = 1;
    material->GetTextureWrapping(wrapU, wrapV);
    m.repeat[0] = wrapU != 0;
    m.repeat[1] = wrapV != 0;
    unsigned char flipU = 0, flipV = 0;
    material->GetTextureFlip(flipU, flipV);
    m.flip[0] = flipU != 0;
    m.flip[1] = flipV != 0;
    material->GetTexturePosition(m.position[0], m.position[1]);
    material->GetTextureSize(m.size[0], m.size[1]);
    m.angleRadians = material->GetTextureAngle();
  }
  return true;
}

bool RshviewWritePreview(KEPIRshShader* node, int size, const std::string& path,
                         std::string& error) {
  RshviewSphereMaterial material;
  if (!RshviewAskSphereMaterial(node, material)) {
    error = "the module's hardware material is not registered";
    return false;
  }
  return RshviewWriteSpherePreview(material, size, path, error);
}

bool RshviewWriteSpherePreview(const RshviewSphereMaterial& material, int size,
                               const std::string& path, std::string& error) {
  const std::vector<std::uint8_t> pixels = RshviewRenderSphere(material, size);
  auto image = KEP_var<KEPPixelImage>::Adopt(
      KEPPixelImage::Create(size, size, KEPPixelFormat_RGBA, pixels.data(), 0));
  if (!image) {
    error = "cannot make a " + std::to_string(size) + " x " + std::to_string(size) + " image";
    return false;
  }
  // The picture lives in a preview frame, which owns its representation, as an editor shows it.
  auto dialog = KEP_var<KEPDlgFrame>::Adopt(new KEPDlgFrame(nullptr, "rshview"));
  auto* frame = new KEPRshPreviewFrame(dialog.Get(), "preview", size, size);
  frame->SetBackgroundRep(new KEP2DImagePixelRep(image.Get(), 0.0, 0.0), 1);
  const auto* shown = dynamic_cast<const KEP2DImagePixelRep*>(frame->GetBackgroundRep());
  return SUCCEEDED(KEPRbaImageServices::WritePNG(shown ? shown->GetImage() : nullptr,
                                                 KEPUnicodeString::FromUTF8(path), error));
}

int RunPreviewCommand(RshviewContext& context) {
  const RshviewOptions& options = context.options;
  int size = 0;
  if (!ParseSize(options.size, size)) {
    context.err << "rshview preview: --size must be a whole number from 1 to " << kMaxSize
                << ", not '" << options.size << "'\nTry 'rshview preview --help'.\n";
    return 2;
  }
  if (options.out.empty()) {
    context.err << "rshview preview: no --out FILE given\nTry 'rshview preview --help'.\n";
    return 2;
  }
  if (options.node == "all") {
    context.err << "rshview preview: one node at a time (--node ID)\n";
    return 2;
  }
  std::vector<KEPHostShaderNode*> nodes;
  if (const int code = RshviewSelectNodes(context, "preview", nodes)) return code;

  std::string error;
  if (!RshviewWritePreview(nodes.front(), size, options.out, error)) {
    context.err << "rshview preview: " << error << "\n";
    return 1;
  }
  context.out << "wrote " << options.out << " (" << size << " x " << size << ", node "
              << nodes.front()->Id() << ")\n";
  return 0;
}
