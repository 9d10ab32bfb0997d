// Parsed nodes live in their document's arena, yet every tree operation that creates, copies,
// unlinks or destroys one node at a time must behave as with nodes on the heap. Under
// AddressSanitizer these also prove that nothing leaks and nothing is used after it went.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "documents/xml.h"

namespace {

std::string Compact(const TiXmlNode& node) {
  std::string text;
  text << node;
  return text;
}

constexpr const char* kDocument =
    "<Config Version=\"3\"><A Name=\"first\" X=\"1\">one</A><!--note--><B /><C Y=\"2\">three</C>"
    "</Config>";

TEST(XmlArena, ParsedNodesAreRemovedReplacedAndMixedWithHeapNodesOneByOne) {
  TiXmlDocument doc;
  doc.Parse(kDocument);
  ASSERT_FALSE(doc.Error());
  TiXmlElement* root = doc.RootElement();

  EXPECT_TRUE(root->RemoveChild(root->FirstChild("B")));
  root->FirstChildElement("A")->RemoveAttribute("X");
  root->FirstChildElement("A")->SetAttribute("Z", "a value long enough to leave the string");
  root->ReplaceChild(root->FirstChild("C"), TiXmlElement("D"));
  root->LinkEndChild(new TiXmlText("tail"));
  root->InsertBeforeChild(root->FirstChild(), TiXmlComment());
  EXPECT_EQ(Compact(doc),
            "<Config Version=\"3\"><!----><A Name=\"first\" Z=\"a value long enough to leave the "
            "string\">one</A><!--note--><D />tail</Config>");

  // A parsed subtree copied into another document outlives the one it came from.
  TiXmlDocument other;
  {
    TiXmlDocument source;
    source.Parse(kDocument);
    other.InsertEndChild(*source.RootElement());
  }
  EXPECT_EQ(Compact(other), kDocument);
}

TEST(XmlArena, ADocumentClearedAndParsedAgainReadsTheSame) {
  TiXmlDocument doc;
  for (int round = 0; round < 3; ++round) {
    doc.Clear();
    doc.Parse(kDocument);
    ASSERT_FALSE(doc.Error());
    EXPECT_EQ(Compact(doc), kDocument);
  }
  // A second parse without clearing appends, and both trees stay whole.
  doc.Parse("<Second/>");
  EXPECT_STREQ(doc.LastChild()->Value(), "Second");
  EXPECT_STREQ(doc.RootElement()->Value(), "Config");
}

TEST(XmlArena, AnElementParsedWithoutADocumentIsOnTheHeapAndGoesAlone) {
  auto* element = new TiXmlElement("");
  element->Parse("<E A=\"1\"><F/>text</E>", nullptr, nullptr);
  EXPECT_EQ(Compact(*element), "<E A=\"1\"><F />text</E>");
  delete element;
}

TEST(XmlArena, ALargeDocumentIsParsedOnOneThreadAndDestroyedOnAnother) {
  std::string text = "<Root>";
  for (int i = 0; i < 3000; ++i) text += "<Item Index=\"" + std::to_string(i) + "\">value</Item>";
  text += "</Root>";
  auto* doc = new TiXmlDocument;
  std::thread([&] { doc->Parse(text.c_str()); }).join();
  ASSERT_FALSE(doc->Error());
  int items = 0;
  for (const TiXmlElement* e = doc->RootElement()->FirstChildElement(); e;
       e = e->NextSiblingElement())
    ++items;
  EXPECT_EQ(items, 3000);
  std::thread([&] { delete doc; }).join();
}

}  // namespace
