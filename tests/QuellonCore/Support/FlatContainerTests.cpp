#include "QuellonCore/Persistence/StateFile.h"
#include "QuellonCore/Support/FlatMap.h"
#include "QuellonCore/Support/FlatSet.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <vector>

namespace quellon {
namespace {

using Map = FlatMap<int>;
using Set = FlatSet<std::int32_t>;

template <typename Container>
auto listed(const Container& container)
{
    return std::vector<typename Container::value_type>(container.begin(), container.end());
}

TEST(FlatSet, isAscendingAndHoldsEachValueOnce)
{
    EXPECT_EQ(listed(Set{3, -1, 3, 2}), (std::vector<std::int32_t>{-1, 2, 3}));
    EXPECT_EQ((Set{2, 1}), (Set{1, 2, 2}));
    EXPECT_TRUE(Set{}.empty());
    EXPECT_EQ((Set{5, 5}).size(), 1U);
}

TEST(FlatSet, isMadeOfValuesInAnyOrder)
{
    EXPECT_EQ(Set(std::vector<std::int32_t>{3, -1, 3, 2, -1}), (Set{-1, 2, 3}));
    EXPECT_TRUE(Set(std::vector<std::int32_t>{}).empty());
}

TEST(FlatSet, appendsOnlyWhatIsGreater)
{
    Set set{4};
    EXPECT_FALSE(set.append(3));
    EXPECT_FALSE(set.append(4));
    EXPECT_TRUE(set.append(5));
    EXPECT_EQ(set, (Set{4, 5}));
}

TEST(FlatMap, isAscendingByKey)
{
    EXPECT_EQ(listed(Map{{"b", 2}, {"", 0}, {"B", 1}, {"b", 3}}),
              (std::vector<Map::value_type>{{"", 0}, {"B", 1}, {"b", 3}}))
        << "and of equal keys the last one holds";
}

TEST(FlatMap, appendsOnlyWhatIsGreater)
{
    Map map{{"b", 1}};
    EXPECT_FALSE(map.append("a", 2));
    EXPECT_FALSE(map.append("b", 2));
    EXPECT_TRUE(map.append("\xC3\xA4", 3)) << "texts are compared by their bytes";
    EXPECT_TRUE(map.append("\xC3\xA4\xC3\xA4", 4));
    EXPECT_EQ(map, (Map{{"b", 1}, {"\xC3\xA4", 3}, {"\xC3\xA4\xC3\xA4", 4}}));
}

TEST(FlatContainers, doWhatTheOnesOfTheLibraryDo)
{
    std::mt19937_64 random{7};
    Map map;
    Set set;
    std::map<std::string, int> plainMap;
    std::set<std::int32_t> plainSet;
    for (int step = 0; step < 2'000; ++step) {
        const auto value = static_cast<int>(random() % 60);
        const std::string key(random() % 4, static_cast<char>('a' + value % 20));
        if (random() % 3 == 0) {
            map.erase(key);
            plainMap.erase(key);
        } else {
            map[key] = value;
            plainMap[key] = value;
        }
        if (step % 100 == 0) {
            set = {};
            plainSet = {};
        }
        set.insert(value);
        plainSet.insert(value);
        ASSERT_EQ(listed(map), (std::vector<Map::value_type>(plainMap.begin(), plainMap.end())));
        ASSERT_EQ(listed(set), (std::vector<std::int32_t>(plainSet.begin(), plainSet.end())));
        ASSERT_EQ(map.find(key) != map.end(), plainMap.contains(key));
    }
}

TEST(FlatContainers, areObjectsAndArraysInJson)
{
    const FlatMap<Set> value{{"a", {2, 1}}, {"", {}}};
    EXPECT_EQ(encode(value), R"({"":[],"a":[1,2]})");
    EXPECT_EQ(decode<FlatMap<Set>>(R"({"a":[2,1,2],"":[]})"), value);
    for (const char* text : {R"({"a":[1.5]})", R"({"a":null})", R"({"a":1})", "[]", "null"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(decode<FlatMap<Set>>(text), std::nullopt);
    }
}

} // namespace
} // namespace quellon
