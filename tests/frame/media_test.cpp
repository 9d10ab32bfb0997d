#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "frame/allocator.h"
#include "interfaces/media_type.h"
#include "frame/unknown.h"
#include "tests/support/fake_pins.h"

namespace {

const WaveFormat kFloatStereo = MakeWaveFormat(WAVE_FORMAT_IEEE_FLOAT_TAG, 2, 48000, 32);

TEST(MediaType, AudioTypeCarriesTheWaveFormatRecordAndAShorterBlockIsNone) {
  const CMediaType type = AudioMediaType(kFloatStereo);
  EXPECT_EQ(type.majortype, MEDIATYPE_Audio);
  EXPECT_EQ(type.subtype, MEDIASUBTYPE_IEEE_FLOAT);
  EXPECT_EQ(type.formattype, FORMAT_WaveFormatEx);
  EXPECT_EQ(type.lSampleSize, 8u);
  ASSERT_EQ(type.FormatLength(), 18u);
  ASSERT_NE(type.WaveFormatPtr(), nullptr);
  EXPECT_EQ(type.WaveFormatPtr()->nAvgBytesPerSec, 384000u);
  EXPECT_EQ(AudioMediaType(MakeWaveFormat(WAVE_FORMAT_PCM_TAG, 1, 44100, 16)).subtype,
            MEDIASUBTYPE_PCM);

  CMediaType shortBlock = type;
  shortBlock.SetFormat(&kFloatStereo, 17);
  EXPECT_EQ(shortBlock.WaveFormatPtr(), nullptr) << "a block shorter than the record is none";
  shortBlock.SetFormat(nullptr, 18);
  EXPECT_EQ(shortBlock.FormatLength(), 0u);
  EXPECT_EQ(shortBlock.Format(), nullptr);
}

TEST(MediaType, CopiesAreEqualUntilOneFormatByteDiffers) {
  const CMediaType original = AudioMediaType(kFloatStereo);
  CMediaType copy = original;
  EXPECT_EQ(copy, original);
  WaveFormat other = kFloatStereo;
  other.nSamplesPerSec = 44100;
  copy.SetFormat(&other, sizeof other);
  EXPECT_FALSE(copy == original);
  const CMediaType moved = std::move(copy);
  EXPECT_EQ(moved.WaveFormatPtr()->nSamplesPerSec, 44100u);
}

TEST(MediaType, PatternsLeaveNullIdentifiersOpen) {
  const CMediaType type = AudioMediaType(kFloatStereo);
  const CMediaType anyAudio(MEDIATYPE_Audio);
  EXPECT_TRUE(anyAudio.IsPartiallySpecified());
  EXPECT_FALSE(type.IsPartiallySpecified());
  EXPECT_TRUE(type.MatchesPartial(anyAudio));
  CMediaType pcmOnly = anyAudio;
  pcmOnly.subtype = MEDIASUBTYPE_PCM;
  EXPECT_FALSE(type.MatchesPartial(pcmOnly));
  EXPECT_FALSE(CMediaType().IsValid());
}

// An outer object that counts the references its inner one forwards to it.
struct CountingOuter final : IUnknown {
  std::atomic<ULONG> refs{1};
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs; }
  ULONG STDMETHODCALLTYPE Release() override { return --refs; }
};

TEST(Unknown, AnObjectGoesAtItsLastReleaseAndTheLiveCountFollows) {
  const std::int32_t before = CBaseObject::ObjectsActive();
  ComPtr<IMemAllocator> allocator = CMemAllocator::Create();
  EXPECT_EQ(CBaseObject::ObjectsActive(), before + 1);
  ComPtr<IUnknown> a, b;
  ASSERT_EQ(a.QueryFrom(allocator.Get(), IID_IUnknown), S_OK);
  ASSERT_EQ(b.QueryFrom(a.Get(), IID_IUnknown), S_OK);
  EXPECT_EQ(a.Get(), b.Get()) << "one identity whichever face is asked";
  void* none = &none;
  EXPECT_EQ(allocator->QueryInterface(IID_IPin, &none), E_NOINTERFACE);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(allocator->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
  allocator.Reset();
  a.Reset();
  EXPECT_EQ(CBaseObject::ObjectsActive(), before + 1);
  b.Reset();
  EXPECT_EQ(CBaseObject::ObjectsActive(), before);
}

TEST(Unknown, AnAggregatedObjectCountsOnItsOuterAndLivesByItsInnerFace) {
  CountingOuter outer;
  auto* inner = new CMemAllocator(L"inner", &outer);
  IUnknown* own = inner->NonDelegatingUnknown();
  own->AddRef();
  ComPtr<IMemAllocator> face;
  ASSERT_EQ(face.QueryFrom(own, IID_IMemAllocator), S_OK);
  EXPECT_EQ(outer.refs.load(), 2u) << "the face's reference went to the outer object";
  IUnknown* fromFace = nullptr;
  EXPECT_EQ(face->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&fromFace)), E_NOINTERFACE)
      << "a face asks the outer object, which knows no such thing here";
  face.Reset();
  EXPECT_EQ(outer.refs.load(), 1u);
  own->Release();
}

class Allocated : public ::testing::Test {
 protected:
  void SetUp() override { Make(false); }
  void Make(bool silence, ALLOCATOR_PROPERTIES wanted = {2, 64, 1, 0}) {
    allocator = CMemAllocator::Create(silence);
    ALLOCATOR_PROPERTIES actual{};
    ASSERT_EQ(allocator->SetProperties(&wanted, &actual), S_OK);
    ASSERT_EQ(allocator->Commit(), S_OK);
  }
  ComPtr<IMediaSample> Get(std::uint32_t flags = 0) {
    ComPtr<IMediaSample> sample;
    last = allocator->GetBuffer(sample.Receive(), nullptr, nullptr, flags);
    return sample;
  }
  ComPtr<IMemAllocator> allocator;
  HRESULT last = S_OK;
};

// Two pools asked for no alignment still lie alike within their cache lines, so a copy from one
// to the other splits no load and no store; the properties stay as asked.
TEST_F(Allocated, BuffersStartOnACacheLineWhateverTheAlignmentAsked) {
  for (const std::int32_t size : {64, 4096, 8192}) {
    Make(false, {3, size, 1, 0});
    ALLOCATOR_PROPERTIES held{};
    allocator->GetProperties(&held);
    EXPECT_EQ(held.cbAlign, 1);
    EXPECT_EQ(held.cbBuffer, size);
    auto first = Get();
    std::uint8_t* data = nullptr;
    first->GetPointer(&data);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(data) % 64, 0u) << size;
  }
}

TEST_F(Allocated, GetTimeTellsUnsetStartOnlyAndBoth) {
  auto sample = Get();
  REFERENCE_TIME start = -7, stop = -7;
  EXPECT_EQ(sample->GetTime(&start, &stop), VFW_E_SAMPLE_TIME_NOT_SET);
  EXPECT_EQ(start, -7) << "untouched when unset";
  const REFERENCE_TIME t0 = 1000, t1 = 2000;
  sample->SetTime(&t0, nullptr);
  EXPECT_EQ(sample->GetTime(&start, &stop), VFW_S_NO_STOP_TIME);
  EXPECT_EQ(start, 1000);
  EXPECT_EQ(stop, 1001);
  sample->SetTime(&t0, &t1);
  EXPECT_EQ(sample->GetTime(&start, &stop), S_OK);
  EXPECT_EQ(stop, 2000);
  sample->SetTime(nullptr, &t1);
  EXPECT_EQ(sample->GetTime(&start, &stop), VFW_E_SAMPLE_TIME_NOT_SET);
  EXPECT_EQ(sample->GetTime(nullptr, &stop), E_POINTER);
}

TEST_F(Allocated, ActualLengthStaysWithinTheBuffer) {
  auto sample = Get();
  EXPECT_EQ(sample->GetActualDataLength(), 64) << "a fresh sample is full";
  EXPECT_EQ(sample->SetActualDataLength(64), S_OK);
  EXPECT_EQ(sample->SetActualDataLength(0), S_OK);
  EXPECT_EQ(sample->SetActualDataLength(65), VFW_E_BUFFER_OVERFLOW);
  EXPECT_EQ(sample->SetActualDataLength(-1), E_INVALIDARG);
  EXPECT_EQ(sample->GetActualDataLength(), 0);
}

TEST_F(Allocated, ASampleComesBackFromItsAllocatorWithNothingOfItsLastUse) {
  Make(false, {1, 64, 1, 0});
  auto sample = Get();
  const REFERENCE_TIME t = 5;
  sample->SetTime(&t, &t);
  sample->SetSyncPoint(1);
  sample->SetDiscontinuity(1);
  sample->SetPreroll(1);
  sample->SetActualDataLength(3);
  const CMediaType type = AudioMediaType(kFloatStereo);
  sample->SetMediaType(&type);

  IMediaSample* const same = sample.Get();
  sample.Reset();
  auto again = Get();
  ASSERT_EQ(again.Get(), same) << "the pool has one sample";
  IMediaSample* reused = again.Get();
  REFERENCE_TIME start = 0, stop = 0;
  EXPECT_EQ(reused->GetTime(&start, &stop), VFW_E_SAMPLE_TIME_NOT_SET);
  EXPECT_EQ(reused->IsSyncPoint(), S_FALSE);
  EXPECT_EQ(reused->IsDiscontinuity(), S_FALSE);
  EXPECT_EQ(reused->IsPreroll(), S_FALSE);
  EXPECT_EQ(reused->GetActualDataLength(), 64);
  CMediaType seen;
  EXPECT_EQ(reused->GetMediaType(&seen), S_FALSE);
}

TEST_F(Allocated, SilenceIsOfferedOnlyByAnAllocatorThatSaysSo) {
  auto plain = Get();
  void* facet = &facet;
  EXPECT_EQ(plain->QueryInterface(IID_ISampleSilence, &facet), E_NOINTERFACE);
  EXPECT_EQ(facet, nullptr);
  plain.Reset();

  Make(true);
  auto sample = Get();
  ComPtr<ISampleSilence> silence;
  ASSERT_EQ(silence.QueryFrom(sample.Get(), IID_ISampleSilence), S_OK);
  EXPECT_EQ(silence->GetSilent(), 0);
  silence->SetSilent(1);
  EXPECT_EQ(silence->GetSilent(), 1);
  sample.Reset();
  silence.Reset();
  auto a = Get(), b = Get();
  for (auto* s : {a.Get(), b.Get()}) {
    ComPtr<ISampleSilence> check;
    check.QueryFrom(s, IID_ISampleSilence);
    EXPECT_EQ(check->GetSilent(), 0) << "silence is cleared on return";
  }
}

TEST(Allocator, PropertiesAreCheckedAndRoundedToTheAlignment) {
  auto allocator = CMemAllocator::Create();
  ALLOCATOR_PROPERTIES actual{};
  for (std::int32_t align : {0, 3, -4}) {
    const ALLOCATOR_PROPERTIES bad{1, 16, align, 0};
    EXPECT_EQ(allocator->SetProperties(&bad, &actual), VFW_E_BADALIGN) << align;
  }
  const ALLOCATOR_PROPERTIES negative{1, -16, 4, 0};
  EXPECT_EQ(allocator->SetProperties(&negative, &actual), E_INVALIDARG);
  EXPECT_EQ(allocator->Commit(), VFW_E_SIZENOTSET);

  const ALLOCATOR_PROPERTIES wanted{3, 10, 8, 2};
  ASSERT_EQ(allocator->SetProperties(&wanted, &actual), S_OK);
  EXPECT_EQ(actual.cbBuffer, 14) << "prefix and buffer fill two units of 8";
  ALLOCATOR_PROPERTIES held{};
  allocator->GetProperties(&held);
  EXPECT_EQ(held.cBuffers, 3);
  EXPECT_EQ(held.cbBuffer, 14);

  ASSERT_EQ(allocator->Commit(), S_OK);
  EXPECT_EQ(allocator->SetProperties(&wanted, &actual), VFW_E_ALREADY_COMMITTED);
  ComPtr<IMediaSample> samples[3];
  for (auto& s : samples) {
    ASSERT_EQ(allocator->GetBuffer(s.Receive(), nullptr, nullptr, 0), S_OK);
    std::uint8_t* data = nullptr;
    s->GetPointer(&data);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(data - 2) % 8, 0u) << "prefix starts aligned";
    EXPECT_EQ(s->GetSize(), 14);
  }
}

TEST_F(Allocated, GetBufferBeforeCommitOrAfterDecommitFails) {
  allocator->Decommit();
  Get();
  EXPECT_EQ(last, VFW_E_NOT_COMMITTED);
  allocator = CMemAllocator::Create();
  Get();
  EXPECT_EQ(last, VFW_E_NOT_COMMITTED);
}

TEST_F(Allocated, WhenAllAreOutGetBufferWaitsForOneToComeBack) {
  auto a = Get(), b = Get();
  EXPECT_FALSE(Get(AM_GBF_NOWAIT));
  EXPECT_EQ(last, VFW_E_TIMEOUT);
  std::thread giver([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    a.Reset();
  });
  auto c = Get();
  giver.join();
  EXPECT_EQ(last, S_OK);
  EXPECT_TRUE(c);
}

TEST_F(Allocated, DecommitWakesAWaiterWithNotCommitted) {
  auto a = Get(), b = Get();
  std::atomic<HRESULT> waited{S_OK};
  std::thread waiter([&] {
    ComPtr<IMediaSample> s;
    waited = allocator->GetBuffer(s.Receive(), nullptr, nullptr, 0);
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  allocator->Decommit();
  waiter.join();
  EXPECT_EQ(waited.load(), VFW_E_NOT_COMMITTED);
}

TEST_F(Allocated, MemoryGoesOnlyWhenDecommittedAndEverySampleIsBack) {
  auto* pool = static_cast<CMemAllocator*>(allocator.Get());
  auto a = Get();
  allocator->Decommit();
  EXPECT_EQ(pool->SampleCount(), 2) << "a sample is still out";
  const ALLOCATOR_PROPERTIES wanted{1, 8, 1, 0};
  ALLOCATOR_PROPERTIES actual{};
  EXPECT_EQ(allocator->SetProperties(&wanted, &actual), VFW_E_BUFFERS_OUTSTANDING);
  a.Reset();
  EXPECT_EQ(pool->SampleCount(), 0);
  EXPECT_EQ(allocator->SetProperties(&wanted, &actual), S_OK);
}

TEST(Allocator, ASampleOutlivesTheLastOutsideReferenceToItsAllocator) {
  const std::int32_t before = CBaseObject::ObjectsActive();
  ComPtr<IMediaSample> sample;
  {
    auto allocator = CMemAllocator::Create();
    const ALLOCATOR_PROPERTIES wanted{1, 32, 1, 0};
    ALLOCATOR_PROPERTIES actual{};
    allocator->SetProperties(&wanted, &actual);
    allocator->Commit();
    allocator->GetBuffer(sample.Receive(), nullptr, nullptr, 0);
    allocator->Decommit();
  }
  std::uint8_t* data = nullptr;
  sample->GetPointer(&data);
  data[31] = 1;  // still ours: the sample keeps its allocator and memory alive
  sample.Reset();
  EXPECT_EQ(CBaseObject::ObjectsActive(), before);
}

}  // namespace
