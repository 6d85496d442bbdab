/// A recording test chunk of a one-slot class of its own.
#ifndef _OSGSINGLERECORDINGTESTCHUNK_H_
#define _OSGSINGLERECORDINGTESTCHUNK_H_

#include <OpenSG/OSGSingleRecordingTestChunkBase.h>

OSG_BEGIN_NAMESPACE

class SingleRecordingTestChunk : public SingleRecordingTestChunkBase
{
  private:
    typedef SingleRecordingTestChunkBase Inherited;

  public:
    virtual const StateChunkClass *getClass(void) const;
    static const StateChunkClass *getStaticClass(void) { return &_class; }
    static UInt32 getStaticClassId(void) { return _class.getId(); }

  protected:
    SingleRecordingTestChunk(void);
    SingleRecordingTestChunk(const SingleRecordingTestChunk &source);
    virtual ~SingleRecordingTestChunk(void);

  private:
    friend class FieldContainer;
    friend class SingleRecordingTestChunkBase;

    static void initMethod(void);

    static StateChunkClass _class;

    void operator=(const SingleRecordingTestChunk &source);
};

OSG_END_NAMESPACE

#endif
