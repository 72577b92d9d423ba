#include <ZdkVisionLib/Common/Common.h>

#include "support/FailingAllocator.h"
#include "support/Surfaces.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace
{

using namespace Zvl;
using TestSupport::ExpectThrow;
using TestSupport::kNull;

template <typename T>
std::uint64_t BitsOf(T value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(value));
    return bits;
}

TEST(Nulls, HaveTheirBits)
{
    EXPECT_EQ(BitsOf(GetNull<unsigned char>()), 0xFFU);
    EXPECT_EQ(BitsOf(GetNull<short>()), 0x8000U);
    EXPECT_EQ(BitsOf(GetNull<int>()), 0x80000000U);
    EXPECT_EQ(BitsOf(GetNull<float>()), 0xFF7FFFFFU);
    EXPECT_EQ(BitsOf(GetNull<double>()), 0xFFEFFFFFFFFFFFFFU);
    EXPECT_EQ(BitsOf(GetNull<std::uint64_t>()), 0xFFFFFFFFFFFFFFFFU);
}

TEST(Nulls, NotANumberIsAValue)
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(notANumber == GetNull<double>());
}

TEST(Nulls, AFullMaskCellLooksMissing)
{
    const std::uint8_t saturated = 255;
    EXPECT_EQ(saturated, GetNull<unsigned char>());
}

TEST(Records, DefaultsAreTheirNulls)
{
    const Point2d<double> point2d;
    EXPECT_TRUE(point2d.x == kNull && point2d.y == kNull);
    const Point3d<double> point3d;
    EXPECT_TRUE(point3d.x == kNull && point3d.y == kNull && point3d.z == kNull);

    const Region2d<double> region2d;
    EXPECT_TRUE(region2d.x == kNull && region2d.y == kNull);
    EXPECT_TRUE(region2d.width == 0.0 && region2d.height == 0.0 && region2d.angle == 0.0);
    const Region3d<double> region3d;
    EXPECT_TRUE(region3d.x == kNull && region3d.y == kNull && region3d.z == kNull);
    EXPECT_TRUE(region3d.width == 0.0 && region3d.height == 0.0 && region3d.angle == 0.0 && region3d.depth == 0.0);

    const AnnularSector2d<double> annulus;
    EXPECT_TRUE(annulus.innerRadius == 0.0 && annulus.outerRadius == 0.0 && annulus.startAngle == 0.0 &&
                annulus.angleSpan == 0.0);
    EXPECT_TRUE(annulus.center.x == kNull && annulus.center.y == kNull);
    const EllipticalSector2d<double> ellipse;
    EXPECT_TRUE(ellipse.innerHeight == 0.0 && ellipse.innerWidth == 0.0 && ellipse.outerHeight == 0.0 &&
                ellipse.outerWidth == 0.0 && ellipse.startAngle == 0.0 && ellipse.angleSpan == 0.0 &&
                ellipse.rotation == 0.0);
    EXPECT_TRUE(ellipse.center.x == kNull && ellipse.center.y == kNull);
}

TEST(Records, ABoxBeginsWithItsRectangle)
{
    const Rect3d<int> box = {1, 2, 3, 4, 5, 6};
    Rect2d<int> rectangle;
    std::memcpy(static_cast<void*>(&rectangle), &box, sizeof(rectangle));
    EXPECT_TRUE(rectangle.x == 1 && rectangle.y == 2 && rectangle.width == 3 && rectangle.height == 4);
}

TEST(Records, PointsConvertFieldByFieldAndKeepNulls)
{
    const qPoint3d64f raw = Point3d<double>(kNull, 2.5, kNull);
    EXPECT_TRUE(raw.x == kNull && raw.y == 2.5 && raw.z == kNull);
    const Point3d<double> back = raw;
    EXPECT_TRUE(back.x == kNull && back.y == 2.5 && back.z == kNull);
    static_assert(sizeof(Point3d<double>) == sizeof(qPoint3d64f));

    const qPoint64f plane = Point2d<double>(1.5, kNull);
    EXPECT_TRUE(plane.x == 1.5 && plane.y == kNull);
    const Point2d<std::uint64_t> kernel(3, 5);
    EXPECT_EQ(kernel.x, 3U);
    EXPECT_EQ(kernel.y, 5U);
}

TEST(ElementTypes, AreThePlatformsHandles)
{
    EXPECT_EQ(GetqType<unsigned char>(), xxq8u_type);
    EXPECT_EQ(GetqType<short>(), xxq16s_type);
    EXPECT_EQ(GetqType<double>(), xxq64f_type);
    EXPECT_EQ(GetqType<qPoint3d32s>(), xxqPoint3d32s_type);
    EXPECT_EQ(GetqType<qPoint3d64f>(), xxqPoint3d64f_type);
}

TEST(SurfaceRecord, DefaultHasANullMappingAndNoLayers)
{
    const Surface surface;
    for (const double value :
         {surface.scale.x, surface.scale.y, surface.scale.z, surface.offset.x, surface.offset.y, surface.offset.z})
    {
        EXPECT_EQ(value, kNull);
    }
    EXPECT_TRUE(surface.layers.empty());
}

TEST(SurfaceRecord, CopiesShareTheirLayers)
{
    Surface surface = TestSupport::MakeSurface(1, 2, {7, 8});
    {
        const Surface copy = surface;
        EXPECT_EQ(qObject_ShareCount(surface.layers[0]), 2);
        *static_cast<std::int16_t*>(qArray2_At(surface.layers[0], 0, 1)) = 99;
        EXPECT_EQ(TestSupport::CellsIn<std::int16_t>(copy.layers[0])[1], 99);
    }
    EXPECT_EQ(qObject_ShareCount(surface.layers[0]), 1);
}

TEST(ProfileRecord, ConstructorsTakeOffsetBeforeScale)
{
    const Profile empty;
    EXPECT_TRUE(empty.scale.x == kNull && empty.scale.y == kNull && empty.offset.x == kNull && empty.offset.y == kNull);
    const Profile flat(qPoint64f{1.0, 2.0}, qPoint64f{3.0, 4.0});
    EXPECT_TRUE(flat.offset.x == 1.0 && flat.offset.y == 2.0 && flat.scale.x == 3.0 && flat.scale.y == 4.0);
    const qPoint3d64f offset = {1.0, 2.0, 3.0};
    const qPoint3d64f scale = {4.0, 5.0, 6.0};
    const Profile cut(&offset, &scale);
    EXPECT_TRUE(cut.offset.x == 1.0 && cut.offset.y == 3.0 && cut.scale.x == 4.0 && cut.scale.y == 6.0);
}

TEST(ProfileRecord, ANullMappingIsRefused)
{
    const qPoint3d64f mapping = {1.0, 1.0, 1.0};
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::Profile::Profile", [&] { Profile(nullptr, &mapping); });
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::Profile::Profile", [&] { Profile(&mapping, nullptr); });
}

TEST(ProfileRecord, AddLayerReturnsTheOldLayerCount)
{
    Profile profile;
    EXPECT_EQ(profile.AddLayer(xxq16s_type, 5, nullptr), 0U);
    EXPECT_EQ(profile.AddLayer(profile.layers[0]), 1U);
    EXPECT_EQ(qArray1_Count(profile.layers[1]), 5U);
    EXPECT_EQ(profile.layers[0].Get(), profile.layers[1].Get());
    EXPECT_EQ(qObject_ShareCount(profile.layers[0]), 2);
}

TEST(ProfileRecord, AFailedLayerStaysAsANullSlot)
{
    Profile profile;
    ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::Profile::AddLayer",
                [&] { profile.AddLayer(xxq16s_type, std::numeric_limits<std::size_t>::max(), nullptr); });
    ASSERT_EQ(profile.layers.size(), 1U);
    EXPECT_EQ(profile.layers[0].Get(), nullptr);
}

TEST(ProfileRecord, EveryShortageOfMemoryIsThrown)
{
    EXPECT_GT(TestSupport::ExpectEachFailureThrown("Zvl::Profile::AddLayer",
                                                   []
                                                   {
                                                       Profile profile;
                                                       profile.AddLayer(xxq16s_type, 100, nullptr);
                                                   }),
              0U);
}

} // namespace
