#pragma once

#include <random>

namespace Examples
{

/** The faults of a simulated line sensor: noise, stray light and dropouts. The same seed gives the same faults. */
class SimulatedSensor
{
public:
    struct Faults
    {
        double noise;       ///< standard deviation of a height
        double dropouts;    ///< share of heights that are missing
        double strays;      ///< share of heights that are too high, by stray light from a shiny place
        double strayHeight; ///< by how much at most
    };

    /** @param countOffset,countScale the world height of count 0, and of one count */
    SimulatedSensor(unsigned seed, const Faults& sensorFaults, double countOffset, double countScale);

    /** The count that is measured at @p height, or the missing height.
     *  @param moreDropouts share of further dropouts, as at a steep wall */
    short Measure(double height, double moreDropouts = 0.0);

private:
    std::mt19937 generator;
    std::normal_distribution<double> noise;
    std::uniform_real_distribution<double> uniform{0.0, 1.0};
    Faults faults;
    double offset;
    double scale;
};

} // namespace Examples
