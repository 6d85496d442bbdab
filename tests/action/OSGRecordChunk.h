// Test chunk: logs "act:<label>", "chg:<label><<old>", "deact:<label>" and
// "upd:<label>" into actionTestLog().
#ifndef _OSGRECORDCHUNK_H_
#define _OSGRECORDCHUNK_H_

#include <OpenSG/OSGRecordChunkBase.h>

OSG_BEGIN_NAMESPACE

class RecordChunk : public RecordChunkBase
{
  private:
    typedef RecordChunkBase Inherited;

  public:
    virtual const StateChunkClass *getClass(void) const { return &_class; }
    static const StateChunkClass *getStaticClass(void) { return &_class; }
    static UInt32 getStaticClassId(void) { return _class.getId(); }

    virtual void update(DrawActionBase *action);
    virtual void activate(DrawActionBase *action, UInt32 index = 0);
    virtual void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0);
    virtual void deactivate(DrawActionBase *action, UInt32 index = 0);

  protected:
    RecordChunk(void);
    RecordChunk(const RecordChunk &source);
    virtual ~RecordChunk(void);

  private:
    friend class FieldContainer;
    friend class RecordChunkBase;

    static void initMethod(void);

    static StateChunkClass _class;

    void operator=(const RecordChunk &source);
};

OSG_END_NAMESPACE

#endif
