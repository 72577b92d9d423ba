/** @file
 *  Runs the tests. With the name of an instruction set in the environment variable ZDK_TEST_INSTRUCTION_SET (AVX2, SSE4,
 *  SCALAR, ...) all kernels run in it, and the tests are skipped where the machine does not have it. */

#include "support/InstructionSets.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr int kSkipped = 77;

/** @return false when this machine does not have the instruction set */
bool BindTo(const char* name)
{
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets())
    {
        if (std::strcmp(hwy::TargetName(target), name) == 0)
        {
            TestSupport::boundInstructionSet = target;
            TestSupport::UseInstructionSet(target);
            return true;
        }
    }
    return false;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    testing::InitGoogleTest(&argumentCount, arguments);
    const char* name = std::getenv("ZDK_TEST_INSTRUCTION_SET");
    if (name != nullptr && !BindTo(name))
    {
        std::printf("no %s on this machine\n", name);
        return kSkipped;
    }
    return RUN_ALL_TESTS();
}
