#include "Common/LayerWindow.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

using namespace Zvl;

void ExpectOverlap(const Overlap& overlap, std::size_t first, std::size_t end)
{
    EXPECT_EQ(overlap.first, first);
    EXPECT_EQ(overlap.end, end);
}

TEST(Overlap, IsCutAtBothEnds)
{
    ExpectOverlap(OverlapOf(5, 0, 10), 0, 5);
    ExpectOverlap(OverlapOf(5, 7, 10), 0, 3);
    ExpectOverlap(OverlapOf(5, -2, 10), 2, 5);
    ExpectOverlap(OverlapOf(20, -2, 10), 2, 12);
}

TEST(Overlap, IsEmptyBesideTheOthers)
{
    for (const std::int64_t offset :
         {std::int64_t{10}, std::int64_t{11}, std::int64_t{-5}, std::int64_t{-6},
          std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()})
    {
        const Overlap overlap = OverlapOf(5, offset, 10);
        EXPECT_EQ(overlap.first, overlap.end) << offset;
    }
    const Overlap none = OverlapOf(5, -2, 0);
    EXPECT_EQ(none.first, none.end);
}

TEST(Overlap, AgreesWithATestOfEachCell)
{
    for (std::size_t count = 0; count < 8; ++count)
    {
        for (std::size_t others = 0; others < 8; ++others)
        {
            for (int offset = -10; offset < 10; ++offset)
            {
                const Overlap overlap = OverlapOf(count, offset, others);
                for (std::size_t i = 0; i < count; ++i)
                {
                    const int place = offset + static_cast<int>(i);
                    const bool inside = place >= 0 && place < static_cast<int>(others);
                    EXPECT_EQ(i >= overlap.first && i < overlap.end, inside) << count << offset << others << i;
                }
                EXPECT_LE(overlap.first, overlap.end);
                EXPECT_LE(overlap.end, count);
            }
        }
    }
}

TEST(LayerWindow, TellsWhichCellsOfTheLayerLieUnderAMask)
{
    const LayerWindow window({-1, 2}, 4, 6, 5, 3); // mask 4 x 6 over layer 5 x 3, one column left of it
    EXPECT_EQ(window.BeginRow(0), 0U);
    EXPECT_EQ(window.EndRow(4), 3U);
    EXPECT_EQ(window.LayerRow(1), 3U);
    ExpectOverlap(window.columns, 1, 4);
    EXPECT_EQ(window.ColumnCount(), 3U);
    EXPECT_EQ(window.LayerColumn(), 0U);
    // Without a common column there is no row to visit either.
    const LayerWindow beside({3, 0}, 4, 6, 5, 3);
    EXPECT_EQ(beside.EndRow(4), 0U);
}

} // namespace
