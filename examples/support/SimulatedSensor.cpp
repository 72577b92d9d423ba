#include "support/SimulatedSensor.h"

#include <ZdkVisionLib/Common/Common.h>

#include <algorithm>
#include <cmath>

namespace Examples
{

SimulatedSensor::SimulatedSensor(unsigned seed, const Faults& sensorFaults, double countOffset, double countScale)
    : generator(seed), noise(0.0, sensorFaults.noise), faults(sensorFaults), offset(countOffset), scale(countScale)
{
}

short SimulatedSensor::Measure(double height, double moreDropouts)
{
    if (uniform(generator) < faults.dropouts + moreDropouts)
    {
        return Zvl::GetNull<short>();
    }
    double seen = height + noise(generator);
    if (uniform(generator) < faults.strays)
    {
        seen += faults.strayHeight * uniform(generator);
    }
    return static_cast<short>(std::clamp(std::round((seen - offset) / scale), -32767.0, 32767.0));
}

} // namespace Examples
