/** @file
 *  The results of all operations are the same bits with every number of workers, in every instruction set, and from every
 *  compiler. */

#include "Whole/Program.h"

#include "support/Surfaces.h"

namespace
{

using WholeTest::Digests;

Digests RunAll()
{
    const WholeTest::World world(240, 320);
    Digests digests;
    for (const WholeTest::Operation operation : WholeTest::Operations())
    {
        operation(world, digests);
    }
    return digests;
}

/** A worker finds the position of its first row from the index and adds the scale for each row, so that a cell exactly on the
 *  outline of a region may fall to either side with another number of workers. The shapes here have no such cell. */
TEST(Determinism, ResultsAreTheSameWithEveryNumberOfWorkers)
{
    const Digests expected = []
    {
        const TestSupport::WorkerCount one(1);
        return RunAll();
    }();
    for (const std::size_t workers : {2U, 3U, 8U, 17U})
    {
        const TestSupport::WorkerCount many(workers);
        for (const auto& [name, digest] : RunAll())
        {
            EXPECT_EQ(digest, expected.at(name)) << name << " with " << workers << " workers";
        }
    }
}

/** What the program gave when it was first run. A difference on another machine or compiler is one that a host would see
 *  as well; a change that is meant brings new numbers here. */
TEST(Determinism, ResultsAreTheSameOnEveryMachineAndFromEveryCompiler)
{
    const Digests expected = {
#include "Whole/Digests.inc"
    };
    const Digests digests = RunAll();
    EXPECT_EQ(digests.size(), expected.size());
    for (const auto& [name, digest] : digests)
    {
        const auto found = expected.find(name);
        EXPECT_TRUE(found != expected.end() && found->second == digest) << "{\"" << name << "\", " << digest << "U},";
    }
}

} // namespace
