/** @file
 *  The table of faults: it holds every exported function, and each of them survives every fault. */

#include "Whole/FaultTable.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

/** OpenCV takes memory for the cells of a matrix before that for their record, and loses the cells when there is none for
 *  the record. */
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions(); // NOLINT: its name

const char* __lsan_default_suppressions() // NOLINT: the sanitizer's name
{
    return "leak:cv::Mat::create\nleak:cv::_OutputArray::create\n";
}

namespace
{

using WholeTest::Entry;

/** Where the lists of exported symbols stand. */
constexpr const char* kSymbolLists[] = {ZDK_SYMBOL_LISTS "/ZdkVisionLib.symbols",
                                        ZDK_SYMBOL_LISTS "/ZdkVisionPlatform.symbols"};

std::vector<Entry> AllEntries()
{
    std::vector<Entry> all;
    for (const auto part :
         {WholeTest::FaultsOfRecords, WholeTest::FaultsOfShapes, WholeTest::FaultsOfFrames, WholeTest::FaultsOfRegions,
          WholeTest::FaultsOfMasks, WholeTest::FaultsOfProfileRegions, WholeTest::FaultsOfFilters,
          WholeTest::FaultsOfFits, WholeTest::FaultsOfImages, WholeTest::FaultsOfPlatform})
    {
        const std::vector<Entry> entries = part();
        all.insert(all.end(), entries.begin(), entries.end());
    }
    return all;
}

void Erase(std::string& text, const std::string& part)
{
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part))
    {
        text.erase(at, part.size());
    }
}

/** Takes out the allocators of containers, with the blank that stands between two closing brackets. */
void EraseAllocators(std::string& text)
{
    const std::string begin = ", std::allocator<";
    for (std::size_t at = text.find(begin); at != std::string::npos; at = text.find(begin))
    {
        std::size_t end = at + begin.size();
        for (int depth = 1; depth > 0; ++end)
        {
            depth += text.at(end) == '<' ? 1 : text.at(end) == '>' ? -1 : 0;
        }
        text.erase(at, end + (text.at(end) == ' ' ? 1 : 0) - at);
    }
}

bool StartsWith(const std::string& text, const std::string& beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

/** What is no function, and destructors, under which nothing is asked for. */
bool NeedsNoEntry(const std::string& symbol)
{
    const bool isFunction = symbol.find('(') != std::string::npos;
    return !isFunction || StartsWith(symbol, "typeinfo ") || StartsWith(symbol, "vtable ") ||
           symbol.find("::~") != std::string::npos;
}

std::set<std::string> ExportedFunctions()
{
    std::set<std::string> functions;
    for (const char* path : kSymbolLists)
    {
        std::ifstream list(path);
        EXPECT_TRUE(list.good()) << path;
        for (std::string symbol; std::getline(list, symbol);)
        {
            EraseAllocators(symbol);
            Erase(symbol, "Zvl::");
            if (!NeedsNoEntry(symbol))
            {
                functions.insert(symbol);
            }
        }
    }
    return functions;
}

std::set<std::string> FunctionsInTable()
{
    std::set<std::string> functions;
    for (const Entry& entry : AllEntries())
    {
        functions.insert(entry.symbols.begin(), entry.symbols.end());
    }
    return functions;
}

TEST(Faults, TheTableHoldsTheExportedFunctionsAndNoOthers)
{
    const std::set<std::string> exported = ExportedFunctions();
    const std::set<std::string> inTable = FunctionsInTable();
    EXPECT_GT(exported.size(), 300U);
    std::vector<std::string> missing;
    std::set_difference(exported.begin(), exported.end(), inTable.begin(), inTable.end(), std::back_inserter(missing));
    EXPECT_EQ(missing, std::vector<std::string>());
    std::vector<std::string> unknown;
    std::set_difference(inTable.begin(), inTable.end(), exported.begin(), exported.end(), std::back_inserter(unknown));
    EXPECT_EQ(unknown, std::vector<std::string>());
}

/** A new operation of the platform must be able to fail here as well, or be one of those that return no status, that the
 *  algorithms do not ask for, or that release. */
TEST(Faults, EveryOperationOfThePlatformThatTheAlgorithmsAskForCanFail)
{
    const std::set<std::string> others = {"ZvSurfaceMsg_Construct",
                                          "ZvSurfaceMsg_Length",
                                          "ZvSurfaceMsg_PointsArray",
                                          "ZvSurfaceMsg_Scale",
                                          "ZvSurfaceMsg_SetOffset",
                                          "ZvSurfaceMsg_SetScale",
                                          "ZvSurfaceMsg_Width",
                                          "qAlloc_Construct",
                                          "qAlloc_SetDefault",
                                          "qArray1_Count",
                                          "qArray1_Data",
                                          "qArray1_Type",
                                          "qArray2_Item",
                                          "qArray2_Length",
                                          "qArray2_Type",
                                          "qArrayList_At",
                                          "qArrayList_Count",
                                          "qArrayList_Data",
                                          "qArrayList_Type",
                                          "qMemReverse",
                                          "qMemReverseCopy",
                                          "qMemory_At",
                                          "qMemory_Length",
                                          "qObject_ShareCount",
                                          "qParallelArgs_Begin",
                                          "qParallelArgs_End",
                                          "qRandomSize",
                                          "qSerializer_SetByteSwap",
                                          "qThreadPool_Count",
                                          "qThreadPool_Default",
                                          "qThreadPool_SetCount",
                                          "qType_Size",
                                          "xqApiLib_AssertHandler",
                                          "xqApiLib_CastFailHandler",
                                          "xqCastClass_ObjectIs",
                                          "xqCastClass_ObjectIsValid",
                                          "xqObject_DestroyImpl"};
#define OPERATION(symbol, name, parameters, arguments) #name,
    std::set<std::string> expected = {
#include "Whole/PlatformOperations.inc"
    };
#undef OPERATION
    expected.insert(others.begin(), others.end());
    std::set<std::string> exported;
    for (const std::string& function : ExportedFunctions())
    {
        if (StartsWith(function, "q") || StartsWith(function, "xq") || StartsWith(function, "Zv"))
        {
            const std::string name = function.substr(0, function.find('('));
            if (name.find_first_of(" :") == std::string::npos) // point types begin like operations
            {
                exported.insert(name);
            }
        }
    }
    EXPECT_EQ(exported, expected);
}

class EveryFault : public testing::TestWithParam<Entry>
{
};

TEST_P(EveryFault, IsReportedAndLeavesNothingBehind)
{
    WholeTest::ExpectEveryFaultSurvived(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Faults, EveryFault, testing::ValuesIn(AllEntries()),
                         [](const testing::TestParamInfo<Entry>& info)
                         {
                             std::string name = std::to_string(info.index) + '_';
                             for (const char* letter = info.param.symbols.front(); *letter != '\0' && *letter != '(';
                                  ++letter)
                             {
                                 name += std::isalnum(static_cast<unsigned char>(*letter)) != 0 ? *letter : '_';
                             }
                             return name;
                         });

} // namespace
