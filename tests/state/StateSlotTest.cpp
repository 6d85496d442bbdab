// Slot rules of State and the chunk classes, checked with chunks that only
// record their calls (no GL).
#include "OSGRecordingTestChunk.h"
#include "OSGSingleRecordingTestChunk.h"

#include <OpenSG/OSGFogChunk.h>
#include <OpenSG/OSGLightChunk.h>
#include <OpenSG/OSGMaterialChunk.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGState.h>
#include <OpenSG/OSGTexGenChunk.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGTextureTransformChunk.h>
#include <OpenSG/OSGLog.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

using namespace osg;

namespace
{
typedef std::vector<std::string> Calls;

RecordingTestChunkPtr makeChunk(const std::string &label)
{
    RecordingTestChunkPtr c = RecordingTestChunk::create();
    addRefCP(c);
    beginEditCP(c);
    c->setLabel(label);
    endEditCP(c);
    return c;
}

SingleRecordingTestChunkPtr makeSingle(const std::string &label)
{
    SingleRecordingTestChunkPtr c = SingleRecordingTestChunk::create();
    addRefCP(c);
    beginEditCP(c);
    c->setLabel(label);
    endEditCP(c);
    return c;
}

class StateSlots : public ::testing::Test
{
  protected:
    void SetUp(void) override
    {
        RecordingTestChunk::calls().clear();
        cid = RecordingTestChunk::getStaticClassId();
        sid = SingleRecordingTestChunk::getStaticClassId();
    }

    Calls take(void)
    {
        Calls c;
        c.swap(RecordingTestChunk::calls());
        return c;
    }

    UInt32 cid, sid;
};
} // namespace

TEST(StateChunkClassTest, ClassesReserveConsecutiveSlotsNamedAfterTheClass)
{
    const StateChunkClass *cls = RecordingTestChunk::getStaticClass();
    ASSERT_NE(cls, nullptr);
    EXPECT_STREQ(cls->getName(), "RecordingTest");
    EXPECT_EQ(cls->getNumSlots(), 3);

    // every slot entry carries the class's name and slot count
    for(UInt32 s = 0; s < 3; ++s)
    {
        EXPECT_STREQ(StateChunkClass::getName(cls->getId() + s), "RecordingTest");
        EXPECT_EQ(StateChunkClass::getNumSlots(cls->getId() + s), 3);
    }

    // no two classes overlap, and the entries add up
    const StateChunkClass *single = SingleRecordingTestChunk::getStaticClass();
    EXPECT_NE(single->getId(), cls->getId());
    EXPECT_TRUE(single->getId() >= cls->getId() + 3 || single->getId() + 1 <= cls->getId());
    EXPECT_LE(cls->getId() + 3, StateChunkClass::getUsedSlots());
    EXPECT_EQ(UInt32(StateChunkClass::end() - StateChunkClass::begin()),
              StateChunkClass::getUsedSlots());

    const UInt32 beyond = StateChunkClass::getUsedSlots();
    EXPECT_STREQ(StateChunkClass::getName(beyond), "<Unknown StatChunkClass!>");
    EXPECT_EQ(StateChunkClass::getNumSlots(beyond), -1);
}

TEST(StateChunkClassTest, StandardClassesKeepTheirOrderAndOthersComeAfter)
{
    // a state activates in class order: textures before what transforms
    // them, fog, lights and material before a shader chunk reading them,
    // whatever order the classes were linked in
    const UInt32 order[] = {TextureChunk::getStaticClassId(), TexGenChunk::getStaticClassId(),
                            TextureTransformChunk::getStaticClassId(), FogChunk::getStaticClassId(),
                            LightChunk::getStaticClassId(), MaterialChunk::getStaticClassId(),
                            SHLChunk::getStaticClassId()};
    EXPECT_TRUE(std::is_sorted(std::begin(order), std::end(order)));

    // a class of the application's, even one named like a standard class,
    // takes new entries behind all of them
    StateChunkClass late("Fog", 1);
    EXPECT_GT(late.getId(), SHLChunk::getStaticClassId());
    EXPECT_NE(late.getId(), FogChunk::getStaticClassId());
    EXPECT_GT(RecordingTestChunk::getStaticClassId(), SHLChunk::getStaticClassId());
}

TEST(StateChunkClassTest, AbstractChunkTypesHaveNoClassAndStatesRefuseThem)
{
    EXPECT_EQ(StateChunk::getStaticClass(), nullptr);

    // a chunk of a subclass shares the parent's slots unless it has its own
    RecordingTestChunkPtr       a = makeChunk("A");
    SingleRecordingTestChunkPtr s = makeSingle("S");
    EXPECT_EQ(a->getClassId(), RecordingTestChunk::getStaticClassId());
    EXPECT_EQ(s->getClassId(), SingleRecordingTestChunk::getStaticClassId());
    subRefCP(a);
    subRefCP(s);
}

TEST_F(StateSlots, AutoSlotReplaceTakesTheLowestFreeSlotAndReplacesTheLastWhenFull)
{
    StatePtr state = State::create();
    addRefCP(state);

    RecordingTestChunkPtr c[5];
    for(int i = 0; i < 5; ++i)
        c[i] = makeChunk(std::string(1, char('A' + i)));

    EXPECT_FALSE(state->addChunk(c[0]));
    EXPECT_FALSE(state->addChunk(c[1]));
    EXPECT_EQ(state->getChunk(cid + 0), c[0]);
    EXPECT_EQ(state->getChunk(cid + 1), c[1]);

    // a hole is filled first
    EXPECT_FALSE(state->subChunk(c[0]));
    EXPECT_EQ(state->getChunk(cid + 0), NullFC);
    EXPECT_FALSE(state->addChunk(c[2]));
    EXPECT_EQ(state->getChunk(cid + 0), c[2]);

    EXPECT_FALSE(state->addChunk(c[3]));
    EXPECT_EQ(state->getChunk(cid + 2), c[3]);

    // full: the last slot is replaced, and its chunk loses the state's reference
    Int32 before = c[3].getRefCount();
    EXPECT_FALSE(state->addChunk(c[4], State::AutoSlotReplace));
    EXPECT_EQ(state->getChunk(cid + 2), c[4]);
    EXPECT_EQ(c[3].getRefCount(), before - 1);

    subRefCP(state);
    for(int i = 0; i < 5; ++i)
        subRefCP(c[i]);
}

TEST_F(StateSlots, AutoSlotRefusesAFullClassAndExplicitSlotsReplace)
{
    StatePtr state = State::create();
    addRefCP(state);

    RecordingTestChunkPtr a = makeChunk("A"), b = makeChunk("B"), c = makeChunk("C"),
                          d = makeChunk("D");

    EXPECT_FALSE(state->addChunk(a, 2));   // explicit slot; the vector grows to reach it
    EXPECT_EQ(state->getChunk(cid + 2), a);
    EXPECT_EQ(state->getChunk(cid + 0), NullFC);
    EXPECT_FALSE(state->addChunk(b, State::AutoSlot));
    EXPECT_FALSE(state->addChunk(c, State::AutoSlot));
    EXPECT_EQ(state->getChunk(cid + 0), b);
    EXPECT_EQ(state->getChunk(cid + 1), c);

    {
        LogCapture cap;
        EXPECT_TRUE(state->addChunk(d, State::AutoSlot));
        EXPECT_NE(cap.str().find("addChunk: no free slot found for RecordingTest class, ignored!"),
                  std::string::npos)
            << cap.str();
    }
    EXPECT_EQ(d.getRefCount(), 1);

    EXPECT_FALSE(state->addChunk(d, 1));
    EXPECT_EQ(state->getChunk(cid + 1), d);
    EXPECT_EQ(c.getRefCount(), 1);   // only the test's reference is left

    {
        LogCapture cap;
        EXPECT_TRUE(state->addChunk(d, 4));
        EXPECT_NE(cap.str().find("addChunk: index 4 > Numslots 3,  ignored!"), std::string::npos)
            << cap.str();
    }

    EXPECT_TRUE(state->chunkPresent(a));
    EXPECT_TRUE(state->chunkPresent(cid + 2));
    EXPECT_FALSE(state->chunkPresent(sid));

    subRefCP(state);
    // the state released what it held
    EXPECT_EQ(a.getRefCount(), 1);
    EXPECT_EQ(d.getRefCount(), 1);
    subRefCP(a);
    subRefCP(b);
    subRefCP(c);
    subRefCP(d);
}

TEST_F(StateSlots, SubChunkAndClearChunksKeepTheVectorLength)
{
    StatePtr state = State::create();
    addRefCP(state);

    RecordingTestChunkPtr       a = makeChunk("A");
    SingleRecordingTestChunkPtr s = makeSingle("S");
    state->addChunk(a, 1);
    state->addChunk(s);
    const UInt32 length = state->getMFChunks()->size();
    EXPECT_GE(length, osgMax(cid + 2, sid + 1));

    RecordingTestChunkPtr other = makeChunk("O");
    {
        LogCapture cap;
        EXPECT_TRUE(state->subChunk(other));
        EXPECT_NE(cap.str().find("subChunk: chunk"), std::string::npos);
        EXPECT_NE(cap.str().find("of class RecordingTest not found!"), std::string::npos)
            << cap.str();
    }
    {
        LogCapture cap;
        EXPECT_TRUE(state->subChunk(cid, 3));
        EXPECT_NE(cap.str().find("subChunk: index 3 > Numslots 3,  ignored!"), std::string::npos)
            << cap.str();
    }
    EXPECT_TRUE(state->subChunk(cid, 0));   // empty slot
    EXPECT_FALSE(state->subChunk(cid, 1));
    EXPECT_EQ(state->getChunk(cid + 1), NullFC);
    EXPECT_EQ(a.getRefCount(), 1);

    state->clearChunks();
    EXPECT_EQ(state->getMFChunks()->size(), length);
    EXPECT_FALSE(state->chunkPresent(sid));
    EXPECT_EQ(s.getRefCount(), 1);

    subRefCP(state);
    subRefCP(a);
    subRefCP(s);
    subRefCP(other);
}

TEST_F(StateSlots, ActivationWalksClassesInIdOrderPassingTheSlot)
{
    StatePtr state = State::create();
    addRefCP(state);

    RecordingTestChunkPtr       a = makeChunk("A"), b = makeChunk("B"), x = makeChunk("X");
    SingleRecordingTestChunkPtr s = makeSingle("S");
    state->addChunk(b, 2);
    state->addChunk(a, 0);
    state->addChunk(s);
    state->addChunk(x, 1);

    beginEditCP(x, StateChunk::IgnoreFieldMask);
    x->setIgnore(true);
    endEditCP(x, StateChunk::IgnoreFieldMask);

    take();
    state->activate(NULL);
    Calls act = take();
    state->deactivate(NULL);
    Calls deact = take();

    Calls expected;
    if(sid < cid)
        expected = {"activate S 0", "activate A 0", "activate B 2"};
    else
        expected = {"activate A 0", "activate B 2", "activate S 0"};
    EXPECT_EQ(act, expected);

    ASSERT_EQ(deact.size(), 3u);
    for(UInt32 i = 0; i < 3; ++i)
        EXPECT_EQ(deact[i], "de" + expected[i]);

    subRefCP(state);
    subRefCP(a);
    subRefCP(b);
    subRefCP(x);
    subRefCP(s);
}

TEST_F(StateSlots, ChangeFromPairsSlotsAndDeactivatesWhatTheNewStateLacks)
{
    StatePtr oldState = State::create(), newState = State::create();
    addRefCP(oldState);
    addRefCP(newState);

    RecordingTestChunkPtr       a = makeChunk("A"), b = makeChunk("B"), c = makeChunk("C"),
                          d = makeChunk("D");
    SingleRecordingTestChunkPtr s = makeSingle("S");

    // old: A in slot 0, B in slot 1, S; new: C in slot 0, the same B,
    // D in slot 2, no S
    oldState->addChunk(a, 0);
    oldState->addChunk(b, 1);
    oldState->addChunk(s);
    newState->addChunk(c, 0);
    newState->addChunk(b, 1);
    newState->addChunk(d, 2);

    take();
    newState->changeFrom(NULL, oldState.getCPtr());
    Calls calls = take();

    // a shared chunk is asked too: each chunk decides what "from itself" means
    Calls expected = {"changeFrom C<-A 0", "changeFrom B<-B 1", "activate D 2"};
    std::string deactS = "deactivate S 0";
    if(sid < cid)
        expected.insert(expected.begin(), deactS);
    else
        expected.push_back(deactS);
    EXPECT_EQ(calls, expected);

    // back again: D is only in the (now old) new state
    oldState->changeFrom(NULL, newState.getCPtr());
    calls    = take();
    expected = {"changeFrom A<-C 0", "changeFrom B<-B 1", "deactivate D 2"};
    if(sid < cid)
        expected.insert(expected.begin(), "activate S 0");
    else
        expected.insert(expected.begin() + 3, "activate S 0");
    EXPECT_EQ(calls, expected);

    // an ignored chunk counts as absent on either side
    beginEditCP(c, StateChunk::IgnoreFieldMask);
    c->setIgnore(true);
    endEditCP(c, StateChunk::IgnoreFieldMask);
    newState->changeFrom(NULL, oldState.getCPtr());
    calls = take();
    EXPECT_NE(std::find(calls.begin(), calls.end(), "deactivate A 0"), calls.end());

    subRefCP(oldState);
    subRefCP(newState);
    subRefCP(a);
    subRefCP(b);
    subRefCP(c);
    subRefCP(d);
    subRefCP(s);
}

TEST_F(StateSlots, ChangeFromAShorterStateDeactivatesTheOldTail)
{
    // the old state reaches further than the new one: its tail is switched off
    StatePtr shortState = State::create(), longState = State::create();
    addRefCP(shortState);
    addRefCP(longState);

    RecordingTestChunkPtr       a = makeChunk("A");
    SingleRecordingTestChunkPtr s = makeSingle("S");

    UInt32 low  = osgMin(cid, sid);
    bool   aLow = (low == cid);
    if(aLow)
    {
        shortState->addChunk(a, 0);
        longState->addChunk(s);
    }
    else
    {
        shortState->addChunk(s);
        longState->addChunk(a, 2);
    }
    ASSERT_LT(shortState->getMFChunks()->size(), longState->getMFChunks()->size());

    take();
    shortState->changeFrom(NULL, longState.getCPtr());
    Calls calls = take();
    Calls expected =
        aLow ? Calls{"activate A 0", "deactivate S 0"} : Calls{"activate S 0", "deactivate A 2"};
    EXPECT_EQ(calls, expected);

    subRefCP(shortState);
    subRefCP(longState);
    subRefCP(a);
    subRefCP(s);
}
