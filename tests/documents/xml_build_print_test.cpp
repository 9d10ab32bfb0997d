#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "documents/xml.h"
#include "tests/support/temp_folder.h"

namespace {

std::string Pretty(const TiXmlNode& node) {
  std::FILE* file = std::tmpfile();
  node.Print(file, 0);
  std::string text(static_cast<std::size_t>(std::ftell(file)), '\0');
  std::rewind(file);
  const std::size_t read = std::fread(text.data(), 1, text.size(), file);
  std::fclose(file);
  text.resize(read);
  return text;
}

std::string Compact(const TiXmlNode& node) {
  std::string text;
  text << node;
  return text;
}

constexpr const char* kSmall =
    "<?xml version=\"1.0\"?><!--c--><Root a=\"1\" q='say \"hi\"'><Leaf>t&amp;x</Leaf>"
    "<Mixed>one<b/>two</Mixed><Empty/><!DOCTYPE x></Root><Second/>";

TEST(XmlPrint, PrettyFormIndentsAndPrintsEveryRoot) {
  TiXmlDocument doc;
  doc.Parse(kSmall);
  ASSERT_FALSE(doc.Error()) << doc.ErrorDesc();
  EXPECT_EQ(Pretty(doc),
            "<?xml version=\"1.0\" ?>\n"
            "<!--c-->\n"
            "<Root a=\"1\" q='say &quot;hi&quot;'>\n"
            "    <Leaf>t&amp;x</Leaf>\n"
            "    <Mixed>one\n"
            "        <b />two\n"
            "    </Mixed>\n"
            "    <Empty />\n"
            "    !DOCTYPE x\n"
            "</Root>\n"
            "<Second />\n");
}

TEST(XmlPrint, CompactFormStopsAfterTheFirstElementAndAppends) {
  TiXmlDocument doc;
  doc.Parse(kSmall);
  std::string text = "> ";
  text << doc;
  EXPECT_EQ(text,
            "> <?xml version=\"1.0\" ?><!--c--><Root a=\"1\" q='say &quot;hi&quot;'>"
            "<Leaf>t&amp;x</Leaf><Mixed>one<b />two</Mixed><Empty /><!DOCTYPE x></Root>");
  std::ostringstream stream;
  stream << *doc.RootElement()->FirstChild();
  EXPECT_EQ(stream.str(), "<Leaf>t&amp;x</Leaf>");
}

TEST(XmlPrint, TextIsEscapedAndNumericReferencesSurvive) {
  const TiXmlText text("a<b>&\"'\n\xE9&#x41;x\x7F");
  EXPECT_EQ(Compact(text), "a&lt;b&gt;&amp;&quot;&apos;&#x0A;&#xE9;&#x41;x&#x7F;");
  EXPECT_EQ(Pretty(text), Compact(text));

  TiXmlDocument doc;
  doc.Parse("<a>&#xE9;</a>");
  EXPECT_EQ(Compact(doc), "<a>&#xE9;</a>");
}

TEST(XmlPrint, Base64TextPrintsRawToFilesAndKeepsItsKindWhenCopied) {
  TiXmlElement blob("SharedBlob");
  TiXmlNode* copy = blob.InsertEndChild(TiXmlBase64Text("QUJD&x"));
  ASSERT_NE(dynamic_cast<TiXmlBase64Text*>(copy), nullptr);
  EXPECT_EQ(copy->Type(), TiXmlNode::TEXT);
  EXPECT_EQ(Pretty(blob), "<SharedBlob>QUJD&x</SharedBlob>");
  EXPECT_EQ(Compact(blob), "<SharedBlob>QUJD&amp;x</SharedBlob>");
  TiXmlNode* clone = blob.Clone();
  EXPECT_NE(dynamic_cast<TiXmlBase64Text*>(clone->FirstChild()), nullptr);
  delete clone;
}

TEST(XmlBuild, InsertOperationsLinkCopiesWhereAsked) {
  TiXmlElement root("r");
  TiXmlNode* b = root.InsertEndChild(TiXmlElement("b"));
  TiXmlNode* a = root.InsertBeforeChild(b, TiXmlElement("a"));
  root.InsertAfterChild(b, TiXmlText("t"));
  root.LinkEndChild(new TiXmlElement("z"));
  EXPECT_EQ(Compact(root), "<r><a /><b />t<z /></r>");

  TiXmlComment comment;
  comment.SetValue("c");
  root.ReplaceChild(a, comment);
  EXPECT_TRUE(root.RemoveChild(root.LastChild()));
  EXPECT_EQ(Compact(root), "<r><!--c--><b />t</r>");
  EXPECT_EQ(root.FirstChild()->Parent(), &root);

  TiXmlElement stranger("s");
  EXPECT_EQ(root.InsertBeforeChild(&stranger, TiXmlElement("x")), nullptr);
  EXPECT_EQ(root.ReplaceChild(&stranger, TiXmlElement("x")), nullptr);
  EXPECT_FALSE(root.RemoveChild(&stranger));

  root.Clear();
  EXPECT_TRUE(root.NoChildren());
  EXPECT_EQ(root.LastChild(), nullptr);
}

TEST(XmlBuild, AttributesReplaceInPlaceAndCloneKeepsUserData) {
  TiXmlElement e("e");
  e.SetAttribute("n", 5);
  e.SetAttribute("m", -1);
  e.SetAttribute("n", "6");
  e.SetAttribute("", "ignored");
  EXPECT_EQ(Compact(e), "<e n=\"6\" m=\"-1\" />");
  e.RemoveAttribute("n");
  EXPECT_EQ(Compact(e), "<e m=\"-1\" />");

  int marker = 0;
  e.SetUserData(&marker);
  TiXmlNode* clone = e.Clone();
  EXPECT_EQ(clone->GetUserData(), &marker);
  EXPECT_EQ(Compact(*clone), "<e m=\"-1\" />");
  delete clone;

  TiXmlDeclaration decl("1.0", "", "yes");
  EXPECT_EQ(Compact(decl), "<?xml version=\"1.0\" standalone=\"yes\" ?>");
}

TEST(XmlFiles, SaveAndLoadRoundTripAndEmptyFileIsFalseWithoutError) {
  const TempFolder folder;
  const std::filesystem::path path = folder.Path() / "round_trip.xml";
  TiXmlDocument doc;
  // Mixed content and unknown tags do not survive the pretty form, by design.
  doc.Parse("<?xml version=\"1.0\"?><!--c--><Root a=\"1\" q='say \"hi\"'><Leaf>t&amp;x</Leaf>"
            "<Inner><Deep n=\"2\"/></Inner></Root>");
  ASSERT_TRUE(doc.SaveFile(path.string()));
  TiXmlDocument loaded(path.string());
  ASSERT_TRUE(loaded.LoadFile());
  EXPECT_EQ(Compact(loaded), Compact(doc));
  EXPECT_EQ(Pretty(loaded), Pretty(doc));

  std::ofstream(path, std::ios::trunc).flush();
  EXPECT_FALSE(loaded.LoadFile());
  EXPECT_FALSE(loaded.Error());
  EXPECT_TRUE(loaded.NoChildren());
}

TEST(XmlStream, ReadsUpToTheEndOfTheFirstElementAndParsesIt) {
  std::istringstream in("  <?xml version='1.0'?><a x='>'><!-- </a> --><b/>text</a><after/>");
  TiXmlDocument doc;
  in >> doc;
  EXPECT_FALSE(doc.Error()) << doc.ErrorDesc();
  EXPECT_EQ(Compact(doc), "<?xml version=\"1.0\" ?><a x=\"&gt;\"><!-- </a> --><b />text</a>");
  std::string rest;
  in >> rest;
  EXPECT_EQ(rest, "<after/>");

  std::istringstream cut("<a><b>");
  TiXmlElement element("");
  cut >> element;
  EXPECT_STREQ(element.Value(), "a");
}

}  // namespace
