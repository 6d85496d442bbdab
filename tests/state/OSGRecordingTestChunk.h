/// Test chunks that do no GL and log every call into one shared list:
/// "activate A 1", "deactivate B 0", "changeFrom A<-B 2", "update A".
#ifndef _OSGRECORDINGTESTCHUNK_H_
#define _OSGRECORDINGTESTCHUNK_H_

#include <OpenSG/OSGRecordingTestChunkBase.h>

#include <string>
#include <vector>

OSG_BEGIN_NAMESPACE

class RecordingTestChunk : public RecordingTestChunkBase
{
  private:
    typedef RecordingTestChunkBase Inherited;

  public:
    static std::vector<std::string> &calls(void);

    virtual const StateChunkClass *getClass(void) const;
    static const StateChunkClass *getStaticClass(void) { return &_class; }
    static UInt32 getStaticClassId(void) { return _class.getId(); }

    virtual void update(DrawActionBase *action);
    virtual void activate(DrawActionBase *action, UInt32 index = 0);
    virtual void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0);
    virtual void deactivate(DrawActionBase *action, UInt32 index = 0);
    virtual bool isTransparent(void) const;

    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    RecordingTestChunk(void);
    RecordingTestChunk(const RecordingTestChunk &source);
    virtual ~RecordingTestChunk(void);

  private:
    friend class FieldContainer;
    friend class RecordingTestChunkBase;

    static void initMethod(void);

    static StateChunkClass _class;

    void operator=(const RecordingTestChunk &source);
};

typedef RecordingTestChunk *RecordingTestChunkP;

OSG_END_NAMESPACE

#endif
