// The document paths against peers in one run: parsing and printing against pugixml, and the
// base64 coder against a plain table-driven coder written here.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "bench/plain_base64.h"
#include "bench/ratio_report.h"
#include "documents/base64_coder.h"
#include "documents/xml.h"

namespace {

constexpr std::size_t kBlobBytes = 4u << 20;

std::vector<unsigned char> RandomBytes(std::size_t size) {
  std::vector<unsigned char> bytes(size);
  std::uint32_t seed = 2024;
  for (unsigned char& b : bytes) {
    seed = seed * 1664525u + 1013904223u;
    b = static_cast<unsigned char>(seed >> 24);
  }
  return bytes;
}

// 2,000 small elements with attributes, about 200 KB.
const std::string& SmallElementsDocument() {
  static const std::string text = [] {
    std::string doc = "<?xml version=\"1.0\" ?>\n<Config Version=\"3\">\n";
    char line[256];
    for (int i = 0; i < 2000; ++i) {
      std::snprintf(line, sizeof line,
                    "    <MIDIEvent Name=\"Patch &amp; bank %04d\" Enabled=\"%d\" WaitMs=\"%d\" "
                    "Bank=\"%d\" Program=\"%d\" Channel=\"%d\">Program change %d</MIDIEvent>\n",
                    i, i % 2, i * 7 % 1000, i % 128, i * 3 % 128, i % 16, i);
      doc += line;
    }
    return doc + "</Config>\n";
  }();
  return text;
}

// 4 MB of base64 text: the encoding of 3 MB.
const std::string& Base64Text() {
  static const std::string text = [] {
    CBase64Coder coder;
    const std::vector<unsigned char> bytes = RandomBytes(kBlobBytes / 4 * 3);
    coder.Encode(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    return std::string(coder.EncodedMessage(), coder.EncodedMessageSize());
  }();
  return text;
}

std::string BlobDocument(const char* element) {
  return std::string("<Config><") + element + ">" + Base64Text() + "</" + element + "></Config>";
}

const std::string& SharedBlobDocument() {
  static const std::string text = BlobDocument("SharedBlob");
  return text;
}

// A saved sysex event's text stands under another name and goes through the entity reader.
const std::string& MidiMsgDocument() {
  static const std::string text = BlobDocument("MIDIMsg");
  return text;
}

void CountBytes(benchmark::State& state, std::size_t perIteration) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(perIteration));
}

std::FILE* NullFile() {
#ifdef _WIN32
  static std::FILE* file = std::fopen("NUL", "w");
#else
  static std::FILE* file = std::fopen("/dev/null", "w");
#endif
  return file;
}

struct StringWriter : pugi::xml_writer {
  std::string text;
  void write(const void* data, std::size_t size) override {
    text.append(static_cast<const char*>(data), size);
  }
};

void TarnParse(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    TiXmlDocument doc;
    doc.Parse(text.c_str());
    benchmark::DoNotOptimize(doc.FirstChild());
  }
  CountBytes(state, text.size());
}

void PugiParse(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    pugi::xml_document doc;
    benchmark::DoNotOptimize(doc.load_buffer(text.data(), text.size()));
  }
  CountBytes(state, text.size());
}

void TarnPrintPretty(benchmark::State& state, const std::string& text) {
  TiXmlDocument doc;
  doc.Parse(text.c_str());
  for (auto _ : state) doc.Print(NullFile(), 0);
  CountBytes(state, text.size());
}

void PugiPrintPretty(benchmark::State& state, const std::string& text) {
  pugi::xml_document doc;
  doc.load_buffer(text.data(), text.size());
  pugi::xml_writer_file writer(NullFile());
  for (auto _ : state) doc.save(writer, "    ", pugi::format_indent);
  CountBytes(state, text.size());
}

void TarnPrintCompact(benchmark::State& state, const std::string& text) {
  TiXmlDocument doc;
  doc.Parse(text.c_str());
  for (auto _ : state) {
    std::string out;
    out << doc;
    benchmark::DoNotOptimize(out.data());
  }
  CountBytes(state, text.size());
}

void PugiPrintCompact(benchmark::State& state, const std::string& text) {
  pugi::xml_document doc;
  doc.load_buffer(text.data(), text.size());
  for (auto _ : state) {
    StringWriter writer;
    doc.save(writer, "", pugi::format_raw);
    benchmark::DoNotOptimize(writer.text.data());
  }
  CountBytes(state, text.size());
}

BENCHMARK_CAPTURE(TarnParse, small_elements, SmallElementsDocument());
BENCHMARK_CAPTURE(PugiParse, small_elements, SmallElementsDocument());
BENCHMARK_CAPTURE(TarnPrintPretty, small_elements, SmallElementsDocument());
BENCHMARK_CAPTURE(PugiPrintPretty, small_elements, SmallElementsDocument());
BENCHMARK_CAPTURE(TarnPrintCompact, small_elements, SmallElementsDocument());
BENCHMARK_CAPTURE(PugiPrintCompact, small_elements, SmallElementsDocument());

BENCHMARK_CAPTURE(TarnParse, shared_blob, SharedBlobDocument());
BENCHMARK_CAPTURE(PugiParse, shared_blob, SharedBlobDocument());
BENCHMARK_CAPTURE(TarnPrintPretty, shared_blob, SharedBlobDocument());
BENCHMARK_CAPTURE(PugiPrintPretty, shared_blob, SharedBlobDocument());
BENCHMARK_CAPTURE(TarnPrintCompact, shared_blob, SharedBlobDocument());
BENCHMARK_CAPTURE(PugiPrintCompact, shared_blob, SharedBlobDocument());

// As the saved state is written: the block built as a TiXmlBase64Text, which the pretty form
// writes without escapes.
void TarnPrintBase64Node(benchmark::State& state, bool pretty) {
  TiXmlDocument doc;
  TiXmlElement blob("SharedBlob");
  blob.InsertEndChild(TiXmlBase64Text(Base64Text()));
  doc.InsertEndChild(TiXmlElement("Config"))->InsertEndChild(blob);
  for (auto _ : state) {
    if (pretty) {
      doc.Print(NullFile(), 0);
    } else {
      std::string out;
      out << doc;
      benchmark::DoNotOptimize(out.data());
    }
  }
  CountBytes(state, Base64Text().size());
}
BENCHMARK_CAPTURE(TarnPrintBase64Node, pretty, true);
BENCHMARK_CAPTURE(TarnPrintBase64Node, compact, false);

BENCHMARK_CAPTURE(TarnParse, midimsg_text, MidiMsgDocument());
BENCHMARK_CAPTURE(PugiParse, midimsg_text, MidiMsgDocument());

// The whole read of a saved sysex event: parse under another name, then decode the text.
void TarnReadTextThenDecode(benchmark::State& state) {
  const std::string& text = MidiMsgDocument();
  CBase64Coder coder;
  for (auto _ : state) {
    TiXmlDocument doc;
    doc.Parse(text.c_str());
    coder.Decode(doc.RootElement()->FirstChild()->FirstChild()->Value());
    benchmark::DoNotOptimize(coder.DecodedMessage());
  }
  CountBytes(state, text.size());
}
BENCHMARK(TarnReadTextThenDecode);

const std::vector<unsigned char>& BlobBytes() {
  static const std::vector<unsigned char> bytes = RandomBytes(kBlobBytes);
  return bytes;
}

void TarnEncode(benchmark::State& state) {
  const std::vector<unsigned char>& bytes = BlobBytes();
  CBase64Coder coder;
  for (auto _ : state) {
    coder.Encode(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    benchmark::DoNotOptimize(coder.EncodedMessage());
  }
  CountBytes(state, bytes.size());
}
BENCHMARK(TarnEncode);

void PlainEncodeBench(benchmark::State& state) {
  const std::vector<unsigned char>& bytes = BlobBytes();
  std::string out;
  for (auto _ : state) {
    plain_base64::Encode(bytes.data(), bytes.size(), out);
    benchmark::DoNotOptimize(out.data());
  }
  CountBytes(state, bytes.size());
}
BENCHMARK(PlainEncodeBench)->Name("PlainEncode");

void TarnDecode(benchmark::State& state) {
  const std::string& text = Base64Text();
  CBase64Coder coder;
  for (auto _ : state) {
    coder.Decode(reinterpret_cast<const unsigned char*>(text.data()),
                 static_cast<std::uint32_t>(text.size()));
    benchmark::DoNotOptimize(coder.DecodedMessage());
  }
  CountBytes(state, text.size());
}
BENCHMARK(TarnDecode);

void PlainDecodeBench(benchmark::State& state) {
  const std::string& text = Base64Text();
  std::vector<unsigned char> out;
  for (auto _ : state) {
    plain_base64::Decode(text.data(), text.size(), out);
    benchmark::DoNotOptimize(out.data());
  }
  CountBytes(state, text.size());
}
BENCHMARK(PlainDecodeBench)->Name("PlainDecode");

}  // namespace

int main(int argc, char** argv) {
  // Time per iteration against pugixml, which must stay under the target.
  const auto slower = [](const char* label, const char* ours, const char* baseline, double target) {
    return RatioRow{label, ours, baseline, "", target, false, ""};
  };
  return RunWithRatios(
      argc, argv,
      {slower("parse/pugixml", "TarnParse/small_elements", "PugiParse/small_elements", 3),
       slower("print pretty/pugixml", "TarnPrintPretty/small_elements",
              "PugiPrintPretty/small_elements", 2),
       slower("print compact/pugixml", "TarnPrintCompact/small_elements",
              "PugiPrintCompact/small_elements", 2),
       RatioRow{"decode/plain", "TarnDecode", "PlainDecode", "", 0.8, true, ""}});
}
