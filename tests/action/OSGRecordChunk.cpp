#include "OSGRecordChunk.h"
#include "OSGActionTestCore.h"

#include <OpenSG/OSGGL.h>

OSG_BEGIN_NAMESPACE

StateChunkClass RecordChunk::_class("TestRecord", 1);

RecordChunk::RecordChunk(void) : Inherited()
{
}

RecordChunk::RecordChunk(const RecordChunk &source) : Inherited(source)
{
}

RecordChunk::~RecordChunk(void)
{
}

void RecordChunk::initMethod(void)
{
}

void RecordChunk::update(DrawActionBase *)
{
    if(!actionTestQuiet())
        actionTestRecord("upd:" + getLabel());
}

void RecordChunk::activate(DrawActionBase *, UInt32)
{
    if(!actionTestQuiet())
        actionTestRecord("act:" + getLabel());

    if(getGl())
    {
        glColor4fv(getColor().getValuesRGBA());
        if(getBlend())
        {
            glEnable(GL_BLEND);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        }
    }
}

void RecordChunk::changeFrom(DrawActionBase *, StateChunk *old, UInt32)
{
    RecordChunk *o = dynamic_cast<RecordChunk *>(old);
    if(!actionTestQuiet())
        actionTestRecord("chg:" + getLabel() + "<" + (o != NULL ? o->getLabel() : "?"));

    if(getGl())
    {
        if(o != NULL && o->getBlend())
            glDisable(GL_BLEND);
        glColor4fv(getColor().getValuesRGBA());
        if(getBlend())
        {
            glEnable(GL_BLEND);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        }
    }
}

void RecordChunk::deactivate(DrawActionBase *, UInt32)
{
    if(!actionTestQuiet())
        actionTestRecord("deact:" + getLabel());

    if(getGl() && getBlend())
        glDisable(GL_BLEND);
}

OSG_END_NAMESPACE
