#pragma once

/** @file
 *  The instruction sets of this machine that kernels are compiled for. */

#include <gtest/gtest.h>

#include <hwy/highway.h>
#include <hwy/targets.h>

#include <cstdint>

namespace TestSupport
{

/** The instruction set that this run of the tests is bound to; 0 when it may use the best one. */
inline std::int64_t boundInstructionSet = 0;

/** Lets kernels use @p target, or, if that is 0, what this run may use. */
inline void UseInstructionSet(std::int64_t target)
{
    hwy::SetSupportedTargetsForTest(target != 0 ? target : boundInstructionSet);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

/** Runs @p check once in each instruction set of this machine. */
template <typename Check>
void InEachInstructionSet(Check check)
{
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets())
    {
        SCOPED_TRACE(hwy::TargetName(target));
        UseInstructionSet(target);
        check();
    }
    UseInstructionSet(0);
}

} // namespace TestSupport
