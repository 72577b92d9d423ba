#pragma once

/** @file
 *  Polynomial regressions with certified results.
 *
 *  Source: National Institute of Standards and Technology, Statistical Reference Datasets, Linear Regression, 1996. The
 *  data are those of
 *  - Norris: J. Norris, calibration of ozone monitors;
 *  - Pontius: P. Pontius, load cell calibration;
 *  - Wampler 1 to 5: R. H. Wampler, A report of the accuracy of some widely used least squares computer programs,
 *    Journal of the American Statistical Association 65(330), 1970. */

#include <ZdkVisionLib/platform/qApi.h>

#include <vector>

namespace CertifiedData
{

struct PolynomialSet
{
    const char* name;
    std::vector<qPoint64f> points;
    std::vector<double> coefficients; ///< certified, the lowest power first
};

inline PolynomialSet Norris()
{
    return {"Norris",
            {{0.2, 0.1},     {337.4, 338.8}, {118.2, 118.1}, {884.6, 888.0}, {10.1, 9.2},    {226.5, 228.1},
             {666.3, 668.5}, {996.3, 998.5}, {448.6, 449.1}, {777.0, 778.9}, {558.2, 559.2}, {0.4, 0.3},
             {0.6, 0.1},     {775.5, 778.1}, {666.9, 668.8}, {338.0, 339.3}, {447.5, 448.9}, {11.6, 10.8},
             {556.0, 557.7}, {228.1, 228.3}, {995.8, 998.0}, {887.6, 888.8}, {120.2, 119.6}, {0.3, 0.3},
             {0.3, 0.6},     {556.8, 557.6}, {339.1, 339.3}, {887.2, 888.0}, {999.0, 998.5}, {779.0, 778.9},
             {11.1, 10.2},   {118.3, 117.6}, {229.2, 228.9}, {669.1, 668.4}, {448.9, 449.2}, {0.5, 0.2}},
            {-0.262323073774029, 1.00211681802045}};
}

inline PolynomialSet Pontius()
{
    return {
        "Pontius",
        {{150000.0, 0.11019},  {300000.0, 0.21956},  {450000.0, 0.32949},  {600000.0, 0.43899},  {750000.0, 0.54803},
         {900000.0, 0.65694},  {1050000.0, 0.76562}, {1200000.0, 0.87487}, {1350000.0, 0.98292}, {1500000.0, 1.09146},
         {1650000.0, 1.20001}, {1800000.0, 1.30822}, {1950000.0, 1.41599}, {2100000.0, 1.52399}, {2250000.0, 1.63194},
         {2400000.0, 1.73947}, {2550000.0, 1.84646}, {2700000.0, 1.95392}, {2850000.0, 2.06128}, {3000000.0, 2.16844},
         {150000.0, 0.11052},  {300000.0, 0.22018},  {450000.0, 0.32939},  {600000.0, 0.43886},  {750000.0, 0.54798},
         {900000.0, 0.65739},  {1050000.0, 0.76596}, {1200000.0, 0.87474}, {1350000.0, 0.98300}, {1500000.0, 1.09150},
         {1650000.0, 1.20004}, {1800000.0, 1.30818}, {1950000.0, 1.41613}, {2100000.0, 1.52408}, {2250000.0, 1.63159},
         {2400000.0, 1.73965}, {2550000.0, 1.84696}, {2700000.0, 1.95445}, {2850000.0, 2.06177}, {3000000.0, 2.16829}},
        {0.673565789473684e-03, 0.732059160401003e-06, -0.316081871345029e-14}};
}

/** Deviations from the polynomial in Wampler 3 to 5, as multiples of the set's factor. They are orthogonal to all
 *  powers up to the fifth, so that the polynomial remains the best fit. */
inline const std::vector<double>& WamplerDeviations()
{
    static const std::vector<double> deviations{759.0,   -2048.0, 2048.0,  -2048.0, 2523.0,  -2048.0, 2048.0,
                                                -2048.0, 1838.0,  -2048.0, 2048.0,  -2048.0, 1838.0,  -2048.0,
                                                2048.0,  -2048.0, 2523.0,  -2048.0, 2048.0,  -2048.0, 759.0};
    return deviations;
}

/** The sum of powers 0 to 5 of x = 0 to 20, each with a coefficient that is the power of @p base, plus the deviations
 *  times @p factor. The published values have no more digits than this. */
inline PolynomialSet Wampler(const char* name, double base, double factor)
{
    PolynomialSet set{name, {}, {1.0}};
    for (int power = 1; power <= 5; ++power)
    {
        set.coefficients.push_back(set.coefficients.back() * base);
    }
    for (int x = 0; x <= 20; ++x)
    {
        double y = 0.0;
        for (std::size_t power = 6; power-- > 0;)
        {
            y = y * x + set.coefficients[power];
        }
        set.points.push_back({static_cast<double>(x), y + factor * WamplerDeviations()[static_cast<std::size_t>(x)]});
    }
    return set;
}

inline std::vector<PolynomialSet> WamplerSets()
{
    return {Wampler("Wampler1", 1.0, 0.0), Wampler("Wampler2", 0.1, 0.0), Wampler("Wampler3", 1.0, 1.0),
            Wampler("Wampler4", 1.0, 100.0), Wampler("Wampler5", 1.0, 10000.0)};
}

} // namespace CertifiedData
