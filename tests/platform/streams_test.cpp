// The memory and file streams that stand in for a host's: short reads at the end, growth on
// writing, seeking from each origin, and a file that reads back what was written.
#include <gtest/gtest.h>

#include "platform/com_ptr.h"
#include "platform/streams.h"
#include "tests/support/temp_folder.h"

namespace {

LARGE_INTEGER Move(std::int64_t by) {
  LARGE_INTEGER l{};
  l.QuadPart = by;
  return l;
}

// Writes "hello", seeks, reads back; the checks every stream must pass.
void ExpectStreamBehaviour(IStream& stream) {
  ULONG count = 0;
  ASSERT_EQ(stream.Write("hello", 5, &count), S_OK);
  EXPECT_EQ(count, 5u);
  ULARGE_INTEGER position{};
  ASSERT_EQ(stream.Seek(Move(-4), STREAM_SEEK_END, &position), S_OK);
  EXPECT_EQ(position.QuadPart, 1u);
  char buffer[8] = {};
  EXPECT_EQ(stream.Read(buffer, 8, &count), S_FALSE) << "a short read at the end";
  EXPECT_EQ(std::string(buffer, count), "ello");
  EXPECT_EQ(stream.Read(buffer, 1, &count), S_FALSE);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(stream.Seek(Move(-1), STREAM_SEEK_SET, nullptr), STG_E_INVALIDFUNCTION);
  STATSTG stat{};
  ASSERT_EQ(stream.Stat(&stat, STATFLAG_NONAME), S_OK);
  EXPECT_EQ(stat.cbSize.QuadPart, 5u);
  EXPECT_EQ(stream.Read(nullptr, 1, &count), STG_E_INVALIDPOINTER);
}

TEST(Streams, AMemoryStreamReadsWritesAndCopies) {
  auto stream = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
  ExpectStreamBehaviour(*stream);
  ASSERT_EQ(stream->Seek(Move(8), STREAM_SEEK_SET, nullptr), S_OK);
  ASSERT_EQ(stream->Write("!", 1, nullptr), S_OK);
  EXPECT_EQ(stream->Bytes(), (std::vector<std::uint8_t>{'h', 'e', 'l', 'l', 'o', 0, 0, 0, '!'}))
      << "writing past the end fills the gap with zeros";

  auto target = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
  ULARGE_INTEGER read{}, written{}, all{};
  all.QuadPart = 100;
  stream->Seek(Move(1), STREAM_SEEK_SET, nullptr);
  ASSERT_EQ(stream->CopyTo(target.Get(), all, &read, &written), S_OK);
  EXPECT_EQ(read.QuadPart, 8u);
  EXPECT_EQ(written.QuadPart, 8u);

  ComPtr<IStream> clone;
  ASSERT_EQ(stream->Clone(clone.Receive()), S_OK);
  ULARGE_INTEGER at{};
  clone->Seek(Move(0), STREAM_SEEK_CUR, &at);
  EXPECT_EQ(at.QuadPart, 9u) << "a clone keeps the position";
}

TEST(Streams, AFileStreamReadsBackWhatItWrote) {
  TempFolder folder;
  const auto path = folder.Path() / "state.bin";
  HRESULT hr = S_OK;
  {
    auto stream = ComPtr<CFileStream>::Attach(CFileStream::Open(path, CFileStream::Mode::Create, &hr));
    ASSERT_EQ(hr, S_OK);
    ExpectStreamBehaviour(*stream);
  }
  auto reader = ComPtr<CFileStream>::Attach(CFileStream::Open(path, CFileStream::Mode::Read, &hr));
  ASSERT_TRUE(reader);
  char buffer[5] = {};
  ULONG count = 0;
  ASSERT_EQ(reader->Read(buffer, 5, &count), S_OK);
  EXPECT_EQ(std::string(buffer, 5), "hello");
  EXPECT_EQ(reader->Write("x", 1, nullptr), STG_E_ACCESSDENIED);
  EXPECT_EQ(CFileStream::Open(folder.Path() / "missing", CFileStream::Mode::Read, &hr), nullptr);
  EXPECT_EQ(hr, STG_E_FILENOTFOUND);
}

}  // namespace
