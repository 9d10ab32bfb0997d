// Links against the shared module only, as a derived or outside program does.
#include <gtest/gtest.h>

#include <string>

#include "documents/base64_coder.h"
#include "documents/xml.h"

namespace {

class CountingCoder : public CBase64Coder {
 public:
  int groups = 0;

 protected:
  void _EncodeRaw(TempBucket& out, const TempBucket& in) override {
    ++groups;
    CBase64Coder::_EncodeRaw(out, in);
  }
};

TEST(ModuleExports, DocumentsParseAndPrintThroughTheModule) {
  TiXmlDocument doc;
  doc.Parse("<Config><SharedBlob>QUJD</SharedBlob><Bad x></Bad></Config>");
  EXPECT_EQ(doc.ErrorId(), TIXML_ERROR_READING_ATTRIBUTES);
  EXPECT_STREQ(doc.ErrorDesc(), "Error reading Attributes.");
  std::string text;
  text << *doc.RootElement()->FirstChild();
  EXPECT_EQ(text, "<SharedBlob>QUJD</SharedBlob>");
}

TEST(ModuleExports, CoderAndItsVirtualStepsWorkThroughTheModule) {
  CountingCoder coder;
  coder.Encode("ABCDEFG");
  EXPECT_STREQ(coder.EncodedMessage(), "QUJDREVGRw==");
  EXPECT_EQ(coder.groups, 3);
  coder.Decode(coder.EncodedMessage());
  EXPECT_EQ(std::string(coder.DecodedMessage(), coder.DecodedMessageSize()),
            std::string("ABCDEFG\0\0", 9));
}

}  // namespace
