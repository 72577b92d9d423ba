// The platform library on its own: arrays, lists and a parallel job, without the algorithms.

#include <ZdkVisionLib/platform/ZoApi.h>
#include <ZdkVisionLib/platform/qApi.h>

#include <cstdio>

namespace
{

qStatus FillRows(void* context, void*, const qParallelArgs* args)
{
    const std::size_t rows = *static_cast<const std::size_t*>(context);
    for (std::size_t row = qParallelArgs_Begin(args, 0, rows); row < qParallelArgs_End(args, 0, rows); ++row)
    {
        const auto value = static_cast<std::int32_t>(row);
        if (const qStatus status = qArray2_SetItem(args->target, row, 0, &value); status != STATUS_OK)
        {
            return status;
        }
    }
    return STATUS_OK;
}

} // namespace

int main()
{
    std::size_t rows = 1000;
    Zo::Object<void*> array;
    Zo::Test(qArray2_Construct(array.Slot(), xxq32s_type, rows, 1, nullptr));
    Zo::Test(qParallel_Execute(FillRows, &rows, array));

    long long sum = 0;
    for (std::size_t row = 0; row < rows; ++row)
    {
        sum += *static_cast<const std::int32_t*>(qArray2_At(array, row, 0));
    }
    std::printf("sum %lld\n", sum);
    return sum == 499500 ? 0 : 1;
}
