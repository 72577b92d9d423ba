#include <ZdkVisionLib/Alignment/RefFrame.h>

#include "Common/Check.h"

namespace Zvl
{

namespace
{

constexpr std::int32_t kFormatVersion = 1;

} // namespace

void RefFrame::Serialize(void** array) const
{
    constexpr const char* function = "Zvl::RefFrame::Serialize";
    ZVL_REQUIRE(function, array != nullptr);
    Zo::Object<void*> memory;
    Zo::Object<void*> serializer;
    ZVL_CHECK(function, qMemory_Construct(memory.Slot(), nullptr, 0));
    ZVL_CHECK(function, qSerializer_Construct(serializer.Slot(), memory, nullptr, nullptr));
    ZVL_CHECK(function, qSerializer_BeginWrite(serializer, xxq16u_type, 0));
    ZVL_CHECK(function, qSerializer_Write32s(serializer, kFormatVersion));
    for (const double value : {i.x, i.y, i.z, j.x, j.y, j.z, k.x, k.y, k.z, t.x, t.y, t.z})
    {
        ZVL_CHECK(function, qSerializer_Write64f(serializer, value));
    }
    ZVL_CHECK(function, qSerializer_EndWrite(serializer));
    ZVL_CHECK(function, xqSerializer_FlushEx(serializer, 1));

    const std::size_t length = qMemory_Length(memory);
    Zo::Object<void*> bytes;
    ZVL_CHECK(function, qArray1_Construct(bytes.Slot(), xxq8u_type, length, nullptr));
    ZVL_CHECK(function, qMemCopy(qArray1_Data(bytes), qMemory_At(memory, 0), length));
    *array = bytes.Detach();
}

void RefFrame::Deserialize(void* data, std::size_t size, void* allocator)
{
    constexpr const char* function = "Zvl::RefFrame::Deserialize";
    Zo::Object<void*> memory;
    Zo::Object<void*> serializer;
    ZVL_CHECK(function, qMemory_Construct(memory.Slot(), allocator, 0));
    ZVL_CHECK(function, qMemory_Attach(memory, data, 0, size, size));
    ZVL_CHECK(function, qSerializer_Construct(serializer.Slot(), memory, nullptr, allocator));
    ZVL_CHECK(function, qSerializer_BeginRead(serializer, xxq16u_type, 0));
    std::int32_t version = 0;
    ZVL_CHECK(function, qSerializer_Read32s(serializer, &version));
    for (double* value : {&i.x, &i.y, &i.z, &j.x, &j.y, &j.z, &k.x, &k.y, &k.z, &t.x, &t.y, &t.z})
    {
        ZVL_CHECK(function, qSerializer_Read64f(serializer, value));
    }
    ZVL_CHECK(function, qSerializer_EndRead(serializer));
}

} // namespace Zvl
