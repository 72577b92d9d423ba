#include "Common/MaskKernels.h"

#include "support/Surfaces.h"

namespace
{

using namespace Zvl;

/** Random cells of every kind that the kernels read; about a third of each mask is 0 and of the heights missing. */
struct Input
{
    explicit Input(std::size_t count, unsigned seed) : random(seed), heights(count), a(count), b(count)
    {
        for (std::size_t i = 0; i < count; ++i)
        {
            heights[i] = random() % 3 == 0 ? TestSupport::kMissing : static_cast<std::int16_t>(random());
            a[i] = random() % 3 == 0 ? std::uint8_t{0} : static_cast<std::uint8_t>(random());
            b[i] = random() % 3 == 0 ? std::uint8_t{0} : static_cast<std::uint8_t>(random());
        }
    }

    std::mt19937 random;
    std::vector<std::int16_t> heights;
    std::vector<std::uint8_t> a;
    std::vector<std::uint8_t> b;
};

/** Every length up to some vectors: whole vectors, the last one laid back over its neighbour, and none at all. */
template <typename Compare>
void ForEachLength(Compare compare)
{
    for (std::size_t count = 0; count < 300; ++count)
    {
        SCOPED_TRACE(count);
        compare(Input(count, static_cast<unsigned>(count)), count);
    }
}

TEST(MaskKernels, MarkHeights)
{
    ForEachLength(
        [](const Input& in, std::size_t count)
        {
            std::vector<std::uint8_t> out(count, 9);
            MarkHeights(in.heights.data(), out.data(), count);
            for (std::size_t i = 0; i < count; ++i)
            {
                ASSERT_EQ(out[i], in.heights[i] != TestSupport::kMissing ? 1 : 0) << i;
            }
        });
}

TEST(MaskKernels, MarkIntensitiesOfEveryKindOfRange)
{
    for (const auto& [minimum, maximum] :
         {std::pair<std::uint8_t, std::uint8_t>{60, 190}, {0, 255}, {200, 100}, {7, 7}})
    {
        ForEachLength(
            [low = minimum, high = maximum](const Input& in, std::size_t count)
            {
                std::vector<std::uint8_t> out(count, 9);
                MarkIntensities(in.heights.data(), in.a.data(), low, high, out.data(), count);
                for (std::size_t i = 0; i < count; ++i)
                {
                    const bool marked = in.heights[i] != TestSupport::kMissing && in.a[i] >= low && in.a[i] <= high;
                    ASSERT_EQ(out[i], marked ? 1 : 0) << i;
                }
            });
    }
}

TEST(MaskKernels, MergeCells)
{
    ForEachLength(
        [](const Input& in, std::size_t count)
        {
            std::vector<std::uint8_t> target = in.b;
            MergeCells(in.a.data(), target.data(), count);
            for (std::size_t i = 0; i < count; ++i)
            {
                ASSERT_EQ(target[i], in.a[i] != 0 || in.b[i] != 0 ? 1 : 0) << i;
            }
        });
}

TEST(MaskKernels, CopySelected)
{
    ForEachLength(
        [](const Input& in, std::size_t count)
        {
            std::vector<std::int16_t> heights(count, 9);
            std::vector<std::uint8_t> intensities(count, 9);
            CopySelected(in.heights.data(), in.b.data(), heights.data(), count);
            CopySelected(in.a.data(), in.b.data(), intensities.data(), count);
            for (std::size_t i = 0; i < count; ++i)
            {
                ASSERT_EQ(heights[i], in.b[i] != 0 ? in.heights[i] : TestSupport::kMissing) << i;
                ASSERT_EQ(intensities[i], in.b[i] != 0 ? in.a[i] : 0) << i;
            }
        });
}

TEST(MaskKernels, BytesAreCombinedAlsoInPlace)
{
    ForEachLength(
        [](const Input& in, std::size_t count)
        {
            std::vector<std::uint8_t> both(count);
            std::vector<std::uint8_t> either = in.b;
            AndBytes(in.a.data(), in.b.data(), both.data(), count);
            OrBytes(in.a.data(), either.data(), either.data(), count);
            for (std::size_t i = 0; i < count; ++i)
            {
                ASSERT_EQ(both[i], in.a[i] & in.b[i]) << i;
                ASSERT_EQ(either[i], in.a[i] | in.b[i]) << i;
            }
        });
}

} // namespace
