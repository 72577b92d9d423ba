#pragma once

/** @file
 *  What a chain of line filters carries from one operation to the next. */

#include <ZdkVisionLib/Filter/ProfileFilter.h>
#include <ZdkVisionLib/platform/ZoApi.h>

#include "Filter/Line.h"

namespace Zvl
{

/** Buffers and state of a chain. */
struct ProfileFilter::Impl
{
    const short* in; ///< the source of the next operation
    std::size_t size;
    short* out;
    void* alloc;
    std::int32_t filtered; ///< 1 once an operation has written `out`
    Zo::Object<void*> inClone;

    /** Prepares an operation that reads cells around each one that it writes.
     *  @param mayClone the source is set aside where writing would otherwise change what is still to be read
     *  @return whether the operation is to run; if not, `out` holds the line as it is */
    bool CheckConditions(std::size_t window, bool requireOdd, bool mayClone);

    /** Copies the input, or else the output, aside and makes the copy the source. */
    void CloneAndUpdateInProfile(bool fromInput);

    /** Copies the input aside when the output covers a part of it that is still to be read, however far apart they are. */
    void SetOverlapAside();

    /** Makes the last result, if there is one, the source of an operation that needs no copy. */
    void ReadLastResult();

    /** Ends an operation that has written `out`; with @p keepNulls, cells that are missing in the source are
     *  cleared. */
    void Finish(int keepNulls);

    /** The source and where its result goes. */
    HeightLine CurrentLine() const { return {in, size, out}; }

private:
    bool OutputMeetsWindow(std::size_t window) const;
};

} // namespace Zvl
