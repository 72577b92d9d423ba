#pragma once

/** @file
 *  The instruction sets of this machine that kernels are compiled for. */

#include <gtest/gtest.h>

#include <hwy/highway.h>
#include <hwy/targets.h>

#include <cstdint>

namespace TestSupport
{

/** Runs @p check once in each instruction set of this machine. */
template <typename Check>
void InEachInstructionSet(Check check)
{
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets())
    {
        SCOPED_TRACE(hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        check();
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

} // namespace TestSupport
