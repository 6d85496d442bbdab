/// A group core that masks its children per action and records the last pick.
#ifndef _OSGLAYER_H_
#define _OSGLAYER_H_

#include <OpenSG/OSGLayerBase.h>

OSG_BEGIN_NAMESPACE

class Layer : public LayerBase
{
  private:
    typedef LayerBase Inherited;

  public:
    virtual void changed(BitVector whichField, UInt32 origin);
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

  protected:
    Layer(void);
    Layer(const Layer &source);
    virtual ~Layer(void);

  private:
    friend class FieldContainer;
    friend class LayerBase;

    static void initMethod(void);

    void operator=(const Layer &source);
};

typedef Layer *LayerP;

OSG_END_NAMESPACE

#endif
