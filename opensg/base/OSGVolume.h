/// Abstract bounding volume with its state bits.
#ifndef _OSGVOLUME_H_
#define _OSGVOLUME_H_

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGVector.h>

OSG_BEGIN_NAMESPACE

class Line;

/// The state accessors are deliberately not virtual: through a Volume& they
/// act on the state of exactly that object, whatever its dynamic type.
class Volume
{
  public:
    enum StateBits
    {
        OSGVALID    = 1,
        OSGEMPTY    = 2,
        OSGSTATIC   = 4,
        OSGINFINITE = 8,

        VALID    = OSGVALID,
        EMPTY    = OSGEMPTY,
        STATIC   = OSGSTATIC,
        INFINITE = OSGINFINITE
    };

    virtual ~Volume(void) {}

    // --- state ---------------------------------------------------------------

    /// Ignored for a static volume.
    void setValid(bool value = true)
    {
        if(isStatic())
            return;
        if(value)
            _state |= OSGVALID;
        else
            _state &= ~UInt16(OSGVALID);
    }
    bool isValid(void) const { return (_state & OSGVALID) != 0; }

    /// true: empty and valid, not infinite (static or not). false: clears
    /// only the empty bit.
    void setEmpty(bool value = true)
    {
        if(value)
        {
            _state |= OSGEMPTY | OSGVALID;
            _state &= ~UInt16(OSGINFINITE);
        }
        else
        {
            _state &= ~UInt16(OSGEMPTY);
        }
    }
    bool isEmpty(void) const { return (_state & OSGEMPTY) != 0; }

    void setStatic(bool value = true)
    {
        if(value)
            _state |= OSGSTATIC;
        else
            _state &= ~UInt16(OSGSTATIC);
    }
    bool isStatic(void) const { return (_state & OSGSTATIC) != 0; }

    /// true: infinite and valid, not empty. false: clears only the bit.
    void setInfinite(bool value = true)
    {
        if(value)
        {
            _state |= OSGINFINITE | OSGVALID;
            _state &= ~UInt16(OSGEMPTY);
        }
        else
        {
            _state &= ~UInt16(OSGINFINITE);
        }
    }
    bool isInfinite(void) const { return (_state & OSGINFINITE) != 0; }

    /// Invalid, static or infinite: extending leaves such a volume alone.
    bool isUntouchable(void) const
    {
        return (_state & (OSGINFINITE | OSGVALID | OSGSTATIC)) != OSGVALID;
    }

    UInt16 getState(void) const { return _state; }
    void   setState(UInt16 state) { _state = state; }

    Pnt3f getMin(void) const
    {
        Pnt3f mi, ma;
        getBounds(mi, ma);
        return mi;
    }
    Pnt3f getMax(void) const
    {
        Pnt3f mi, ma;
        getBounds(mi, ma);
        return ma;
    }

    // --- geometry ------------------------------------------------------------

    virtual void   getCenter(Pnt3f &center) const            = 0;
    virtual Real32 getScalarVolume(void) const               = 0;
    virtual void   getBounds(Pnt3f &min, Pnt3f &max) const   = 0;

    virtual void extendBy(const Pnt3f &pt)     = 0;
    virtual void extendBy(const Volume &volume) = 0;

    virtual bool intersect(const Pnt3f &point) const                    = 0;
    virtual bool intersect(const Line &line) const                      = 0;
    virtual bool intersect(const Line &line, Real32 &enter,
                           Real32 &exit) const                          = 0;
    virtual bool intersect(const Volume &volume) const                  = 0;
    virtual bool isOnSurface(const Pnt3f &point) const                  = 0;

    virtual void transform(const Matrix &matrix) = 0;

    /// Writes a description to PLOG.
    virtual void dump(UInt32 uiIndent = 0, const BitVector bvFlags = 0) const = 0;

    /// Compares the state only.
    bool operator==(const Volume &other) const { return _state == other._state; }
    bool operator!=(const Volume &other) const { return !(*this == other); }

  protected:
    Volume(void) : _state(OSGVALID | OSGEMPTY) {}
    Volume(const Volume &) = default;
    Volume &operator=(const Volume &) = default;

    UInt16 _state;
};

OSG_END_NAMESPACE

#endif
