// The host reads a name list by index (keys 0 to 127 only) or by walking it in key order.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "instruments/string_map.h"

namespace {

ComPtr<CStringMap> List(const char* title) {
  ComPtr<CStringMap> list;
  EXPECT_EQ(CreateNameList(&list, title), S_OK);
  return list;
}

TEST(NameList, AnEmptyListHasRoomFor128AndNothingToWalk) {
  ComPtr<CStringMap> list = List(nullptr);
  std::int32_t count = -1;
  std::int32_t max = -1;
  EXPECT_EQ(list->GetCount(&count), S_OK);
  EXPECT_EQ(list->GetMaxCount(&max), S_OK);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(max, 128);
  MfxPosition position = 99;
  EXPECT_EQ(list->GetFirstPosition(&position), S_OK);
  char name[8] = "x";
  EXPECT_EQ(list->GetNextEntry(&position, nullptr, name, 8), S_FALSE);
  EXPECT_EQ(list->GetTitle(name, 8), S_OK);
  EXPECT_STREQ(name, "") << "a null title is an empty one";
}

TEST(NameList, TheIndexReachesKeys0To127AndLookupReachesAll) {
  ComPtr<CStringMap> list = List("T");
  list->SetName(128, "high");
  list->SetName(3, "three");
  char name[16] = "junk";
  EXPECT_EQ(list->GetNameAt(128, name, sizeof name), E_INVALIDARG);
  EXPECT_EQ(list->GetNameAt(-1, name, sizeof name), E_INVALIDARG);
  EXPECT_EQ(list->LookupName(128, name, sizeof name), S_OK);
  EXPECT_STREQ(name, "high");
  EXPECT_EQ(list->GetNameAt(3, name, sizeof name), S_OK);
  EXPECT_STREQ(name, "three");

  // A hole: empty by index, absent by lookup, which leaves the buffer alone.
  EXPECT_EQ(list->GetNameAt(4, name, sizeof name), S_OK);
  EXPECT_STREQ(name, "");
  std::strcpy(name, "kept");
  EXPECT_EQ(list->LookupName(4, name, sizeof name), S_FALSE);
  EXPECT_STREQ(name, "kept");

  std::int32_t count = 0;
  list->GetCount(&count);
  EXPECT_EQ(count, 2) << "the count is of names held, not the highest key";
}

TEST(NameList, TheWalkVisitsEveryKeyInAscendingOrder) {
  ComPtr<CStringMap> list = List("T");
  list->SetName(200, "c");
  list->SetName(-5, "a");
  list->SetName(7, "b");
  list->SetName(7, "B");  // replaces
  std::string seen;
  MfxPosition position = 0;
  list->GetFirstPosition(&position);
  std::int32_t key = 0;
  char name[8];
  while (list->GetNextEntry(&position, &key, name, sizeof name) == S_OK)
    seen += std::to_string(key) + "=" + name + ";";
  EXPECT_EQ(seen, "-5=a;7=B;200=c;");
  EXPECT_EQ(position, 0u);
  EXPECT_EQ(list->GetNextEntry(&position, &key, name, sizeof name), S_FALSE);
  MfxPosition stale = 4;
  EXPECT_EQ(list->GetNextEntry(&stale, &key, name, sizeof name), S_FALSE);
}

TEST(NameList, NamesThatDoNotFitAreCutAndEndWithAZero) {
  ComPtr<CStringMap> list = List("A long title");
  list->SetName(1, "Grand Piano");
  char name[6] = "#####";
  EXPECT_EQ(list->GetTitle(name, 4), S_OK);
  EXPECT_STREQ(name, "A l");
  EXPECT_EQ(list->GetNameAt(1, name, 6), S_OK);
  EXPECT_STREQ(name, "Grand");
  EXPECT_EQ(list->LookupName(1, name, 3), S_OK);
  EXPECT_STREQ(name, "Gr");
  std::strcpy(name, "keep");
  EXPECT_EQ(list->GetTitle(name, 0), S_OK);
  EXPECT_EQ(list->LookupName(1, name, 0), S_OK);
  EXPECT_EQ(list->GetNameAt(1, name, 0), S_OK);
  MfxPosition position = 0;
  list->GetFirstPosition(&position);
  std::int32_t key = 0;
  EXPECT_EQ(list->GetNextEntry(&position, &key, name, 0), S_OK);
  EXPECT_EQ(key, 1);
  EXPECT_STREQ(name, "keep") << "a length below 1 writes nothing";
}

TEST(NameList, NullArgumentsAreRefused) {
  ComPtr<CStringMap> list = List("T");
  list->SetName(0, "a");
  MfxPosition position = 1;
  std::int32_t number = 0;
  char name[4];
  EXPECT_EQ(list->GetTitle(nullptr, 4), E_POINTER);
  EXPECT_EQ(list->GetMaxCount(nullptr), E_POINTER);
  EXPECT_EQ(list->GetNameAt(0, nullptr, 4), E_POINTER);
  EXPECT_EQ(list->GetCount(nullptr), E_POINTER);
  EXPECT_EQ(list->GetFirstPosition(nullptr), E_POINTER);
  EXPECT_EQ(list->GetNextEntry(nullptr, &number, name, 4), E_POINTER);
  EXPECT_EQ(list->GetNextEntry(&position, &number, nullptr, 4), E_POINTER);
  EXPECT_EQ(list->LookupName(0, nullptr, 4), E_POINTER);
  EXPECT_EQ(list->QueryInterface(IID_IMfxNameList, nullptr), E_POINTER);
  EXPECT_EQ(CreateNameList(nullptr, "T"), E_POINTER);
}

TEST(NameList, AnswersItsThreeInterfacesAsOneObject) {
  ComPtr<CStringMap> list = List("T");
  for (const IID& iid : {IID_IUnknown, IID_IMfxNameList, IID_IMfxNameList2}) {
    void* object = nullptr;
    ASSERT_EQ(list->QueryInterface(iid, &object), S_OK);
    EXPECT_EQ(object, static_cast<IMfxNameList2*>(list.Get()));
    static_cast<IMfxNameList2*>(object)->Release();
  }
  void* object = &object;
  EXPECT_EQ(list->QueryInterface(IID_IMfxInstrument, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
}

TEST(NameList, CreateLeavesAListThatIsAlreadyThere) {
  ComPtr<CStringMap> list = List("first");
  CStringMap* before = list.Get();
  EXPECT_EQ(CreateNameList(&list, "second"), S_OK);
  EXPECT_EQ(list.Get(), before);
  EXPECT_EQ(list->AddRef(), 2u) << "the target holds the one reference";
  list->Release();
}

}  // namespace
