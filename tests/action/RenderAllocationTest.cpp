// The render action reuses its draw tree: once warmed up, a frame allocates
// the same few blocks however many objects it draws.
#include "ActionTestSupport.h"

#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGStatCollector.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<bool>   countingAllocations(false);
std::atomic<size_t> allocationCount(0);

} // namespace

// Counts every allocation of the program while counting is on. Sanitizer
// builds keep their own allocator, and this test is skipped there.
#if defined(__SANITIZE_ADDRESS__)
#define CORVANE_COUNT_ALLOCATIONS 0
#else
#define CORVANE_COUNT_ALLOCATIONS 1

void *operator new(size_t size)
{
    if(countingAllocations.load(std::memory_order_relaxed))
        allocationCount.fetch_add(1, std::memory_order_relaxed);
    void *p = std::malloc(size != 0 ? size : 1);
    if(p == NULL)
        std::abort();
    return p;
}

void operator delete(void *p) noexcept
{
    std::free(p);
}

void operator delete(void *p, size_t) noexcept
{
    std::free(p);
}

void *operator new[](size_t size)
{
    return operator new(size);
}

void operator delete[](void *p) noexcept
{
    std::free(p);
}

void operator delete[](void *p, size_t) noexcept
{
    std::free(p);
}
#endif

using namespace osg;
using namespace actiontest;

namespace
{

/// Allocations of the third frame of a scene with n drawables under
/// transforms, with opaque materials of two sort keys and a transparent one.
size_t allocationsPerFrame(UInt32 n)
{
    Scene scene;

    RecordMaterialPtr mats[3] = {scene.material("a"), scene.material("b", 1),
                                 scene.material("t", 0, true)};

    NodePtr root = scene.root(scene.group());
    beginEditCP(root, Node::ChildrenFieldMask);
    for(UInt32 i = 0; i < n; ++i)
    {
        NodePtr d = scene.draw("x", mats[i % 3]);
        root->addChild(scene.translate(Real32(i), 0.f, -Real32(i % 7), {d}));
    }
    endEditCP(root, Node::ChildrenFieldMask);
    root->updateVolume();

    std::unique_ptr<RenderAction> ra(RenderAction::create());
    StatCollector                 stats;
    ra->setStatistics(&stats);
    ra->setFrustumCulling(false);

    actionTestQuiet() = true;
    ra->apply(root);
    ra->apply(root);

    allocationCount = 0;
    countingAllocations = true;
    ra->apply(root);
    countingAllocations = false;
    actionTestQuiet() = false;

    ra->setStatistics(NULL);
    return allocationCount;
}

} // namespace

TEST(RenderActionAllocations, SteadyFramesDoNotAllocatePerObject)
{
    if(!CORVANE_COUNT_ALLOCATIONS)
        GTEST_SKIP() << "allocations are not counted under the address sanitizer";
    REQUIRE_GL();

    size_t few  = allocationsPerFrame(12);
    size_t many = allocationsPerFrame(600);

    EXPECT_EQ(few, many);
    EXPECT_LE(many, 4u);
}
