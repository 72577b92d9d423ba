#include "platform/Matrices.h"

#include <ZdkVisionLib/platform/qVision.h>

#include <new>

using namespace ZdkPlatform;

qStatus qMatrix_Mul64f(qArray2 a, qArray2 b, qArray2 product)
{
    Array2& left = CastTo<Array2>(a, __FILE__, __LINE__);
    Array2& right = CastTo<Array2>(b, __FILE__, __LINE__);
    Array2& target = CastTo<Array2>(product, __FILE__, __LINE__);
    if (&target == &left || &target == &right || !IsMatrix(left, left.length0, right.length0) ||
        !IsMatrix(right, left.length1, right.length1) || !IsMatrix(target, left.length0, right.length1))
    {
        return STATUS_BAD_PARAMETER;
    }
    try
    {
        MatrixView view = ViewOf(target);
        view.noalias() = ViewOf(left) * ViewOf(right);
        return STATUS_OK;
    }
    catch (const std::bad_alloc&)
    {
        return STATUS_OUT_OF_MEMORY;
    }
}
