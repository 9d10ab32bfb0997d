#include <gtest/gtest.h>

#include <string>

#include "documents/xml.h"

namespace {

struct ErrorCase {
  const char* text;
  int id;
  const char* desc;
  int row;
  int col;
};

TEST(XmlParse, ReadsATreeWithAttributesInTheirOrder) {
  TiXmlDocument doc;
  doc.Parse("<?xml version=\"1.0\" encoding='UTF-8' other=\"x\"?>\n"
            "<!DOCTYPE cfg>\n<!-- note &amp; -->\n"
            "<Config Count=\"12\" Ratio='0.5' Name=\"a &lt;b&gt;\" Bad=\"x1\">\n"
            "  <Device Id=3/>\n  <Empty></Empty>\n</Config>");
  ASSERT_FALSE(doc.Error()) << doc.ErrorDesc();

  const TiXmlNode* decl = doc.FirstChild();
  ASSERT_TRUE(decl && decl->ToDeclaration());
  EXPECT_STREQ(decl->ToDeclaration()->Version(), "1.0");
  EXPECT_STREQ(decl->ToDeclaration()->Encoding(), "UTF-8");
  EXPECT_STREQ(decl->ToDeclaration()->Standalone(), "");
  EXPECT_EQ(decl->NextSibling()->Type(), TiXmlNode::UNKNOWN);
  EXPECT_STREQ(decl->NextSibling()->Value(), "!DOCTYPE cfg");
  EXPECT_EQ(decl->NextSibling()->NextSibling()->Type(), TiXmlNode::COMMENT);
  EXPECT_STREQ(decl->NextSibling()->NextSibling()->Value(), " note & ");

  const TiXmlElement* config = doc.RootElement();
  ASSERT_TRUE(config);
  EXPECT_STREQ(config->Value(), "Config");
  const TiXmlAttribute* a = config->FirstAttribute();
  std::string order;
  for (; a; a = a->Next()) order += std::string(a->Name()) + ",";
  EXPECT_EQ(order, "Count,Ratio,Name,Bad,");
  EXPECT_STREQ(config->LastAttribute()->Previous()->Name(), "Name");
  EXPECT_STREQ(config->Attribute("Name"), "a <b>");

  int count = -1;
  double ratio = -1;
  EXPECT_EQ(config->QueryIntAttribute("Count", &count), TIXML_SUCCESS);
  EXPECT_EQ(count, 12);
  EXPECT_EQ(config->QueryDoubleAttribute("Ratio", &ratio), TIXML_SUCCESS);
  EXPECT_EQ(ratio, 0.5);
  int untouched = 7;
  EXPECT_EQ(config->QueryIntAttribute("Bad", &untouched), TIXML_WRONG_TYPE);
  EXPECT_EQ(config->QueryIntAttribute("Missing", &untouched), TIXML_NO_ATTRIBUTE);
  EXPECT_EQ(untouched, 7);
  EXPECT_EQ(config->Attribute("Missing", &untouched), nullptr);
  EXPECT_EQ(untouched, 0);

  const TiXmlElement* device = config->FirstChildElement("Device");
  ASSERT_TRUE(device);
  EXPECT_STREQ(device->Attribute("Id"), "3");
  EXPECT_TRUE(device->NoChildren());
  EXPECT_STREQ(device->NextSiblingElement()->Value(), "Empty");
  EXPECT_EQ(device->GetDocument(), &doc);

  TiXmlHandle handle(&doc);
  EXPECT_EQ(handle.FirstChildElement("Config").ChildElement(1).Element(),
            config->LastChild());
  EXPECT_EQ(handle.FirstChild("Nothing").FirstChild().Child(2).Element(), nullptr);
}

TEST(XmlParse, SharedBlobTextIsTakenRawWhileOtherTextResolvesEntities) {
  TiXmlDocument doc;
  doc.Parse("<r><SharedBlob>  QU&amp;JD\n </SharedBlob><sharedblob>QU&amp;JD</sharedblob>"
            "<MIDIMsg>QU&amp;JD</MIDIMsg><SharedBlob>tail");
  TiXmlHandle root(doc.RootElement());
  EXPECT_STREQ(root.Child(0).FirstChild().Node()->Value(), "QU&amp;JD\n ");
  EXPECT_STREQ(root.Child(1).FirstChild().Node()->Value(), "QU&JD");
  EXPECT_STREQ(root.Child(2).FirstChild().Node()->Value(), "QU&JD");
  // A raw block that runs to the end of the text stops there.
  EXPECT_STREQ(root.Child(3).FirstChild().Node()->Value(), "tail");
  EXPECT_EQ(doc.ErrorId(), TIXML_ERROR_READING_END_TAG);
}

TEST(XmlParse, TextKeepsInnerAndTrailingWhitespaceButBlankTextMakesNoNode) {
  TiXmlDocument doc;
  doc.Parse("<r>\n  <a>  line one\n line two  </a>\n  <b>   \n </b><c>x </c></r>");
  ASSERT_FALSE(doc.Error());
  TiXmlHandle root(doc.RootElement());
  EXPECT_STREQ(root.FirstChild("a").FirstChild().Text()->Value(), "line one\n line two  ");
  EXPECT_TRUE(root.FirstChild("b").Element()->NoChildren());
  EXPECT_STREQ(root.FirstChild("c").FirstChild().Text()->Value(), "x ");
  EXPECT_EQ(root.Child(3).Node(), nullptr);
}

TEST(XmlParse, CondensedWhitespaceFoldsRunsWhenAsked) {
  TiXmlBase::SetCondenseWhiteSpace(true);
  TiXmlDocument doc;
  doc.Parse("<a>  one \n\t two   three </a>");
  TiXmlBase::SetCondenseWhiteSpace(false);
  EXPECT_STREQ(doc.RootElement()->FirstChild()->Value(), "one two three");
  EXPECT_FALSE(TiXmlBase::IsWhiteSpaceCondensed());
}

TEST(XmlParse, NumericReferencesTakeOneOrTwoHexDigitsOnly) {
  TiXmlDocument doc;
  doc.Parse("<a>&#xE9;&#xe9;&#x9;&#x0041;&#65;&bogus;&</a>");
  EXPECT_EQ(std::string(doc.RootElement()->FirstChild()->Value()),
            "\xE9\xE9\t&#x0041;&#65;&bogus;&");
}

TEST(XmlParse, RepeatedAttributeKeepsTheLaterValueAndEndsTheElement) {
  TiXmlDocument nested;
  nested.Parse("<r>\n<e k=\"1\" k=\"2\" more=\"x\"/><after/></r>");
  EXPECT_EQ(nested.ErrorId(), TIXML_ERROR_READING_ELEMENT_VALUE);
  EXPECT_STREQ(nested.ErrorDesc(), "Error reading Element value.");
  const TiXmlElement* e = nested.RootElement()->FirstChildElement();
  EXPECT_STREQ(e->Attribute("k"), "2");
  EXPECT_EQ(e->Attribute("more"), nullptr);

  TiXmlDocument root;
  root.Parse("<e k='1' k='2'/><second/>");
  EXPECT_FALSE(root.Error());
  EXPECT_STREQ(root.RootElement()->Attribute("k"), "2");
  EXPECT_EQ(root.RootElement()->NextSibling(), nullptr);
}

// Close tags compare without case, an unquoted value ends at a slash, blank text is empty.
TEST(XmlParse, LenientFormsAreReadAsOtherProgramsWriteThem) {
  TiXmlDocument doc;
  doc.Parse("<a><b/></A>");
  EXPECT_FALSE(doc.Error());
  EXPECT_STREQ(doc.RootElement()->FirstChild()->Value(), "b");
  TiXmlDocument slash;
  slash.Parse("<a path=dir/>");
  EXPECT_FALSE(slash.Error());
  EXPECT_STREQ(slash.RootElement()->Attribute("path"), "dir");
  slash.Parse("<a path=dir/file/>");
  EXPECT_EQ(slash.ErrorId(), TIXML_ERROR_PARSING_EMPTY);
  TiXmlDocument blank;
  EXPECT_NE(blank.Parse(" \r\n\t "), nullptr);
  EXPECT_FALSE(blank.Error());
  EXPECT_TRUE(blank.NoChildren());
}

TEST(XmlParse, EveryReachableErrorHasItsTextAndOneBasedPlace) {
  const ErrorCase cases[] = {
      {"", TIXML_ERROR_DOCUMENT_EMPTY, "Error document empty.", 0, 0},
      {"<r>\n  <a b='x>", TIXML_ERROR_PARSING_ELEMENT, "Error parsing Element.", 2, 6},
      {"<r>\n <a", TIXML_ERROR_FAILED_TO_READ_ELEMENT_NAME, "Failed to read Element name", 2, 2},
      {"<r>\n\t<a b>", TIXML_ERROR_READING_ATTRIBUTES, "Error reading Attributes.", 2, 9},
      {"<r>\n\t<a ", TIXML_ERROR_READING_ATTRIBUTES, "Error reading Attributes.", 2, 8},
      {"<r>\r\n\r\n<a/ >", TIXML_ERROR_PARSING_EMPTY, "Error: empty tag.", 3, 3},
      {"<r>\n\n<a>x</b>", TIXML_ERROR_READING_END_TAG, "Error reading end tag.", 3, 5},
      {"<r>text", TIXML_ERROR_READING_END_TAG, "Error reading end tag.", 1, 8},
      {"<r>\n<!-- open", TIXML_ERROR_PARSING_COMMENT, "Error parsing Comment.", 2, 1},
      {"<?xml version='1'", TIXML_ERROR_PARSING_DECLARATION, "Error parsing Declaration.", 1, 18},
  };
  for (const ErrorCase& c : cases) {
    TiXmlDocument doc;
    doc.Parse(c.text);
    EXPECT_TRUE(doc.Error()) << c.text;
    EXPECT_EQ(doc.ErrorId(), c.id) << c.text;
    EXPECT_STREQ(doc.ErrorDesc(), c.desc) << c.text;
    EXPECT_EQ(doc.ErrorRow(), c.row) << c.text;
    EXPECT_EQ(doc.ErrorCol(), c.col) << c.text;
  }
  TiXmlDocument none;
  none.Parse(nullptr);
  EXPECT_EQ(none.ErrorId(), TIXML_ERROR_DOCUMENT_EMPTY);
  EXPECT_STREQ(TiXmlBase::errorString[TIXML_NO_ERROR], "No error");
}

TEST(XmlParse, OnlyTheFirstErrorIsKeptAndParseClearsIt) {
  TiXmlDocument doc;
  doc.Parse("<r><a b></r>");
  EXPECT_EQ(doc.ErrorId(), TIXML_ERROR_READING_ATTRIBUTES);
  doc.Parse("<ok/>");
  EXPECT_FALSE(doc.Error());
  EXPECT_EQ(doc.ErrorRow(), 0);
}

TEST(XmlParse, LocationsFollowTabSizeAndLineBreaks) {
  const char* text = "<r>\n\t<a/>\r\n\t\t<b/>\n\r<c/></r>";
  TiXmlDocument doc;
  doc.SetTabSize(8);
  doc.Parse(text);
  TiXmlHandle root(doc.RootElement());
  EXPECT_EQ(root.Element()->Row(), 1);
  EXPECT_EQ(root.Element()->Column(), 1);
  EXPECT_EQ(root.Child(0).Node()->Row(), 2);
  EXPECT_EQ(root.Child(0).Node()->Column(), 9);
  EXPECT_EQ(root.Child(1).Node()->Row(), 3);
  EXPECT_EQ(root.Child(1).Node()->Column(), 17);
  EXPECT_EQ(root.Child(2).Node()->Row(), 4);

  TiXmlDocument off;
  off.SetTabSize(0);
  off.Parse(text);
  EXPECT_EQ(off.RootElement()->FirstChild()->Row(), 1);
  EXPECT_EQ(off.RootElement()->FirstChild()->Column(), 1);
}

TEST(XmlParse, DeepNestingIsRefusedRatherThanExhaustingTheStack) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "<a>";
  TiXmlDocument doc;
  doc.Parse(text.c_str());
  EXPECT_EQ(doc.ErrorId(), TIXML_ERROR_PARSING_ELEMENT);
}

TEST(XmlParse, MissingFileIsErrorTwo) {
  TiXmlDocument doc("no/such/dir/file.xml");
  EXPECT_FALSE(doc.LoadFile());
  EXPECT_EQ(doc.ErrorId(), TIXML_ERROR_OPENING_FILE);
  EXPECT_STREQ(doc.ErrorDesc(), "Failed to open file");
  EXPECT_STREQ(doc.Value(), "no/such/dir/file.xml");
}

TEST(XmlAttributeNumbers, ReadLikeScanfButRefuseWhatDoesNotFitThirtyTwoBits) {
  TiXmlDocument doc;
  doc.Parse("<E a=\" -12x\" b=\"2147483647\" c=\"-2147483648\" d=\"2147483648\" "
            "e=\"99999999999999999999\" f=\"+\" g=\"1e999\"/>");
  const TiXmlElement* e = doc.RootElement();
  ASSERT_NE(e, nullptr);
  int n = 7;
  EXPECT_EQ(e->QueryIntAttribute("a", &n), TIXML_SUCCESS);
  EXPECT_EQ(n, -12);
  EXPECT_EQ(e->QueryIntAttribute("b", &n), TIXML_SUCCESS);
  EXPECT_EQ(n, 2147483647);
  EXPECT_EQ(e->QueryIntAttribute("c", &n), TIXML_SUCCESS);
  EXPECT_EQ(n, -2147483647 - 1);
  for (const char* name : {"d", "e", "f"}) {
    n = 7;
    EXPECT_EQ(e->QueryIntAttribute(name, &n), TIXML_WRONG_TYPE) << name;
    EXPECT_EQ(n, 7) << name;
  }
  double x = 0;
  EXPECT_EQ(e->QueryDoubleAttribute("g", &x), TIXML_SUCCESS);
  EXPECT_GT(x, 1e308);
}

}  // namespace
