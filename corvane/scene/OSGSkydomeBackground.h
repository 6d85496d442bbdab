#ifndef _OSGSKYDOMEBACKGROUND_H_
#define _OSGSKYDOMEBACKGROUND_H_

#include <OpenSG/OSGSkydomeBackgroundBase.h>

OSG_BEGIN_NAMESPACE

/// A background that clears the viewport and draws a textured sky sphere around the viewer.
class SkydomeBackground : public SkydomeBackgroundBase
{
  private:
    typedef SkydomeBackgroundBase Inherited;

  public:
    /// A new latlongTexture gets a material of its own, which replaces the one made before.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Logs "Dump <class> NI": the fields are not listed.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const;

    /// Clears colour, depth and stencil, draws the sphere with material
    /// around the camera (turned with the camera and the beacon, never
    /// moved), then clears depth again so the scene lies in front of it.
    virtual void clear(DrawActionBase *action, Viewport *port);

  protected:
    SkydomeBackground(void);
    /// Copies the fields; the factory clones the prototype through it.
    SkydomeBackground(const SkydomeBackground &source);
    virtual ~SkydomeBackground(void);

  private:
    friend class FieldContainer;
    friend class SkydomeBackgroundBase;

    static void initMethod(void);

    /// Destroys the material made for the last texture unless someone
    /// took a reference to it meanwhile.
    void releaseMadeMaterial(void);

    void operator=(const SkydomeBackground &source);

    /// Container id of the material this background made; 0 for none.
    UInt32 _madeMaterialId;
    /// Whether clear has said once that it has no material.
    bool _warnedNoMaterial;
};

typedef SkydomeBackground *SkydomeBackgroundP;

OSG_END_NAMESPACE

#endif
