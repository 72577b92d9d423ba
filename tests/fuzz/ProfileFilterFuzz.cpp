/** @file
 *  Chains of line filters with any windows and limits, beside loops over single cells. */

#include "Filter/ProfileFilterPlain.h"
#include "fuzz/Bytes.h"

namespace
{

using Fuzz::Bytes;

template <typename Filter>
void Operate(Filter& filter, Bytes bytes, int kind, std::size_t window)
{
    const int flag = bytes.Int(0, 1);
    switch (kind)
    {
    case 0:
        filter.FillGap(window, bytes.Read<std::int32_t>(), flag);
        break;
    case 1:
        filter.Average(window | 1U, flag);
        break;
    case 2:
        filter.Median(window | 1U, flag);
        break;
    case 3:
        filter.Gaussian(window | 1U, bytes.Scale(), flag);
        break;
    default:
    {
        const double low = bytes.Double();
        filter.Percentile(low, bytes.Double(), static_cast<Zvl::ProfileFilter::PercentileType>(flag));
    }
    break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bytes bytes(data, size);
    const std::size_t cells = bytes.Size(1, 60);
    const std::size_t from = bytes.Size(0, 70);
    const std::size_t to = bytes.Size(0, 70);
    std::vector<std::int16_t> memory = Fuzz::Heights(bytes, cells + 70);
    std::vector<std::int16_t> plainMemory = memory;
    Fuzz::Try(
        [&]
        {
            Zvl::ProfileFilter filter(memory.data() + from, cells, memory.data() + to, nullptr);
            TestSupport::PlainFilter plain(plainMemory.data() + from, cells, plainMemory.data() + to);
            for (int step = 0; step < 3 && !bytes.Empty(); ++step)
            {
                const int kind = bytes.Int(0, 4);
                const std::size_t window = bytes.Flag() ? bytes.Size(0, 200) : bytes.Size(0, 9);
                Operate(filter, bytes, kind, window);
                Operate(plain, bytes, kind, window);
                Fuzz::Require(memory == plainMemory);
                bytes.Read<std::uint32_t>();
            }
        });
    return 0;
}
