#include "platform/velmar_path/velmar_path.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/collected_log.h"

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs PairsOf(VelmarAttribute *attribute) {
    Pairs pairs;
    for (int32_t i = 0; i < GetVelmarAttributeSize(attribute); ++i) {
        const char *key = nullptr, *value = nullptr;
        EXPECT_EQ(GetVelmarAttributeItem(attribute, i, &key, &value), 0);
        pairs.emplace_back(key, value);
    }
    return pairs;
}

TEST(VelmarArray, KeepsOrderAndClosesTheGapOfADeletedItem) {
    VelmarArray *array = nullptr;
    ASSERT_EQ(AllocVelmarArray(&array), 0);
    int items[3] = {};
    for (int &item : items)
        ASSERT_EQ(AddVelmarArrayItem(array, &item), 0);
    EXPECT_EQ(DeleteVelmarArrayItem(array, 1), 0);
    EXPECT_EQ(GetVelmarArraySize(array), 2);
    void *item = nullptr;
    EXPECT_EQ(GetVelmarArrayItem(array, 1, &item), 0);
    EXPECT_EQ(item, &items[2]);
    for (const int32_t outside : {-1, 2}) {
        EXPECT_LT(GetVelmarArrayItem(array, outside, &item), 0);
        EXPECT_EQ(item, &items[2]);
        EXPECT_LT(DeleteVelmarArrayItem(array, outside), 0);
    }
    EXPECT_EQ(FreeVelmarArray(array), 0);
}

// So many keys, in the end, that they are no longer shared between containers.
TEST(VelmarAttribute, AgreesWithAPlainListUnderRandomChangesAndAFoundValueSurvivesThem) {
    std::mt19937 random(7);
    VelmarAttribute *attribute = nullptr;
    ASSERT_EQ(AllocVelmarAttribute(&attribute), 0);
    ASSERT_EQ(AddVelmarAttributeItem(attribute, "name", "Blue"), 0);
    const char *first = nullptr;
    ASSERT_EQ(FindVelmarAttributeValue(attribute, "name", &first), 0);
    Pairs expected = {{"name", "Blue"}};
    const auto find = [&](const std::string &key) {
        return std::find_if(expected.begin(), expected.end(),
                            [&](const auto &pair) { return pair.first == key; });
    };
    for (unsigned step = 0; step < 12000; ++step) {
        const std::string key = "key" + std::to_string(random() % (step < 5000 ? 90 : 4000));
        const std::string value(random() % (step % 500 == 0 ? 9000 : 700),
                                static_cast<char>('a' + step % 26));
        const bool adds = random() % 50 == 0;
        const auto change = adds ? AddVelmarAttributeItem : SetVelmarAttributeValue;
        ASSERT_EQ(change(attribute, key.c_str(), value.c_str()), 0);
        if (adds || find(key) == expected.end()) {
            expected.emplace_back(key, value);
        } else {
            find(key)->second = value;
        }
    }
    EXPECT_STREQ(first, "Blue");
    EXPECT_EQ(PairsOf(attribute), expected);
    for (int i = 0; i < 4100; ++i) {
        const std::string key = i == 0   ? "nam"
                                : i == 1 ? "names"
                                : i == 2 ? "name"
                                         : "key" + std::to_string(i);
        const bool is_there = find(key) != expected.end();
        const char *value = "untouched";
        EXPECT_EQ(FindVelmarAttributeValue(attribute, key.c_str(), &value) == 0, is_there) << key;
        EXPECT_EQ(value, is_there ? find(key)->second : "untouched") << key;
    }
    EXPECT_EQ(FreeVelmarAttribute(attribute), 0);
}

TEST(VelmarLog, PrintsTheForeignNumberFormatAndLongLinesForAHandlerThatMayChange) {
    const auto ignore = [](const char *, void *) {};
    SetVelmarLogHandler(ignore, nullptr);
    std::thread writer([] {
        for (int i = 0; i < 200; ++i)
            WriteVelmarLog("%d", i);
    });
    for (int i = 0; i < 200; ++i)
        SetVelmarLogHandler(ignore, nullptr);
    writer.join();
    const CollectedLog log;
    WriteVelmarLog("%I64d%I64d, size = %d%%", 5000000000LL, 6LL, 7);
    WriteVelmarLog("%s", std::string(10000, 'x').c_str());
    EXPECT_EQ(log.Lines(), (std::vector<std::string>{"50000000006, size = 7%", std::string(10000, 'x')}));
}

}  // namespace
