//! [program]
#include "Scan.h"

#include <array>
#include <thread>
#include <vector>

/** The height of the face in the left or the right half of a scan. */
double FaceHeight(const Zvl::Surface& scan, double left)
{
    // A region fills its caches when it is asked: each thread makes its own.
    Zvl::RectangleROI half(left, 0.0, 7.9, 11.9, 0.0, kColumns, kRows, kCell, kOrigin, nullptr);
    qPlane3d64f plane{};
    Zvl::FitPlane(scan, half.GetBoundingBox(), half.GetMask(), &plane);
    return plane.point.z;
}

int main()
{
    // One scan, which all threads read and none changes. Handles may be copied on any thread.
    const Zvl::Surface scan = MakeScan([](double x, double) { return x < 7.95 ? 1.0 : 2.0; });

    std::array<double, 8> heights{};
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < heights.size(); ++index)
    {
        threads.emplace_back([&scan, &heights, index]
                             { heights[index] = FaceHeight(scan, index % 2 == 0 ? 0.0 : 8.0); });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }

    // The results are those of one thread, to the last bit.
    for (std::size_t index = 0; index < heights.size(); ++index)
    {
        Expect(heights[index] == FaceHeight(scan, index % 2 == 0 ? 0.0 : 8.0));
    }
    std::printf("left %.3f mm, right %.3f mm, the same on %zu threads\n", heights[0], heights[1], heights.size());
    Expect(IsNear(heights[0], 1.0, 1e-9) && IsNear(heights[1], 2.0, 1e-9));
}
//! [program]
