#include <ZdkVisionLib/Alignment/RefFrame.h>

#include "Alignment/Degrees.h"
#include "Common/Check.h"

#include <cmath>
#include <type_traits>

namespace Zvl
{

static_assert(sizeof(RefFrame) == 12 * sizeof(double) && std::is_trivially_copyable_v<RefFrame>,
              "a frame is twelve doubles, I, J, K, T, and nothing else");

namespace
{

constexpr double kNull = GetNull<double>();
constexpr qPoint3d64f kNullPoint = {kNull, kNull, kNull};
constexpr qPoint3d64f kAxisX = {1.0, 0.0, 0.0};
constexpr qPoint3d64f kAxisY = {0.0, 1.0, 0.0};
constexpr qPoint3d64f kAxisZ = {0.0, 0.0, 1.0};

double Length(const qPoint3d64f& vector)
{
    return std::sqrt(vector.x * vector.x + vector.y * vector.y + vector.z * vector.z);
}

double Dot(const qPoint3d64f& a, const qPoint3d64f& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

/** @p row times the 3-by-3 matrix of the rows @p i, @p j, @p k. */
qPoint3d64f Combine(const qPoint3d64f& row, const qPoint3d64f& i, const qPoint3d64f& j, const qPoint3d64f& k)
{
    return {row.x * i.x + row.y * j.x + row.z * k.x, row.x * i.y + row.y * j.y + row.z * k.y,
            row.x * i.z + row.y * j.z + row.z * k.z};
}

qPoint3d64f Multiply(const qPoint3d64f& a, const qPoint3d64f& b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}

struct Quaternion
{
    double x;
    double y;
    double z;
    double w;
};

/** The quaternion is normalised as a whole; the axis is taken as it is. */
Quaternion UnitQuaternion(double angle, const qPoint3d64f& axis)
{
    const double half = ToRadians(angle) / 2.0;
    const double sine = std::sin(half);
    const Quaternion q = {axis.x * sine, axis.y * sine, axis.z * sine, std::cos(half)};
    const double length = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
    return {q.x / length, q.y / length, q.z / length, q.w / length};
}

RefFrame FrameOf(const Quaternion& q)
{
    return RefFrame(1 - 2 * q.y * q.y - 2 * q.z * q.z, // I
                    2 * q.x * q.y + 2 * q.z * q.w,     //
                    2 * q.x * q.z - 2 * q.y * q.w,     //
                    2 * q.x * q.y - 2 * q.w * q.z,     // J
                    1 - 2 * q.x * q.x - 2 * q.z * q.z, //
                    2 * q.y * q.z + 2 * q.x * q.w,     //
                    2 * q.x * q.z + 2 * q.w * q.y,     // K
                    2 * q.y * q.z - 2 * q.x * q.w,     //
                    1 - 2 * q.x * q.x - 2 * q.y * q.y, //
                    0.0, 0.0, 0.0);
}

void RotateUnlessNull(RefFrame& frame, double angle, const qPoint3d64f& axis)
{
    if (angle != kNull)
    {
        frame.Rotate(angle, axis);
    }
}

template <typename Point>
void ApplyToAll(const RefFrame& frame, const Point* in, std::size_t count, Point* out)
{
    ZVL_REQUIRE("Zvl::RefFrame::ApplyN", count == 0 || (in != nullptr && out != nullptr));
    for (std::size_t index = 0; index < count; ++index)
    {
        out[index] = frame.Apply(qPoint3d64f(in[index]));
    }
}

} // namespace

// ---------------------------------------------------------------------------------------------------------
// Construction and fields

RefFrame::RefFrame() : i(kNullPoint), j(kNullPoint), k(kNullPoint), t(kNullPoint)
{
    SetIdentity();
}

RefFrame::RefFrame(double ix, double iy, double iz, double jx, double jy, double jz, double kx, double ky, double kz,
                   double tx, double ty, double tz)
    : i{ix, iy, iz}, j{jx, jy, jz}, k{kx, ky, kz}, t{tx, ty, tz}
{
}

qPoint3d64f RefFrame::GetScale() const
{
    return {Length(i), Length(j), Length(k)};
}

qPoint3d64f RefFrame::GetColumn(std::size_t index) const
{
    switch (index)
    {
    case 0:
        return i;
    case 1:
        return j;
    case 2:
        return k;
    case 3:
        return t;
    default:
        return kNullPoint;
    }
}

qPoint3d64f RefFrame::GetTranslation() const
{
    return GetColumn(3);
}

// ---------------------------------------------------------------------------------------------------------
// Modification

RefFrame& RefFrame::SetIdentity()
{
    i = kAxisX;
    j = kAxisY;
    k = kAxisZ;
    t = {0.0, 0.0, 0.0};
    return *this;
}

void RefFrame::SetFrame(qPoint3d64f point, double angle)
{
    SetIdentity();
    Rotate(angle, kAxisZ);
    Translate(point);
}

RefFrame& RefFrame::Translate(double x, double y, double z)
{
    t.x += x;
    t.y += y;
    t.z += z;
    return *this;
}

RefFrame& RefFrame::Translate(qPoint3d64f vector)
{
    return Translate(vector.x, vector.y, vector.z);
}

RefFrame& RefFrame::Rotate(double angle, qPoint3d64f axis)
{
    *this = *this * FrameOf(UnitQuaternion(angle, axis));
    return *this;
}

RefFrame& RefFrame::Rotate(const Region3d<double>& region)
{
    const qPoint3d64f center = {region.x + region.width / 2, region.y + region.height / 2, region.z + region.depth / 2};
    return RotateAroundPoint(center, region.angle);
}

RefFrame& RefFrame::RotateXYZ(double x, double y, double z)
{
    RotateUnlessNull(*this, z, kAxisZ);
    RotateUnlessNull(*this, y, kAxisY);
    RotateUnlessNull(*this, x, kAxisX);
    return *this;
}

RefFrame& RefFrame::RotateZYX(double x, double y, double z)
{
    RotateUnlessNull(*this, x, kAxisX);
    RotateUnlessNull(*this, y, kAxisY);
    RotateUnlessNull(*this, z, kAxisZ);
    return *this;
}

RefFrame& RefFrame::RotateAroundPoint(qPoint3d64f point, double angle)
{
    SetIdentity();
    Translate(-point.x, -point.y, -point.z);
    Rotate(angle, kAxisZ);
    return Translate(point);
}

RefFrame& RefFrame::Scale(qPoint3d64f factors)
{
    i = Multiply(i, factors);
    j = Multiply(j, factors);
    k = Multiply(k, factors);
    t = Multiply(t, factors);
    return *this;
}

RefFrame& RefFrame::InvertOrtho()
{
    const RefFrame old = *this;
    i = {old.i.x, old.j.x, old.k.x};
    j = {old.i.y, old.j.y, old.k.y};
    k = {old.i.z, old.j.z, old.k.z};
    t = {-Dot(old.i, old.t), -Dot(old.j, old.t), -Dot(old.k, old.t)};
    return *this;
}

// ---------------------------------------------------------------------------------------------------------
// Mapping and composition

qPoint3d64f RefFrame::Apply(qPoint3d64f point) const
{
    const qPoint3d64f turned = Combine(point, i, j, k);
    return {turned.x + t.x, turned.y + t.y, turned.z + t.z};
}

qPoint64f RefFrame::Apply(qPoint64f point) const
{
    return {i.x * point.x + j.x * point.y + t.x, i.y * point.x + j.y * point.y + t.y};
}

void RefFrame::ApplyN(const qPoint3d64f* in, std::size_t count, qPoint3d64f* out) const
{
    ApplyToAll(*this, in, count, out);
}

void RefFrame::ApplyN(const Point3d<double>* in, std::size_t count, Point3d<double>* out) const
{
    ApplyToAll(*this, in, count, out);
}

RefFrame RefFrame::operator*(const RefFrame& other)
{
    RefFrame product;
    product.i = Combine(i, other.i, other.j, other.k);
    product.j = Combine(j, other.i, other.j, other.k);
    product.k = Combine(k, other.i, other.j, other.k);
    product.t = other.Apply(t);
    return product;
}

RefFrame RefFrame::Mul(const RefFrame& a, const RefFrame& b)
{
    RefFrame left = a;
    return left * b;
}

} // namespace Zvl
