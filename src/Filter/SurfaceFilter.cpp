#include <ZdkVisionLib/Filter/SurfaceFilter.h>

#include "Common/Cells.h"
#include "Common/Check.h"
#include "Filter/SurfaceFilterKernel.h"

#include <utility>

namespace Zvl
{

namespace
{

/** True when both are arrays of heights with the same lengths. The caller shares the arrays, and may change them between
 *  two calls. */
bool AreAlike(const Cells<const std::int16_t>& in, const Cells<std::int16_t>& out)
{
    return in.present && out.present && in.rows == out.rows && in.columns == out.columns;
}

} // namespace

struct SurfaceFilter::Impl
{
    Zo::Object<void*> in;  ///< what the next filter reads
    Zo::Object<void*> out; ///< what each filter writes
    void* alloc = nullptr;
    bool filtered = false;     ///< a filter has written
    Zo::Object<void*> inClone; ///< the result of the filter before, while the next one reads it

    /** Whether there is anything to filter. If not, the output gets the cells of the input; if so, the source is made
     *  ready. */
    bool CheckConditions(const Point2d<std::size_t>& window);

    void CopyThrough();

    void CloneAndUpdateInSurface();

    void Smooth(const Point2d<std::size_t>& window, bool keepNulls);
};

bool SurfaceFilter::Impl::CheckConditions(const Point2d<std::size_t>& window)
{
    if (window.x < 2 && window.y < 2)
    {
        if (!filtered && in.Get() != out.Get())
        {
            CopyThrough();
        }
        return false;
    }
    if (filtered)
    {
        CloneAndUpdateInSurface();
    }
    return true;
}

void SurfaceFilter::Impl::CopyThrough()
{
    constexpr const char* kFunction = "Zvl::SurfaceFilter::Impl::CheckConditions";
    const Cells<const std::int16_t> source = CellsOf<const std::int16_t>(in);
    const Cells<std::int16_t> target = CellsOf<std::int16_t>(out);
    ZVL_REQUIRE(kFunction, AreAlike(source, target));
    ZVL_CHECK(kFunction, qMemCopy(target.data, source.data, source.rows * source.columns * sizeof(std::int16_t)));
}

void SurfaceFilter::Impl::CloneAndUpdateInSurface()
{
    Zo::Object<void*> copy;
    ZVL_CHECK("Zvl::SurfaceFilter::Impl::CloneAndUpdateInSurface",
              xqObject_CloneImpl(copy.Slot(), out, alloc, alloc, 0));
    inClone = std::move(copy);
    in = inClone;
}

/** The two passes; they never read what they write, so that input and output may be one array. */
void SurfaceFilter::Impl::Smooth(const Point2d<std::size_t>& window, bool keepNulls)
{
    constexpr const char* kFunction = "Zvl::SurfaceFilter::Average";
    const Cells<const std::int16_t> source = CellsOf<const std::int16_t>(in);
    const Cells<std::int16_t> target = CellsOf<std::int16_t>(out);
    ZVL_REQUIRE(kFunction, AreAlike(source, target));

    const BoxMean mean = {source.data,
                          target.data,
                          source.rows,
                          source.columns,
                          static_cast<std::uint32_t>(window.x),
                          static_cast<std::uint32_t>(window.y),
                          keepNulls};
    Zo::Object<void*> memory;
    if (CanAverageInVectors(mean))
    {
        ZVL_CHECK(kFunction, qArray1_Construct(memory.Slot(), xxq8u_type, BytesForVectors(mean), alloc));
        AverageInVectors(mean, qArray1_Data(memory));
        return;
    }
    ZVL_CHECK(kFunction, qArray2_Construct(memory.Slot(), xxq16s_type, source.rows, source.columns, alloc));
    AverageLineByLine(mean, CellsOf<std::int16_t>(memory).data);
}

SurfaceFilter::SurfaceFilter(Zo::Object<void*> in, Zo::Object<void*> out, void* alloc) : impl(std::make_unique<Impl>())
{
    ZVL_REQUIRE("Zvl::SurfaceFilter::SurfaceFilter",
                AreAlike(CellsOf<const std::int16_t>(in), CellsOf<std::int16_t>(out)));
    impl->in = std::move(in);
    impl->out = std::move(out);
    impl->alloc = alloc;
}

SurfaceFilter::~SurfaceFilter() = default;

SurfaceFilter& SurfaceFilter::Average(Point2d<std::size_t> window, int keepNulls)
{
    // An even size is made odd to see whether there is anything to do; the passes get the caller's sizes as they are.
    if (impl->CheckConditions({window.x | 1U, window.y | 1U}))
    {
        impl->Smooth(window, keepNulls != 0);
        impl->filtered = true;
    }
    return *this;
}

} // namespace Zvl
