// Test material: one state per pass, each holding a RecordChunk labelled
// "<label>" (pass 0) or "<label>/<pass>".
#ifndef _OSGRECORDMATERIAL_H_
#define _OSGRECORDMATERIAL_H_

#include <OpenSG/OSGRecordMaterialBase.h>

#include <vector>

OSG_BEGIN_NAMESPACE

class RecordMaterial : public RecordMaterialBase
{
  private:
    typedef RecordMaterialBase Inherited;

  public:
    virtual void draw(DrawFunctor &func, DrawActionBase *action);
    virtual void draw(Geometry *geo, DrawActionBase *action);

    virtual StatePtr makeState(void);
    virtual void     rebuildState(void);
    virtual StatePtr getState(UInt32 index = 0);

    virtual bool   isMultiPass(void) const { return getPasses() > 1; }
    virtual UInt32 getNPasses(void) const { return getPasses(); }
    virtual bool   isTransparent(void) const { return getTransparent(); }

  protected:
    RecordMaterial(void);
    RecordMaterial(const RecordMaterial &source);
    virtual ~RecordMaterial(void);

    virtual void onDestroy(void);

  private:
    friend class FieldContainer;
    friend class RecordMaterialBase;

    static void initMethod(void);

    StatePtr makePassState(UInt32 pass);

    std::vector<StatePtr> _passStates;

    void operator=(const RecordMaterial &source);
};

OSG_END_NAMESPACE

#endif
