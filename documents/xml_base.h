// The root of the XML library: locations, the parser's position record, and the character-level
// readers and writers that every node class shares.
//
// Documents are not shared between threads; the statics here are read-only in use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iosfwd>
#include <string>

#include "platform/export.h"

class TiXmlNode;
class TiXmlDocument;
class TiXmlArena;

// Result of the attribute queries.
enum : int { TIXML_SUCCESS = 0, TIXML_NO_ATTRIBUTE = 1, TIXML_WRONG_TYPE = 2 };

// A place in the parsed text, zero-based; -1 means not set.
struct TiXmlCursor {
  std::int32_t row = -1;
  std::int32_t col = -1;

  void Clear() { row = col = -1; }
};

// The parser's position: a cursor advanced over the text as nodes stamp their locations.
class TARN_EXPORT TiXmlParsingData {
 public:
  // Starts counting at `start`, which stands at `row`, `col`. A tab size below 1 turns
  // stamping off.
  TiXmlParsingData(const char* start, int tabSize, std::int32_t row, std::int32_t col);

  // Advances the cursor to `now`. A tab moves to the next multiple of the tab size; LF, CR and
  // either pair of them count as one line break; a zero ends the count. Positions before the
  // last stamp leave the cursor where it is. Returns the cursor.
  TiXmlCursor Stamp(const char* now);
  const TiXmlCursor& Cursor() const { return cursor; }

 private:
  TiXmlCursor cursor;
  const char* stamp;
  int tabsize;
};

// Error ids of TiXmlDocument; the text of each is TiXmlBase::errorString[id].
enum : int {
  TIXML_NO_ERROR = 0,
  TIXML_ERROR,
  TIXML_ERROR_OPENING_FILE,
  TIXML_ERROR_OUT_OF_MEMORY,
  TIXML_ERROR_PARSING_ELEMENT,
  TIXML_ERROR_FAILED_TO_READ_ELEMENT_NAME,
  TIXML_ERROR_READING_ELEMENT_VALUE,
  TIXML_ERROR_READING_ATTRIBUTES,
  TIXML_ERROR_PARSING_EMPTY,
  TIXML_ERROR_READING_END_TAG,
  TIXML_ERROR_PARSING_UNKNOWN,
  TIXML_ERROR_PARSING_COMMENT,
  TIXML_ERROR_PARSING_DECLARATION,
  TIXML_ERROR_DOCUMENT_EMPTY,
  TIXML_ERROR_STRING_COUNT
};

// Base of every node and of attributes: a location, and the three operations that each kind
// supplies. Not copyable: nodes own their children and are copied with Clone.
class TARN_EXPORT TiXmlBase {
 public:
  TiXmlBase() = default;
  TiXmlBase(const TiXmlBase&) = delete;
  TiXmlBase& operator=(const TiXmlBase&) = delete;
  virtual ~TiXmlBase();

  // Objects made with new carry a note of where their memory came from: the heap, or the arena
  // of the document whose parse made them. Either way each can be deleted on its own.
  static void* operator new(std::size_t size);
  static void* operator new(std::size_t size, TiXmlArena& arena);
  static void operator delete(void* object, std::size_t size) noexcept;
  static void operator delete(void* object, TiXmlArena& arena) noexcept;

  // Writes the pretty form, for files: `depth` levels of four-blank indent where the kind
  // indents at all.
  virtual void Print(std::FILE* file, int depth) const = 0;
  // Writes the compact form, for strings and streams: no line breaks, no indent.
  virtual void StreamOut(std::ostream* out) const = 0;
  // Reads this object from the zero-terminated text at `p`. `data` carries the position for
  // locations and may be null; `parent` is the node that will own this one, or null. Returns
  // the position behind what was read, or null after an error, which is recorded on the
  // document that the object belongs to. Never reads past the terminating zero.
  virtual const char* Parse(const char* p, TiXmlParsingData* data, TiXmlNode* parent) = 0;

  // One-based row and column where the parser found this object; 0 when not parsed.
  int Row() const { return location.row + 1; }
  int Column() const { return location.col + 1; }

  // When set, text read with trimming folds whitespace runs into one blank and drops it at
  // both ends. Off by default, and nothing in the system turns it on.
  static void SetCondenseWhiteSpace(bool condense) { condenseWhiteSpace = condense; }
  static bool IsWhiteSpaceCondensed() { return condenseWhiteSpace; }

  // The text of each error id, indexed by id.
  static const char* const errorString[TIXML_ERROR_STRING_COUNT];

 protected:
  struct Entity {
    const char* str;
    std::uint32_t strLength;
    char chr;
  };
  // The five named entities: amp, lt, gt, quot, apos.
  static constexpr int NUM_ENTITY = 5;
  static const Entity entity[NUM_ENTITY];
  static bool condenseWhiteSpace;

  // What isspace says in the C locale, CR and LF included.
  static bool IsWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
  // First position at or after `p` that is not whitespace; null stays null.
  static const char* SkipWhiteSpace(const char* p);
  // Reads a name (a letter or "_", then letters, digits, "_", "-", ".", ":") into `name`.
  // Returns the position behind it, or null when no name starts at `p`.
  static const char* ReadName(const char* p, std::string* name);
  // Reads text up to `endTag`, compared by StringEqual with `exact`, resolving entities. With
  // `trim` and condensed whitespace it folds whitespace; otherwise it copies the text as it
  // stands. Returns the position behind the end tag, or the terminating zero if the text ends
  // first.
  static const char* ReadText(const char* p, std::string* text, bool trim, const char* endTag,
                              bool exact);
  // Copies the raw run up to the one-character `endTag` into `text` in one step: no entities,
  // no whitespace handling, for large base64 blocks. Returns the position behind the end tag,
  // or the terminating zero if the text ends first. A longer `endTag` gives an empty text and
  // returns `p`. The input is only read.
  static const char* ReadBase64Block(const char* p, std::string* text, const char* endTag);
  // Reads one character reference at "&": "&#x" with one or two hex digits and ";", or a named
  // entity; anything else gives the "&" itself. Returns the position behind what was read.
  static const char* GetEntity(const char* p, char* value);
  // Reads one character, through GetEntity at "&".
  static const char* GetChar(const char* p, char* value);
  // Whether the text at `p` starts with `tag`. Mind the sense of the flag: true compares
  // exactly, false ignores ASCII case. Stops at the end of the text.
  static bool StringEqual(const char* p, const char* tag, bool exact);
  // Appends `str` to `out` made safe for markup: the five entity characters become entities,
  // bytes outside 32 to 126 become "&#xHH;", and an existing "&#x...;" passes unchanged.
  static void PutString(const std::string& str, std::string* out);
  // The same, written straight to a stream or a file.
  static void PutString(const std::string& str, std::ostream* out);
  static void PutString(const std::string& str, std::FILE* file);

  // Stream input: copy characters from `in` to `tag`. StreamWhiteSpace copies whitespace;
  // StreamTo copies up to and including `character` and says whether it was found;
  // StreamElement copies markup, comments and quoted values respected, until the first element
  // that starts in it is closed, and says whether the input held all of it.
  static void StreamWhiteSpace(std::istream* in, std::string* tag);
  static bool StreamTo(std::istream* in, int character, std::string* tag);
  static bool StreamElement(std::istream* in, std::string* tag);

  // Records the first error of a parse on `document`, if there is one.
  static void SetError(TiXmlDocument* document, int id, const char* p, TiXmlParsingData* data);
  // Stamps this object's location at `p`.
  void Stamp(const char* p, TiXmlParsingData* data);

  TiXmlCursor location;
};
