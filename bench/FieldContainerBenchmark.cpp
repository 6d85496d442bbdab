// Throughput of the container layer: creation, edits with changed, and the
// serialisation of a change list's containers next to a memcpy of the bytes.
#include <OpenSG/OSGBaseInitFunctions.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>

#include <support/MemoryDataHandler.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

using namespace osg;

namespace
{

void BM_CreateAndDestroyGroup(benchmark::State &state)
{
    for(auto _ : state)
    {
        GroupPtr g = Group::create();
        addRefCP(g);
        subRefCP(g);
    }
    Thread::getCurrentChangeList()->clearAll();
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_CreateAndDestroyGroup);

void BM_EditWithChanged(benchmark::State &state)
{
    NodePtr node = Node::create();
    addRefCP(node);
    UInt32 mask = 0;
    ChangeList *cl = Thread::getCurrentChangeList();
    for(auto _ : state)
    {
        beginEditCP(node, Node::TravMaskFieldMask);
        node->setTravMask(++mask);
        endEditCP(node, Node::TravMaskFieldMask);
        if(cl->sizeChanged() > 100000)
            cl->clearAll();
    }
    cl->clearAll();
    subRefCP(node);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_EditWithChanged);

/// A tree of nodes whose children lists changed, as a scene would send it.
struct ChangedScene
{
    std::vector<NodePtr> nodes;

    explicit ChangedScene(UInt32 count)
    {
        for(UInt32 i = 0; i < count; ++i)
        {
            NodePtr n = Node::create();
            addRefCP(n);
            beginEditCP(n, Node::CoreFieldMask);
            n->setCore(Group::create());
            endEditCP(n, Node::CoreFieldMask);
            nodes.push_back(n);
        }
        for(UInt32 i = 1; i < count; ++i)
        {
            beginEditCP(nodes[i / 8], Node::ChildrenFieldMask);
            nodes[i / 8]->addChild(nodes[i]);
            endEditCP(nodes[i / 8], Node::ChildrenFieldMask);
        }
    }
    ~ChangedScene(void)
    {
        for(size_t i = 0; i < nodes.size(); ++i)
            subRefCP(nodes[i]);
        Thread::getCurrentChangeList()->clearAll();
    }
};

/// Writes what a change list names: id, mask and the changed fields.
void BM_SerialiseChangeList(benchmark::State &state)
{
    ChangedScene scene(UInt32(state.range(0)));
    ChangeList *cl = Thread::getCurrentChangeList();
    FieldContainerFactory *factory = FieldContainerFactory::the();
    size_t bytes = 0;
    for(auto _ : state)
    {
        corvanetest::MemoryDataHandler mem(64 * 1024);
        mem.bytes().reserve(1 << 20);
        for(ChangeList::changed_const_iterator it = cl->beginChanged(); it != cl->endChanged(); ++it)
        {
            FieldContainerPtr fc = factory->getContainer(it->first);
            if(fc == NullFC)
                continue;
            mem.putValue(it->first);
            mem.putValue(it->second);
            fc->copyToBin(mem, it->second);
        }
        mem.flush();
        bytes = mem.bytes().size();
        benchmark::DoNotOptimize(mem.bytes().data());
    }
    state.SetBytesProcessed(int64_t(bytes) * state.iterations());
    state.counters["entries"] = double(cl->sizeChanged());
}
BENCHMARK(BM_SerialiseChangeList)->Arg(4096);

/// The floor for the serialisation above: copying the same number of bytes.
void BM_MemcpyChangeListBytes(benchmark::State &state)
{
    ChangedScene scene(UInt32(state.range(0)));
    corvanetest::MemoryDataHandler probe(64 * 1024);
    ChangeList *cl = Thread::getCurrentChangeList();
    for(ChangeList::changed_const_iterator it = cl->beginChanged(); it != cl->endChanged(); ++it)
    {
        FieldContainerPtr fc = FieldContainerFactory::the()->getContainer(it->first);
        if(fc != NullFC)
            fc->copyToBin(probe, it->second);
    }
    probe.flush();
    std::vector<UInt8> src(probe.bytes().size() + 12 * cl->sizeChanged(), 1), dst(src.size());
    for(auto _ : state)
    {
        memcpy(dst.data(), src.data(), src.size());
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(src.size()) * state.iterations());
}
BENCHMARK(BM_MemcpyChangeListBytes)->Arg(4096);

} // namespace
