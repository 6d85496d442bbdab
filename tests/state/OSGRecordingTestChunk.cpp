#include "OSGRecordingTestChunk.h"
#include "OSGSingleRecordingTestChunk.h"

#include <sstream>

OSG_BEGIN_NAMESPACE

StateChunkClass RecordingTestChunk::_class("RecordingTest", 3);
StateChunkClass SingleRecordingTestChunk::_class("SingleRecordingTest", 1);

std::vector<std::string> &RecordingTestChunk::calls(void)
{
    static std::vector<std::string> log;
    return log;
}

RecordingTestChunk::RecordingTestChunk(void) : Inherited()
{
}

RecordingTestChunk::RecordingTestChunk(const RecordingTestChunk &source) : Inherited(source)
{
}

RecordingTestChunk::~RecordingTestChunk(void)
{
}

void RecordingTestChunk::initMethod(void)
{
}

const StateChunkClass *RecordingTestChunk::getClass(void) const
{
    return &_class;
}

void RecordingTestChunk::update(DrawActionBase *)
{
    calls().push_back("update " + getLabel());
}

void RecordingTestChunk::activate(DrawActionBase *, UInt32 index)
{
    std::ostringstream s;
    s << "activate " << getLabel() << " " << index;
    calls().push_back(s.str());
}

void RecordingTestChunk::changeFrom(DrawActionBase *, StateChunk *old, UInt32 index)
{
    RecordingTestChunk *o = dynamic_cast<RecordingTestChunk *>(old);
    std::ostringstream  s;
    s << "changeFrom " << getLabel() << "<-" << (o != NULL ? o->getLabel() : "?") << " "
      << index;
    calls().push_back(s.str());
}

void RecordingTestChunk::deactivate(DrawActionBase *, UInt32 index)
{
    std::ostringstream s;
    s << "deactivate " << getLabel() << " " << index;
    calls().push_back(s.str());
}

bool RecordingTestChunk::isTransparent(void) const
{
    return getTransparent();
}

void RecordingTestChunk::dump(UInt32, const BitVector) const
{
}

SingleRecordingTestChunk::SingleRecordingTestChunk(void) : Inherited()
{
}

SingleRecordingTestChunk::SingleRecordingTestChunk(const SingleRecordingTestChunk &source)
    : Inherited(source)
{
}

SingleRecordingTestChunk::~SingleRecordingTestChunk(void)
{
}

void SingleRecordingTestChunk::initMethod(void)
{
}

const StateChunkClass *SingleRecordingTestChunk::getClass(void) const
{
    return &_class;
}

OSG_END_NAMESPACE
