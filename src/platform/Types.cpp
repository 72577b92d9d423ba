#include "platform/Types.h"

#include <ZdkVisionLib/platform/ZoVision.h>

namespace ZdkPlatform
{

namespace
{

constexpr const TypeRecord* kObjectClass = &kTypeRecords[static_cast<std::size_t>(TypeId::Object)];

} // namespace

// The order is that of TypeId. One table, so that a handle is tested by its address alone.
constinit const TypeRecord kTypeRecords[static_cast<std::size_t>(TypeId::Count)] = {
    {.name = "q8u", .size = sizeof(std::uint8_t)},
    {.name = "q16u", .size = sizeof(std::uint16_t)},
    {.name = "q16s", .size = sizeof(std::int16_t)},
    {.name = "q32s", .size = sizeof(std::int32_t)},
    {.name = "q64s", .size = sizeof(std::int64_t)},
    {.name = "q64f", .size = sizeof(double)},
    {.name = "qBool", .size = sizeof(std::int32_t)},
    {.name = "qPoint32s", .size = sizeof(qPoint32s)},
    {.name = "qPoint64f", .size = sizeof(qPoint64f)},
    {.name = "qPoint3d32s", .size = sizeof(qPoint3d32s)},
    {.name = "qPoint3d64f", .size = sizeof(qPoint3d64f)},
    {.name = "qObject", .size = sizeof(void*), .isClass = true},
    {.name = "qAlloc", .size = sizeof(void*), .isClass = true, .parent = kObjectClass},
    {.name = "qArray1",
     .size = sizeof(void*),
     .isClass = true,
     .parent = kObjectClass,
     .dispose = DisposeArray1,
     .clone = CloneArray1},
    {.name = "qArray2",
     .size = sizeof(void*),
     .isClass = true,
     .parent = kObjectClass,
     .dispose = DisposeArray2,
     .clone = CloneArray2},
    {.name = "qArrayList",
     .size = sizeof(void*),
     .isClass = true,
     .parent = kObjectClass,
     .dispose = DisposeArrayList,
     .clone = CloneArrayList},
    {.name = "qMemory", .size = sizeof(void*), .isClass = true, .parent = kObjectClass, .dispose = DisposeMemory},
    {.name = "qSerializer",
     .size = sizeof(void*),
     .isClass = true,
     .parent = kObjectClass,
     .dispose = DisposeSerializer},
    {.name = "ZvSurfaceMsg",
     .size = sizeof(void*),
     .isClass = true,
     .parent = kObjectClass,
     .dispose = DisposeSurfaceMessage,
     .clone = CloneSurfaceMessage},
};

const TypeRecord* FindType(qType type) noexcept
{
    const auto first = reinterpret_cast<std::uintptr_t>(&kTypeRecords[0]);
    const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(type) - first;
    const bool known = offset < sizeof(kTypeRecords) && offset % sizeof(TypeRecord) == 0;
    return known ? static_cast<const TypeRecord*>(type) : nullptr;
}

const TypeRecord& CheckedType(qType type, const char* file, int line)
{
    const TypeRecord* record = FindType(type);
    return record != nullptr ? *record : *static_cast<const TypeRecord*>(xqApiLib_CastFailHandler(file, line));
}

} // namespace ZdkPlatform

#define ZDK_DEFINE_TYPE(name, id)                                                                                      \
    constinit const qType name = const_cast<ZdkPlatform::TypeRecord*>(                                                 \
        &ZdkPlatform::kTypeRecords[static_cast<std::size_t>(ZdkPlatform::TypeId::id)])

ZDK_DEFINE_TYPE(xxq8u_type, Q8u);
ZDK_DEFINE_TYPE(xxq16u_type, Q16u);
ZDK_DEFINE_TYPE(xxq16s_type, Q16s);
ZDK_DEFINE_TYPE(xxq32s_type, Q32s);
ZDK_DEFINE_TYPE(xxq64s_type, Q64s);
ZDK_DEFINE_TYPE(xxq64f_type, Q64f);
ZDK_DEFINE_TYPE(xxqBool_type, Bool);
ZDK_DEFINE_TYPE(xxqPoint32s_type, Point32s);
ZDK_DEFINE_TYPE(xxqPoint64f_type, Point64f);
ZDK_DEFINE_TYPE(xxqPoint3d32s_type, Point3d32s);
ZDK_DEFINE_TYPE(xxqPoint3d64f_type, Point3d64f);
ZDK_DEFINE_TYPE(xxqObject_type, Object);
ZDK_DEFINE_TYPE(xxqAlloc_type, Alloc);
ZDK_DEFINE_TYPE(xxqArray1_type, Array1);
ZDK_DEFINE_TYPE(xxqArray2_type, Array2);
ZDK_DEFINE_TYPE(xxqArrayList_type, ArrayList);
ZDK_DEFINE_TYPE(xxqMemory_type, Memory);
ZDK_DEFINE_TYPE(xxqSerializer_type, Serializer);
ZDK_DEFINE_TYPE(xxZvSurfaceMsg_type, SurfaceMessage);

std::size_t qType_Size(qType type)
{
    return ZdkPlatform::CheckedType(type, __FILE__, __LINE__).size;
}
