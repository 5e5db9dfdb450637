// PNG texture images and the host's file services.
#include <cstring>

#include "HardwareTestSupport.h"
#include "KEPFileServices.h"

using namespace keptest;
using namespace hwtest;

namespace {

class ImagesAndFilesTest : public HardwareFixture {};

TEST_F(ImagesAndFilesTest, CheckerImageLoads) {
  const KEPUnicodeString path =
      KEPUnicodeString::FromUTF8(SourcePath("samples/startup/textures/checker.png"));
  KEP_var<KEPTexturePixelImage> image =
      KEP_var<KEPTexturePixelImage>::Adopt(KEPTexturePixelImage::GetImage(path, KEPReadOnlyState));
  ASSERT_TRUE(image);
  EXPECT_EQ(image->GetWidth(), 16);
  EXPECT_EQ(image->GetHeight(), 16);
  ASSERT_EQ(image->GetPixels().size(), 16u * 16u * 4u);
  // Top-left cell is light, the next 4x4 cell is dark; alpha is opaque.
  EXPECT_EQ(image->GetPixels()[0], 230);
  EXPECT_EQ(image->GetPixels()[4 * 4], 40);
  EXPECT_EQ(image->GetPixels()[3], 255);
  KEP_var<KEPTexturePixelImage> again =
      KEP_var<KEPTexturePixelImage>::Adopt(KEPTexturePixelImage::GetImage(path, KEPReadOnlyState));
  EXPECT_EQ(again.Get(), image.Get());
}

TEST_F(ImagesAndFilesTest, BadImagesGiveNull) {
  Startup dirs;
  const std::string empty = dirs.File("A/empty.png");
  std::ofstream(empty, std::ios::trunc).close();
  const std::string text = dirs.File("A/text.png");
  const std::string truncated = dirs.File("A/truncated.png");
  {
    std::ifstream in(SourcePath("samples/startup/textures/checker.png"), std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::ofstream(truncated, std::ios::binary | std::ios::trunc) << bytes.substr(0, 40);
  }
  for (const std::string& path :
       {empty, text, truncated, dirs.Dir("A"), std::string("/no/such.png"), std::string()}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(KEPTexturePixelImage::GetImage(KEPUnicodeString::FromUTF8(path), KEPReadOnlyState),
              nullptr);
    EXPECT_EQ(KEPPixelImage::Load(KEPUnicodeString::FromUTF8(path)), nullptr);
  }
}

TEST_F(ImagesAndFilesTest, FindPathTriesEachDirectoryInOrder) {
  Startup dirs;
  const std::string inB = dirs.File("B/materials/shaders/x.cgfx");
  const std::string inC = dirs.File("C/materials/shaders/x.cgfx");
  struct Row {
    std::string search;
    std::string expected;
  };
  const Row rows[] = {
      {dirs.Dir("A") + ";" + dirs.Dir("B") + ";" + dirs.Dir("C"), inB},
      {dirs.Dir("C") + "/;" + dirs.Dir("B"), inC},
      {";;" + dirs.Dir("B"), inB},
      {dirs.Dir("A"), ""},
      {"", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.search);
    KEPString found = "untouched";
    const HRESULT hr = KEPFindPath("materials/shaders/x.cgfx", row.search.c_str(), found);
    EXPECT_EQ(hr, row.expected.empty() ? E_FAIL : S_OK);
    EXPECT_EQ(found, row.expected.empty() ? "untouched" : row.expected);
  }
  EXPECT_EQ(KEPFileAccess(inB.c_str(), 0), 0);
  EXPECT_EQ(KEPFileAccess((inB + ".no").c_str(), 0), -1);
  EXPECT_EQ(KEPFileAccess(nullptr, 0), -1);
  KEPString value = "untouched";
  unsetenv("KEP_NO_SUCH_VARIABLE");
  EXPECT_EQ(KEPGetEnv("KEP_NO_SUCH_VARIABLE", value), E_FAIL);
  EXPECT_EQ(value, "untouched");
}

}  // namespace
