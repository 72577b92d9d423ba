#include "platform/Fixtures.h"

#include <ZdkVisionLib/platform/ZoVision.h>

namespace
{

using namespace PlatformTest;

// Initialised before main(), perhaps ahead of the platform's own file.
const qType typeAtStart = xxqPoint3d64f_type;
const std::size_t sizeAtStart = qType_Size(xxqPoint3d64f_type);

TEST(Types, SizesAreThoseOfTheElements)
{
    EXPECT_EQ(qType_Size(xxq8u_type), 1U);
    EXPECT_EQ(qType_Size(xxq16u_type), 2U);
    EXPECT_EQ(qType_Size(xxq16s_type), 2U);
    EXPECT_EQ(qType_Size(xxq32s_type), 4U);
    EXPECT_EQ(qType_Size(xxq64s_type), 8U);
    EXPECT_EQ(qType_Size(xxq64f_type), 8U);
    EXPECT_EQ(qType_Size(xxqBool_type), 4U);
    EXPECT_EQ(qType_Size(xxqPoint32s_type), 8U);
    EXPECT_EQ(qType_Size(xxqPoint64f_type), 16U);
    EXPECT_EQ(qType_Size(xxqPoint3d32s_type), 12U);
    EXPECT_EQ(qType_Size(xxqPoint3d64f_type), 24U);
    EXPECT_EQ(qType_Size(xxqObject_type), sizeof(void*));
}

TEST(Types, HandlesServeInStaticInitialisers)
{
    EXPECT_EQ(typeAtStart, xxqPoint3d64f_type);
    EXPECT_EQ(sizeAtStart, 24U);
}

TEST(Types, ForeignHandlesAreStoppedAndNeverRead)
{
    int local = 0;
    EXPECT_STOPPED(qType_Size(nullptr));
    EXPECT_STOPPED(qType_Size(&local));
    EXPECT_STOPPED(qType_Size(reinterpret_cast<void*>(8)));
    EXPECT_STOPPED(qType_Size(static_cast<char*>(xxq8u_type) + 1));
    EXPECT_STOPPED(qType_Size(MakeArray1(xxq8u_type, 1).Get()));
}

TEST(Types, EachHandleIsDifferent)
{
    const std::vector<qType> types = {xxq8u_type,       xxq16u_type,        xxq16s_type,        xxq32s_type,
                                      xxq64s_type,      xxq64f_type,        xxqBool_type,       xxqPoint32s_type,
                                      xxqPoint64f_type, xxqPoint3d32s_type, xxqPoint3d64f_type, xxqObject_type,
                                      xxqAlloc_type,    xxqArray1_type,     xxqArray2_type,     xxqArrayList_type,
                                      xxqMemory_type,   xxqSerializer_type, xxZvSurfaceMsg_type};
    for (std::size_t i = 0; i < types.size(); ++i)
    {
        for (std::size_t j = 0; j < i; ++j)
        {
            EXPECT_NE(types[i], types[j]);
        }
    }
}

} // namespace
