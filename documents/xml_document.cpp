#include "documents/xml_document.h"

#include <fstream>
#include <ostream>

#include "documents/xml.h"
#include "documents/xml_arena.h"

TiXmlDocument::~TiXmlDocument() {
  Clear();  // the nodes go first, while their arena is certainly alive
  if (arena) arena->Abandon();
}

TiXmlArena* TiXmlDocument::Arena() {
  if (!arena) arena = new TiXmlArena;
  return arena;
}

bool TiXmlDocument::LoadFile() { return LoadFile(value.c_str()); }

bool TiXmlDocument::LoadFile(const char* fileName) {
  const std::string name = fileName;  // `fileName` may be our own value, which Clear keeps.
  Clear();
  ClearError();
  value = name;
  std::ifstream file(name);
  if (!file) {
    SetError(TIXML_ERROR_OPENING_FILE, nullptr, nullptr);
    return false;
  }
  std::string text;
  // The size is only a hint: a folder or a device opens too, and tells a size it does not hold.
  constexpr std::streamoff kLargestHint = std::streamoff{64} << 20;
  file.seekg(0, std::ios::end);
  if (const std::streamoff size = file.tellg(); size > 0 && size <= kLargestHint)
    text.reserve(static_cast<std::size_t>(size));
  file.clear();
  file.seekg(0, std::ios::beg);
  char block[32768];
  while (file.read(block, sizeof block) || file.gcount() > 0)
    text.append(block, static_cast<std::size_t>(file.gcount()));
  if (text.empty()) return false;
  Parse(text.c_str());
  return !error;
}

bool TiXmlDocument::SaveFile() const { return SaveFile(value.c_str()); }

// False also when a write fails on the way (a full disk, a size limit): the file is then
// incomplete, and the caller must not take it for the document.
bool TiXmlDocument::SaveFile(const char* fileName) const {
  std::FILE* file = std::fopen(fileName, "w");
  if (!file) return false;
  Print(file, 0);
  const bool written = std::fflush(file) == 0 && !std::ferror(file);
  return std::fclose(file) == 0 && written;
}

const char* TiXmlDocument::Parse(const char* p, TiXmlParsingData* data, TiXmlNode* /*parent*/) {
  ClearError();
  if (!p || !*p) {
    SetError(TIXML_ERROR_DOCUMENT_EMPTY, nullptr, nullptr);
    return nullptr;
  }
  location.row = data ? data->Cursor().row : 0;
  location.col = data ? data->Cursor().col : 0;
  TiXmlParsingData position(p, tabsize, location.row, location.col);
  p = SkipWhiteSpace(p);
  while (p && *p) {
    TiXmlNode* node = Identify(p);
    if (!node) break;
    p = node->Parse(p, &position, this);
    LinkEndChild(node);
    p = SkipWhiteSpace(p);
  }
  return p;
}

TiXmlNode* TiXmlDocument::Clone() const {
  auto* clone = new TiXmlDocument;
  CopyToClone(clone);
  clone->error = error;
  clone->errorId = errorId;
  clone->errorDesc = errorDesc;
  clone->tabsize = tabsize;
  clone->errorLocation = errorLocation;
  for (const TiXmlNode* node = firstChild; node; node = node->NextSibling())
    clone->LinkEndChild(node->Clone());
  return clone;
}

void TiXmlDocument::Print(std::FILE* file, int depth) const {
  for (const TiXmlNode* node = firstChild; node; node = node->NextSibling()) {
    node->Print(file, depth);
    std::fputc('\n', file);
  }
}

void TiXmlDocument::StreamOut(std::ostream* out) const {
  for (const TiXmlNode* node = firstChild; node; node = node->NextSibling()) {
    node->StreamOut(out);
    if (node->ToElement()) return;
  }
}

void TiXmlDocument::ClearError() {
  error = false;
  errorId = TIXML_NO_ERROR;
  errorDesc.clear();
  errorLocation.Clear();
}

void TiXmlDocument::SetError(int id, const char* position, TiXmlParsingData* data) {
  if (error) return;
  error = true;
  errorId = (id >= 0 && id < TIXML_ERROR_STRING_COUNT) ? id : TIXML_ERROR;
  errorDesc = errorString[errorId];
  errorLocation.Clear();
  if (position && data) {
    data->Stamp(position);
    errorLocation = data->Cursor();
  }
}
