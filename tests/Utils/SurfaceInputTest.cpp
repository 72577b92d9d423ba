#include <ZdkVisionLib/Utils/Utils.h>
#include <ZdkVisionLib/platform/ZoVision.h>

#include "support/Surfaces.h"

namespace
{

using namespace Zvl;
using TestSupport::ExpectThrow;

TEST(RetrieveSurfaceInputData, GivesSizeMappingAndLayers)
{
    std::mt19937 random(1);
    Surface surface = TestSupport::MakeRandomSurface(3, 5, 0.0, random);
    surface.scale = {1.0, 2.0, 3.0};
    surface.offset = {4.0, 5.0, 6.0};
    SurfaceInputData data;
    RetrieveSurfaceInputData(surface, &data);
    EXPECT_EQ(data.width, 5U);
    EXPECT_EQ(data.height, 3U);
    EXPECT_TRUE(data.scale.x == 1.0 && data.scale.y == 2.0 && data.scale.z == 3.0);
    EXPECT_TRUE(data.offset.x == 4.0 && data.offset.y == 5.0 && data.offset.z == 6.0);
    EXPECT_EQ(data.heightArray, surface.layers[0].Get());
    EXPECT_EQ(data.intensityArray, surface.layers[1].Get());
    EXPECT_EQ(qObject_ShareCount(surface.layers[0]), 1);
}

TEST(RetrieveSurfaceInputData, WithoutAHeightLayerOnlyTheMappingIsFilledIn)
{
    Surface surface;
    surface.scale = {1.0, 2.0, 3.0};
    SurfaceInputData data;
    for (int layers = 0; layers < 2; ++layers)
    {
        RetrieveSurfaceInputData(surface, &data);
        EXPECT_EQ(data.width, 0U);
        EXPECT_EQ(data.height, 0U);
        EXPECT_EQ(data.scale.y, 2.0);
        EXPECT_EQ(data.heightArray, nullptr);
        EXPECT_EQ(data.intensityArray, nullptr);
        surface.layers.emplace_back();
    }
}

TEST(RetrieveSurfaceInputData, RefusesANullResultAndAForeignLayer)
{
    Surface surface;
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::RetrieveSurfaceInputData",
                [&] { RetrieveSurfaceInputData(surface, nullptr); });
    Zo::Object<void*> line;
    Zo::Test(qArray1_Construct(line.Slot(), xxq16s_type, 4, nullptr));
    surface.layers.push_back(line);
    SurfaceInputData data;
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::RetrieveSurfaceInputData",
                [&] { RetrieveSurfaceInputData(surface, &data); });
}

TEST(GetSurfaceItemOffset, ReadsTheItemsOffset)
{
    Zo::Object<void*> message;
    Zo::Test(ZvSurfaceMsg_Construct(message.Slot(), 2, 3, 2, nullptr));
    const qPoint3d64f second = {1.0, 2.0, 3.0};
    Zo::Test(ZvSurfaceMsg_SetOffset(message, 1, &second));
    const qPoint3d64f offset = GetSurfaceItemOffset(message, 1);
    EXPECT_TRUE(offset.x == 1.0 && offset.y == 2.0 && offset.z == 3.0);
}

TEST(GetSurfaceItemOffset, RefusesANullMessageAndAMissingItem)
{
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::GetSurfaceItemOffset", [] { GetSurfaceItemOffset(nullptr, 0); });
    Zo::Object<void*> message;
    Zo::Test(ZvSurfaceMsg_Construct(message.Slot(), 2, 3, 1, nullptr));
    for (const int index : {-1, 1})
    {
        ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::GetSurfaceItemOffset", [&] { GetSurfaceItemOffset(message, index); });
    }
}

} // namespace
