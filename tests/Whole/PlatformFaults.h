#pragma once

/** @file
 *  Failing operations of the platform. The linker leads every call of an operation in PlatformOperations.inc, from the
 *  algorithms and from the tests, through here. */

#include <ZdkVisionLib/platform/qApi.h>

namespace WholeTest
{

/** The status of the first failing operation. Each later one returns the status below that of the one before, so that an
 *  exception tells which of them it reports. No operation returns such a status by itself. */
constexpr qStatus kFirstFault = -70000;
constexpr qStatus kSecondFault = kFirstFault - 1;

/** From now on the @p nth operation that this thread asks for fails (1 is the next one), and with @p onwards all later
 *  ones, without doing anything. With 0 none does. */
void FailOperationAt(std::size_t nth, bool onwards);

std::size_t FailedOperations();     ///< on this thread since FailOperationAt()
const char* FirstFailedOperation(); ///< name of the first of these, or null

} // namespace WholeTest
