#include "Fitting/Rejection.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

using Zvl::CountToReject;

TEST(Rejection, PercentageIsDividedFirstAndTheProductTruncated)
{
    EXPECT_EQ(CountToReject(100, 29.0, 3), 28U); // 29.0 / 100.0 lies just below 0.29
    EXPECT_EQ(CountToReject(100, 30.0, 3), 30U);
    EXPECT_EQ(CountToReject(10, 5.0, 3), 0U);
    EXPECT_EQ(CountToReject(10, 19.99, 3), 1U);
}

TEST(Rejection, NothingIsRejectedUnlessThePercentageIsAboveZero)
{
    EXPECT_EQ(CountToReject(1000, 0.0, 3), 0U);
    EXPECT_EQ(CountToReject(1000, -50.0, 3), 0U);
    EXPECT_EQ(CountToReject(1000, std::numeric_limits<double>::quiet_NaN(), 3), 0U);
    EXPECT_EQ(CountToReject(1000, -std::numeric_limits<double>::infinity(), 3), 0U);
}

TEST(Rejection, TheMinimumAlwaysStays)
{
    EXPECT_EQ(CountToReject(10, 70.0, 3), 7U);
    EXPECT_EQ(CountToReject(10, 80.0, 3), 7U);
    EXPECT_EQ(CountToReject(10, 100.0, 4), 6U);
    EXPECT_EQ(CountToReject(3, 100.0, 3), 0U);
    EXPECT_EQ(CountToReject(10, 1e25, 3), 7U);
    EXPECT_EQ(CountToReject(10, std::numeric_limits<double>::max(), 3), 7U);
    EXPECT_EQ(CountToReject(10, std::numeric_limits<double>::infinity(), 3), 7U);
}

} // namespace
