#include "Fitting/CenteredPoints.h"

#include "support/InstructionSets.h"

#include <cmath>
#include <random>
#include <vector>

namespace
{

using Zvl::CenteredPoints;
using Zvl::Circle;

std::vector<qPoint64f> RandomPoints(std::size_t count, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> coordinate(-10.0, 10.0);
    std::vector<qPoint64f> points(count);
    for (qPoint64f& point : points)
    {
        point = {20.0 + coordinate(random), coordinate(random)};
    }
    return points;
}

TEST(CenteredPoints, ReachIsTheLargestCoordinateWhereverItIs)
{
    TestSupport::InEachInstructionSet(
        []
        {
            for (const std::size_t count : {1U, 2U, 7U, 8U, 64U, 65U, 130U})
            {
                for (std::size_t place = 0; place < count; ++place)
                {
                    // Two points on either side of the origin, which stays the centroid.
                    std::vector<qPoint64f> points(2 * count, {0.0, 0.0});
                    points[place] = {0.0, -3.0};
                    points[count + place] = {0.0, 3.0};
                    ASSERT_EQ(CenteredPoints(points.data(), points.size()).Reach(), 3.0) << place << " of " << count;
                    points[place] = {5.0, 0.0};
                    points[count + place] = {-5.0, 0.0};
                    ASSERT_EQ(CenteredPoints(points.data(), points.size()).Reach(), 5.0) << place << " of " << count;
                }
            }
        });
}

TEST(CenteredPoints, FarthestIsThatOfAPlainLoopWhilePointsAreRemoved)
{
    const Circle circle = {0.5, -0.25, 7.0};
    TestSupport::InEachInstructionSet(
        [&]
        {
            for (const std::size_t count : {3U, 64U, 100U, 200U})
            {
                const std::vector<qPoint64f> points = RandomPoints(count, count);
                CenteredPoints centered(points.data(), count);
                std::vector<bool> kept(count, true);
                for (std::size_t round = 0; round + 1 < count; ++round)
                {
                    std::size_t expected = 0;
                    double largest = -1.0;
                    for (std::size_t i = 0; i < count; ++i)
                    {
                        const double x = points[i].x - centered.Centroid().x - circle.x;
                        const double y = points[i].y - centered.Centroid().y - circle.y;
                        const double residual = std::fabs(std::sqrt(x * x + y * y) - circle.radius);
                        if (kept[i] && residual > largest)
                        {
                            largest = residual;
                            expected = i;
                        }
                    }
                    ASSERT_EQ(centered.FarthestFrom(circle), expected) << round << " of " << count;
                    centered.Remove(expected);
                    kept[expected] = false;
                }
            }
        });
}

} // namespace
