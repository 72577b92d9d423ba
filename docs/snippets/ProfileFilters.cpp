#include "Scan.h"

#include <array>

int main()
{
    //! [snippet]
    constexpr short kMissing = Zvl::GetNull<short>();
    const std::array<short, 11> line = {10, 10, 10, kMissing, kMissing, 16, 16, 90, 16, 16, 16};
    std::array<short, 11> result{};

    // Close gaps of up to 2 missing cells, then take out the spike. Each filter reads what the one before it left.
    Zvl::ProfileFilter(line.data(), line.size(), result.data(), nullptr).FillGap(3, 10, 0).Median(3, 1);
    for (const short height : result)
    {
        std::printf("%d ", height);
    }
    std::printf("\n");
    Expect(result == std::array<short, 11>{10, 10, 10, 12, 14, 16, 16, 16, 16, 16, 16});

    // A rise that is steeper than 1 count per cell is not interpolated: the gap takes its lower end.
    Zvl::ProfileFilter(line.data(), line.size(), result.data(), nullptr).FillGap(3, 1, 0);
    Expect(result[3] == 10 && result[4] == 10);
    //! [snippet]
}
