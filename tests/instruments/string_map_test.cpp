// The host reads a name list by index (keys 0 to 127 only) or by walking it in key order.
#include "instruments/string_map.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/instruments/host_reading.h"

namespace {

ComPtr<CStringMap> List(const char* title) {
  ComPtr<CStringMap> list;
  EXPECT_EQ(CreateNameList(&list, title), S_OK);
  return list;
}

TEST(NameList, AnEmptyListHasRoomFor128AndNothingToWalk) {
  ComPtr<CStringMap> list = List(nullptr);
  std::int32_t max = -1;
  EXPECT_EQ(list->GetMaxCount(&max), S_OK);
  EXPECT_EQ(max, 128);
  EXPECT_TRUE(Walk(*list).empty());
  EXPECT_TRUE(ByIndex(*list).empty());
  EXPECT_EQ(Title(*list), "") << "a null title is an empty one";
}

TEST(NameList, TheIndexReachesKeys0To127WhileTheWalkAndLookupReachAll) {
  ComPtr<CStringMap> list = List("T");
  for (const auto& [key, name] :
       std::map<std::int32_t, const char*>{{200, "c"}, {-5, "a"}, {7, "b"}, {128, "high"}})
    list->SetName(key, name);
  list->SetName(7, "B");
  EXPECT_EQ(Walk(*list),
            (std::map<std::int32_t, std::string>{{-5, "a"}, {7, "B"}, {128, "high"}, {200, "c"}}));
  char name[16] = "junk";
  EXPECT_EQ(list->GetNameAt(128, name, sizeof name), E_INVALIDARG);
  EXPECT_EQ(list->GetNameAt(-1, name, sizeof name), E_INVALIDARG);
  EXPECT_EQ(list->LookupName(128, name, sizeof name), S_OK);
  EXPECT_STREQ(name, "high");

  // A hole: empty by index, absent by lookup, which leaves the buffer alone.
  EXPECT_EQ(list->GetNameAt(4, name, sizeof name), S_OK);
  EXPECT_STREQ(name, "");
  std::strcpy(name, "kept");
  EXPECT_EQ(list->LookupName(4, name, sizeof name), S_FALSE);
  EXPECT_STREQ(name, "kept");
  EXPECT_EQ(ByIndex(*list), (std::vector<std::string>{"", "", "", ""}))
      << "the count is of names held, not the highest key";

  MfxPosition spent = 0;
  EXPECT_EQ(list->GetNextEntry(&spent, nullptr, name, sizeof name), S_FALSE);
  MfxPosition stale = 5;
  EXPECT_EQ(list->GetNextEntry(&stale, nullptr, name, sizeof name), S_FALSE);
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
  EXPECT_EQ(list->GetNameAt(1, name, 0), S_OK);
  MfxPosition position = 0;
  list->GetFirstPosition(&position);
  std::int32_t key = 0;
  EXPECT_EQ(list->GetNextEntry(&position, &key, name, 0), S_OK);
  EXPECT_EQ(key, 1);
  EXPECT_STREQ(name, "keep") << "a length below 1 writes nothing";
}

TEST(NameList, NullArgumentsAreRefusedAndAListIsNotMadeTwice) {
  ComPtr<CStringMap> list = List("T");
  MfxPosition position = 1;
  EXPECT_EQ(list->GetTitle(nullptr, 4), E_POINTER);
  EXPECT_EQ(list->GetNameAt(0, nullptr, 4), E_POINTER);
  EXPECT_EQ(list->GetNextEntry(&position, nullptr, nullptr, 4), E_POINTER);
  EXPECT_EQ(list->LookupName(0, nullptr, 4), E_POINTER);
  EXPECT_EQ(CreateNameList(nullptr, "T"), E_POINTER);
  CStringMap* before = list.Get();
  EXPECT_EQ(CreateNameList(&list, "second"), S_OK);
  EXPECT_EQ(list.Get(), before);
  EXPECT_EQ(Title(*list), "T");
}

}  // namespace
