#include "Scan.h"

#include <vector>

int main()
{
    //! [snippet]
    // 100 points on y = 2 + 0.5 x, of which every fifth is lifted by 2.
    std::vector<qPoint64f> points;
    points.reserve(100);
    for (int index = 0; index < 100; ++index)
    {
        points.push_back({0.1 * index, 2.0 + 0.05 * index + (index % 5 == 4 ? 2.0 : 0.0)});
    }
    double slope = 0.0;
    double intercept = 0.0;

    Zvl::FitLine(points.data(), nullptr, points.size(), &slope, &intercept);
    std::printf("all points:   y = %.3f x + %.3f\n", slope, intercept);
    Expect(intercept > 2.2); // lifted by the outliers

    Zo::Object<void*> outliers;
    Zvl::FitLineIterative(points.data(), points.size(), 20.0, &slope, &intercept, outliers.Slot(), nullptr);
    std::printf("20 rejected:  y = %.3f x + %.3f\n", slope, intercept);
    Expect(IsNear(slope, 0.5, 1e-9) && qArrayList_Count(outliers) == points.size());

    Zvl::FitLineRansac(points.data(), points.size(), 0.0, 200, 0.01, &slope, &intercept);
    std::printf("most agree:   y = %.3f x + %.3f\n", slope, intercept);
    Expect(IsNear(slope, 0.5, 1e-9) && IsNear(intercept, 2.0, 1e-9));
    //! [snippet]
}
