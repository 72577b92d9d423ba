#include "ImageProcessing/InpaintValue.h"

#include <gtest/gtest.h>

namespace
{

// In double and then rounded, some factors differ in the last bit from those computed in single precision.
TEST(InpaintValue, DistancesOfColouredImagesAreDealtWithInDouble)
{
    const Zvl::TeleaMethod grey(100, 1);
    const Zvl::TeleaMethod coloured(100, 3);
    int differing = 0;
    for (int dy = -100; dy <= 100; ++dy)
    {
        for (int dx = -100; dx <= 100; ++dx)
        {
            const auto squared = static_cast<float>(dx * dx + dy * dy);
            if (squared == 0.0F)
            {
                continue;
            }
            const float single = *grey.Neighbourhood().FactorsFrom(dy, dx);
            const float exact = *coloured.Neighbourhood().FactorsFrom(dy, dx);
            ASSERT_EQ(single, 1.0F / (squared * std::sqrt(squared)));
            ASSERT_EQ(exact, static_cast<float>(1.0 / (double{squared} * std::sqrt(double{squared}))));
            differing += single != exact ? 1 : 0;
        }
    }
    EXPECT_GT(differing, 1000);
}

} // namespace
