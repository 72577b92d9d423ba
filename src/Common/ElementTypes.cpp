#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

namespace
{

/** A platform that does not know the type says so through its cast failure handler, whose result then stands in
 *  for the type. */
void* KnownType(qType type, int line)
{
    return type != nullptr ? type : xqApiLib_CastFailHandler(__FILE__, line);
}

} // namespace

template <>
void* GetqType<unsigned char>()
{
    return KnownType(xxq8u_type, __LINE__);
}

template <>
void* GetqType<short>()
{
    return KnownType(xxq16s_type, __LINE__);
}

template <>
void* GetqType<double>()
{
    return KnownType(xxq64f_type, __LINE__);
}

template <>
void* GetqType<qPoint3d32s>()
{
    return KnownType(xxqPoint3d32s_type, __LINE__);
}

template <>
void* GetqType<qPoint3d64f>()
{
    return KnownType(xxqPoint3d64f_type, __LINE__);
}

} // namespace Zvl
