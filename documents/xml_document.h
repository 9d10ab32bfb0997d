// TiXmlDocument: the root of a tree, its file, and the error state of its last parse.
#pragma once

#include <cstdio>
#include <iosfwd>
#include <string>

#include "documents/xml_node.h"

class TARN_EXPORT TiXmlDocument : public TiXmlNode {
 public:
  TiXmlDocument() : TiXmlNode(DOCUMENT) {}
  // Names the document's file, as its value, for the forms of LoadFile and SaveFile without a
  // name.
  explicit TiXmlDocument(const char* fileName) : TiXmlDocument() { value = fileName; }
  explicit TiXmlDocument(const std::string& fileName) : TiXmlDocument(fileName.c_str()) {}
  ~TiXmlDocument() override;

  // Clears the document, remembers the name, reads the file in text mode and parses it. True
  // when the parse recorded no error. A file that cannot be opened is error 2; an empty file
  // gives false with no error.
  bool LoadFile();
  bool LoadFile(const char* fileName);
  bool LoadFile(const std::string& fileName) { return LoadFile(fileName.c_str()); }
  // Writes the pretty form in text mode; true when the file could be opened and every byte was
  // written.
  bool SaveFile() const;
  bool SaveFile(const char* fileName) const;
  bool SaveFile(const std::string& fileName) const { return SaveFile(fileName.c_str()); }

  // Parses the zero-terminated text `p` and appends its nodes to this document. Clears the error
  // first; null or empty text is error 13, text of only whitespace an empty document. Nodes
  // read before an error stay in the tree. `data` gives the starting row and column (else 0, 0).
  // Returns where parsing stopped, or null after an error.
  const char* Parse(const char* p, TiXmlParsingData* data = nullptr,
                    TiXmlNode* parent = nullptr) override;
  TiXmlNode* Clone() const override;
  // Reads markup up to the end of the first element.
  void StreamIn(std::istream* in, std::string* tag) override;

  // Pretty: each child followed by a line break.
  void Print(std::FILE* file, int depth) const override;
  // The pretty form to standard output.
  void Print() const { Print(stdout, 0); }
  // Compact: the children up to and including the first element; what follows the root element
  // is left out.
  void StreamOut(std::ostream* out) const override;

  // The first child element, or null.
  const TiXmlElement* RootElement() const { return FirstChildElement(); }
  TiXmlElement* RootElement() { return FirstChildElement(); }

  // The first error since the last ClearError, with its text and its one-based row and column
  // (0 when the error has no place).
  bool Error() const { return error; }
  const char* ErrorDesc() const { return errorDesc.c_str(); }
  int ErrorId() const { return errorId; }
  int ErrorRow() const { return errorLocation.row + 1; }
  int ErrorCol() const { return errorLocation.col + 1; }
  void ClearError();
  // Records error `id` unless one is recorded already; with a position and parsing data, also
  // where it happened.
  void SetError(int id, const char* position, TiXmlParsingData* data);

  // Columns per tab for locations; 4 to start with. Set it before parsing.
  void SetTabSize(int size) { tabsize = size; }
  int TabSize() const { return tabsize; }

 private:
  bool error = false;
  int errorId = TIXML_NO_ERROR;
  std::string errorDesc;
  int tabsize = 4;
  TiXmlCursor errorLocation;

  friend class TiXmlNode;
  friend class TiXmlElement;
  // Where the nodes and attributes of this document's parses are made; made at first use.
  TiXmlArena* Arena();
  TiXmlArena* arena = nullptr;
};
