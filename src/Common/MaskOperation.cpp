#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Check.h"
#include "Common/ItemTypes.h"
#include "Common/MaskKernels.h"
#include "Common/NewMask.h"

namespace Zvl
{

namespace
{

constexpr char kFunction[] = "Zvl::MaskOperation";

bool IsArray(void* handle)
{
    return handle != nullptr && xqCastClass_ObjectIs(handle, xxqArray2_type);
}

bool HaveOneShape(void* a, void* b)
{
    return qArray2_Type(a) == qArray2_Type(b) && qArray2_Length(a, 0) == qArray2_Length(b, 0) &&
           qArray2_Length(a, 1) == qArray2_Length(b, 1);
}

/** Gives @p out the type and size of @p a. The object stays when its type does. */
void Provide(qArray2& out, void* a, void* allocator)
{
    const std::size_t rows = qArray2_Length(a, 0);
    const std::size_t columns = qArray2_Length(a, 1);
    if (IsArray(out) && qArray2_Type(out) == qArray2_Type(a))
    {
        ZVL_CHECK(kFunction, qArray2_Allocate(out, qArray2_Type(a), rows, columns));
        return;
    }
    DropHeld(kFunction, out);
    Zo::Object<void*> made;
    ZVL_CHECK(kFunction, qArray2_Construct(made.Slot(), qArray2_Type(a), rows, columns, allocator));
    out = made.Detach();
}

const std::uint8_t* BytesOf(void* array)
{
    return static_cast<const std::uint8_t*>(qArray2_At(array, 0, 0));
}

} // namespace

void MaskOperation(Zo::Object<void*> a, Zo::Object<void*> b, MaskOperationType op, qArray2* out, void* allocator)
{
    if (out == nullptr)
    {
        return;
    }
    ZVL_REQUIRE(kFunction, IsArray(a) && IsArray(b) && HaveOneShape(a, b) && !IsObjectType(qArray2_Type(a)));
    if (qArray2_Length(a, 0) == 0 || qArray2_Length(a, 1) == 0)
    {
        return;
    }
    if (*out != a.Get() && *out != b.Get())
    {
        Provide(*out, a, allocator);
    }
    const std::size_t count = qArray2_Length(a, 0) * qArray2_Length(a, 1) * qType_Size(qArray2_Type(a));
    const std::uint8_t* first = BytesOf(a);
    const std::uint8_t* second = BytesOf(b);
    auto* result = static_cast<std::uint8_t*>(qArray2_At(*out, 0, 0));
    if (op == MaskOperationAnd)
    {
        AndBytes(first, second, result, count);
    }
    else if (op == MaskOperationOr)
    {
        OrBytes(first, second, result, count);
    }
}

} // namespace Zvl
