/// DrawAction: immediate-mode drawing during the traversal, no sorting.
/// Drawables draw through their material at once; transforms use the GL
/// matrix stack; lights take GL_LIGHT0 + the light count.
#ifndef _OSGDRAWACTION_H_
#define _OSGDRAWACTION_H_

#include <OpenSG/OSGDrawActionBase.h>

OSG_BEGIN_NAMESPACE

class DrawAction : public DrawActionBase
{
  public:
    static DrawAction *create(void);
    static void        setPrototype(DrawAction *proto);
    static DrawAction *getPrototype(void);

    static void registerEnterDefault(const FieldContainerType &type, const Functor &func);
    static void registerLeaveDefault(const FieldContainerType &type, const Functor &func);

    virtual ~DrawAction(void);

    UInt32 getLightCount(void) const { return _lightCount; }
    void   incLightCount(void) { ++_lightCount; }
    void   decLightCount(void)
    {
        if(_lightCount > 0)
            --_lightCount;
    }

    /// World volume of the node against the frustum (true with culling off).
    virtual bool isVisible(Node *node);

  protected:
    DrawAction(void);
    DrawAction(const DrawAction &source);

    virtual ResultE start(void);

    virtual std::vector<Functor> *getDefaultEnterFunctors(void);
    virtual std::vector<Functor> *getDefaultLeaveFunctors(void);

  private:
    static std::vector<Functor> *_defaultEnterFunctors;
    static std::vector<Functor> *_defaultLeaveFunctors;
    static DrawAction *_prototype;

    UInt32 _lightCount;

    void operator=(const DrawAction &source);
};

typedef DrawAction *DrawActionP;

OSG_END_NAMESPACE

#endif
