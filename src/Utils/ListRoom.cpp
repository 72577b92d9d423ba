#include <ZdkVisionLib/Utils/Utils.h>

#include "Common/Check.h"

namespace Zvl
{

template <typename T>
T* CheckAndReserveqArrayList(void** list, std::size_t count, void* allocator)
{
    constexpr const char* function = "Zvl::CheckAndReserveqArrayList";
    if (list == nullptr)
    {
        return nullptr;
    }
    if (*list == nullptr)
    {
        Zo::Object<void*> constructed;
        ZVL_CHECK(function, qArrayList_Construct(constructed.Slot(), GetqType<T>(), count, allocator));
        *list = constructed.Detach();
        return static_cast<T*>(qArrayList_Data(*list));
    }
    if (qArrayList_Type(*list) != GetqType<T>())
    {
        return nullptr;
    }
    const std::size_t present = qArrayList_Count(*list);
    if (count > SIZE_MAX - present)
    {
        ZVL_THROW(function, STATUS_OUT_OF_MEMORY);
    }
    ZVL_CHECK(function, qArrayList_Reserve(*list, present + count));
    T* items = static_cast<T*>(qArrayList_Data(*list));
    return items == nullptr ? nullptr : items + present;
}

template ZDK_VISION_EXPORT unsigned char* CheckAndReserveqArrayList<unsigned char>(void**, std::size_t, void*);
template ZDK_VISION_EXPORT short* CheckAndReserveqArrayList<short>(void**, std::size_t, void*);
template ZDK_VISION_EXPORT double* CheckAndReserveqArrayList<double>(void**, std::size_t, void*);
template ZDK_VISION_EXPORT qPoint3d32s* CheckAndReserveqArrayList<qPoint3d32s>(void**, std::size_t, void*);
template ZDK_VISION_EXPORT qPoint3d64f* CheckAndReserveqArrayList<qPoint3d64f>(void**, std::size_t, void*);

} // namespace Zvl
