// The JSON text writer's fast paths: the plain-text test that lets a string go out unescaped, and
// numbers written straight into the text.
#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "KEPVidEncoding.h"
#include "KEPVidTree.h"
#include "KEPVidWidget.h"
#include "KEP_var.h"

namespace {

// A bad byte at every position of texts that end inside, on and past eight-byte words: the test
// works a word at a time, so a byte may be missed in one lane or at the tail.
TEST(JsonTextEncoding, PlainTextRefusesEachBadByteWhereverItStands) {
  const std::vector<unsigned char> bad = {0x00, 0x01, 0x1f, '"', '\\', 0x80, 0xc3, 0xff};
  for (const std::size_t length : {1u, 7u, 8u, 9u, 15u, 16u, 17u, 24u, 31u}) {
    const std::string plain(length, 'a');
    EXPECT_TRUE(KEPVidIsPlainText(plain)) << length;
    for (std::size_t at = 0; at < length; ++at) {
      for (const unsigned char byte : bad) {
        std::string text = plain;
        text[at] = static_cast<char>(byte);
        EXPECT_FALSE(KEPVidIsPlainText(text))
            << "byte " << static_cast<int>(byte) << " at " << at << " of " << length;
      }
    }
  }
}

// The neighbours of the bad bytes are plain, also side by side in one word, where a borrow or a
// carry between lanes would show up as a false alarm.
TEST(JsonTextEncoding, PlainTextAcceptsTheNeighboursOfBadBytes) {
  for (const std::string& text :
       {std::string(""), std::string(" !#[]~\x7f"), std::string(" !#[]~\x7f !#[]~\x7f !#[]"),
        std::string("!!!!!!!!"), std::string("########"), std::string("]]]]]]]]"),
        std::string("[[[[[[[[[[[["), std::string("        "), std::string("\x7f\x7f\x7f\x7f\x7f")})
    EXPECT_TRUE(KEPVidIsPlainText(text)) << '"' << text << '"';
}

// A widget that shows the numbers it is given.
class Numbers : public KEPVidWidget {
 public:
  using KEPVidWidget::KEPVidWidget;
  std::vector<double> values;
  void DescribeState(KEPVidStateWriter& writer) const override {
    for (std::size_t i = 0; i < values.size(); ++i)
      writer.Double("v" + std::to_string(i), values[i]);
    writer.DoubleList("all", values);
  }
};

// Each number reads back the same, in the shortest form, and a whole number keeps its ".0".
TEST(JsonTextEncoding, NumbersAreWrittenInTheirShortestExactForm) {
  const std::vector<double> values = {0.0,
                                      -0.0,
                                      1.0,
                                      25.0,
                                      -2.5,
                                      0.1,
                                      1e21,
                                      1e-7,
                                      123456789.0,
                                      std::numeric_limits<double>::max(),
                                      std::numeric_limits<double>::denorm_min(),
                                      -std::numeric_limits<double>::lowest()};
  const auto root = KEP_var<Numbers>::Adopt(new Numbers(nullptr, "numbers"));
  root->values = values;
  const std::string text = KEPVidToJsonText(root.Get());
  std::string all;
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::string written;
    KEPVidAppendDouble(written, values[i]);
    EXPECT_NE(text.find("\"v" + std::to_string(i) + "\":" + written + ","), std::string::npos)
        << written << " in " << text;
    all += (i ? "," : "") + written;
  }
  EXPECT_NE(text.find("\"all\":[" + all + "]"), std::string::npos) << text;
  EXPECT_NE(text.find("\"v2\":1.0,"), std::string::npos);
  EXPECT_NE(text.find("\"v1\":-0.0,"), std::string::npos);

  const nlohmann::json parsed = nlohmann::json::parse(text);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const nlohmann::json& read = parsed["state"]["v" + std::to_string(i)];
    EXPECT_TRUE(read.is_number_float()) << i;
    EXPECT_EQ(read.get<double>(), values[i]) << i;
  }
  EXPECT_EQ(parsed, KEPVidToJson(root.Get()));
}

}  // namespace
